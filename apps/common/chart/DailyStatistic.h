#pragma once

#include "ServiceSession.h"

#include <QDate>
#include <QList>
#include <QMap>
#include <RKConditions.h>
#include <RKMonitoring.h>
#include <RKPointLocation.h>

namespace chart {

/// Each point's last value of each day.
using Days = QMap<QDate, QList<RKPointLocationChartData>>;

enum class Statistic
{
    Normal, ///< of all points
    Depth   ///< of the points that have a depth
};

/// Reads a statistic of the points of `monitoring` that match `condition`. Throws a Failure when it cannot be
/// read or holds a day without a date.
Days readDays(ServiceSession& session, const RKMonitoring& monitoring,
              const RKPointLocationCondition& condition, Statistic statistic);

} // namespace chart
