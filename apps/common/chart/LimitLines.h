#pragma once

#include "ServiceSession.h"
#include "chart/Chart.h"
#include "chart/StatisticsChart.h"
#include "extensions/GroupSides.h"
#include "extensions/ServiceExtensions.h"

#include <QList>
#include <QString>
#include <RKMonitoring.h>

#include <PointLocSetting.h>

#include <functional>

namespace chart {

/// A threshold group with the sides of its limits.
struct LimitingGroup
{
    PointLocSetting setting;
    GroupSides sides;
};

/// Adds the lines of the limits, and of the levels from which on to warn, of every group to the panels of its
/// sub-category: total limits about the references of the points that it lists, daily limits to a chart of
/// daily variations. A line that would be the same for several curves is there once. Points without a
/// reference have no lines that count from it. False when lines were left out: those of measured values of
/// many points, which each have others.
bool addLimits(Chart& chart, const Words& words, Values values, const QList<LimitingGroup>& groups,
               const ReferenceOf& referenceOf);

/// Adds the lines of total limits to a chart over depth of total variations of the point `pointName`.
void addLimitsOverDepth(Chart& chart, const Words& words, const QList<LimitingGroup>& groups,
                        const QString& pointName);

/// Whether a group lists a point that a curve of `chart` is of.
bool limitsPointOf(const Chart& chart, const PointLocSetting& group);

/// The groups of `monitoring` for which `isWanted`, with their sides as far as the service tells them: else
/// limits are for both sides and there is no level to warn from.
QList<LimitingGroup> limitingGroups(ServiceSession& session, const RKMonitoring& monitoring,
                                    const std::function<bool(const PointLocSetting&)>& isWanted);

} // namespace chart
