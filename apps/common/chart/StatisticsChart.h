#pragma once

#include "chart/Chart.h"
#include "chart/DailyStatistic.h"
#include "chart/Words.h"
#include "extensions/Projects.h"

#include <QStringList>
#include <QTimeZone>

#include <functional>
#include <optional>

/// Charts of a monitoring's statistics.
namespace chart {

/// What a chart shows of the point of an entry besides its values.
struct ShownPoint
{
    MeasuredSubCategory quantity;
    /// Identifier of its monitoring.
    QString cellId;
    /// What the point is called in the chart.
    QString label;
};

using ShownPointOf = std::function<ShownPoint(const RKPointLocationChartData&)>;

/// What the variations of a point count from, by its identifier; nothing when it has none.
using ReferenceOf = std::function<std::optional<double>(const QString& pointId)>;

/// The time on the clock of `zone`; without a zone as it was written.
QDateTime siteTime(const QDateTime& time, const std::optional<QTimeZone>& zone);

/// Where the time stands in a chart: what the clock shows then, so that the axis has the days of the site.
double clockOf(const QDateTime& siteTime);

/// "name (unit)", or the name alone.
QString withUnit(const QString& name, const QString& unit);

/// What the values of a chart over time are.
enum class Values
{
    Measured,
    Cumulative, ///< total variations
    Daily       ///< daily variations
};

/// "name", "name, total variation" or "name, daily variation", with the unit.
QString valueLabel(const Words& words, Values values, const QString& name, const QString& unit);

/// One panel per sub-category, in the order of their names, with one curve per point, at the times of the
/// readings on the clock of `zone`; without a zone on the clock that each was written with.
Chart overTime(const Words& words, const Days& days, const std::optional<QTimeZone>& zone,
               const ShownPointOf& pointOf);

/// One curve per day, from the top to the bottom. Readings whose depth is no number are left out. The entries
/// are all of `quantity`.
Chart overDepth(const Days& days, const MeasuredSubCategory& quantity);

/// The values of a chart over time as total variations: each minus the reference of its point. Curves of
/// points without one are left out.
void makeCumulative(Chart& chart, const ReferenceOf& referenceOf);

/// Leaves only so many curves of each panel: those with the greatest total variation, whichever way, and in
/// their order. Gives how many it left out. The values are as measured; a point without a reference counts
/// from its first value.
int keepMostChanged(Chart& chart, int most, const ReferenceOf& referenceOf);

/// The values of a chart over time as daily variations: each minus that of the previous measured day, by the
/// days between. The first of a curve has none.
void makeDaily(Chart& chart);

/// The entries that `isWanted`; days without one are left out.
Days chosen(const Days& days, const std::function<bool(const RKPointLocationChartData&)>& isWanted);

/// The quantities of all entries, each once, in the order of their names.
QList<MeasuredSubCategory> quantitiesOf(const Days& days, const ShownPointOf& pointOf);

/// Names of the points that have several depths on one day: each has a profile of its own.
QStringList namesWithProfile(const Days& days);

/// `days` but for some in between, evenly, so that at most `most` are left: the first and the last stay.
Days thinned(const Days& days, int most);

} // namespace chart
