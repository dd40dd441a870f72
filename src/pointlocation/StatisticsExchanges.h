#pragma once

#include "RKConditions.h"
#include "RKPointLocation.h"

#include <QDate>
#include <QList>
#include <QMap>

namespace rk {

/// Chart entries by the calendar day that the service gives.
using DailyChartData = QMap<QDate, QList<RKPointLocationChartData>>;

/// GET projects/{p}/normal_statistics?where=…&expand=true. A day of the reply replaces the same day of
/// `chartData`; the other days stay.
bool fetchNormalStatistics(const RKPointLocationCondition& condition, DailyChartData& chartData);

/// GET projects/{p}/depth_statistics?where=…&type=depth&expand=true. As above.
bool fetchDepthStatistics(const RKPointLocationCondition& condition, DailyChartData& chartData);

} // namespace rk
