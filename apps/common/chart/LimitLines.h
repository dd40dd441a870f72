#pragma once

#include "ServiceSession.h"
#include "chart/Chart.h"
#include "chart/StatisticsChart.h"
#include "extensions/GroupSides.h"
#include "extensions/ServiceExtensions.h"

#include <QList>
#include <RKMonitoring.h>

#include <PointLocSetting.h>

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
/// reference have no lines that count from it.
void addLimits(Chart& chart, Values values, const QList<LimitingGroup>& groups,
               const ReferenceOf& referenceOf);

/// The groups of `monitoring` that limit a point of `chart`, with their sides as far as the service tells
/// them: else limits are for both sides and there is no level to warn from.
QList<LimitingGroup> limitingGroups(ServiceSession& session, ServiceExtensions& extensions,
                                    const RKMonitoring& monitoring, const Chart& chart);

} // namespace chart
