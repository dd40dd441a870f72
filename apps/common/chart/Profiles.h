#pragma once

#include "chart/DailyStatistic.h"

#include <QDate>
#include <QString>

#include <functional>
#include <optional>

/// Values over depth as changes: the daily values of a point that is measured at several depths, such as an
/// inclinometer.
namespace chart {

/// The value that a value of a day counts from; nothing when there is none.
using BaselineOf =
    std::function<std::optional<double>(const QDate& day, const RKPointLocationChartData& entry)>;

/// Each point's value of the first day of `days` on which it was measured.
BaselineOf firstDay(const Days& days);

/// Its value of the last day before. The first day has none.
BaselineOf previousDay(const Days& days);

/// Its value of that day.
BaselineOf thatDay(const Days& days, const QDate& day);

/// `days` with the change since the baseline instead of each value. Values without one are left out, as are
/// days without values.
Days changes(const Days& days, const BaselineOf& baselineOf);

/// `days` with what each depth adds to the next deeper one instead of each value; the deepest stands on firm
/// ground and keeps its own. Summed up from below these are the values again. Values whose depth is no number
/// are left out.
Days increments(const Days& days);

} // namespace chart
