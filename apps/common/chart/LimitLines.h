#pragma once

#include "ReferenceValues.h"
#include "chart/Chart.h"
#include "chart/DailyStatistic.h"

#include <QList>
#include <QMap>
#include <QString>

#include <PointLocSetting.h>

namespace chart {

/// What the lines that were added stand about.
enum class LimitOrigin
{
    None,         ///< no line was added
    InitialValue, ///< of every point
    FirstReading  ///< of at least one point, whose initial value is not known
};

/// Adds the lines of reference value plus and minus total limit, of every group that lists a curve's point.
/// `references` are by the curves' labels.
void addLimits(Chart& chart, const Days& days, const QList<PointLocSetting>& groups,
               const QMap<QString, ReferenceValue>& references);

/// The same with the groups and reference values of `monitoring`, which it reads as far as they are needed.
LimitOrigin addLimitsOf(ServiceSession& session, const RKMonitoring& monitoring, const Days& days,
                        Chart& chart);

} // namespace chart
