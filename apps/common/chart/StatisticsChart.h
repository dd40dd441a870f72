#pragma once

#include "chart/Chart.h"
#include "chart/DailyStatistic.h"

#include <QStringList>

/// Charts of a monitoring's statistics.
namespace chart {

/// One curve per point and depth, at the times of the readings.
Chart overTime(const Days& days);

/// One curve per day, from the top to the bottom. Readings whose depth is no number are left out.
Chart overDepth(const Days& days);

/// Names of the points that have several depths on one day: each has a profile of its own.
QStringList namesWithProfile(const Days& days);

/// `days` but for some in between, evenly, so that at most `most` are left: the first and the last stay.
Days thinned(const Days& days, int most);

} // namespace chart
