#include "chart/Profiles.h"

#include "chart/Variation.h"

#include <QHash>

#include <algorithm>
#include <iterator>

namespace chart {

namespace {

// The values of points by day.
using ValuesByPoint = QHash<QString, QMap<QDate, double>>;

ValuesByPoint valuesByPoint(const Days& days)
{
    ValuesByPoint values;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        for (const RKPointLocationChartData& entry : *day) {
            values[entry.id].insert(day.key(), entry.value);
        }
    }
    return values;
}

std::optional<double> depthOf(const RKPointLocationChartData& entry)
{
    bool isNumber = false;
    const double depth = entry.depth.toDouble(&isNumber);
    return isNumber ? std::make_optional(depth) : std::nullopt;
}

QList<RKPointLocationChartData> fromTheTop(const QList<RKPointLocationChartData>& entries)
{
    QList<RKPointLocationChartData> sorted;
    std::copy_if(entries.cbegin(), entries.cend(), std::back_inserter(sorted),
                 [](const RKPointLocationChartData& entry) { return depthOf(entry).has_value(); });
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const RKPointLocationChartData& left, const RKPointLocationChartData& right) {
                         return depthOf(left) < depthOf(right);
                     });
    return sorted;
}

} // namespace

BaselineOf firstDay(const Days& days)
{
    return [values = valuesByPoint(days)](const QDate&, const RKPointLocationChartData& entry) {
        const QMap<QDate, double> ofPoint = values.value(entry.id);
        return ofPoint.isEmpty() ? std::nullopt : std::make_optional(ofPoint.first());
    };
}

BaselineOf previousDay(const Days& days)
{
    return [values = valuesByPoint(days)](const QDate& day,
                                          const RKPointLocationChartData& entry) -> std::optional<double> {
        const QMap<QDate, double> ofPoint = values.value(entry.id);
        const auto found = ofPoint.lowerBound(day);
        return found == ofPoint.cbegin() ? std::nullopt : std::make_optional(*std::prev(found));
    };
}

BaselineOf thatDay(const Days& days, const QDate& day)
{
    return [values = valuesByPoint(days), day](const QDate&, const RKPointLocationChartData& entry) {
        const QMap<QDate, double> ofPoint = values.value(entry.id);
        const auto found = ofPoint.constFind(day);
        return found == ofPoint.cend() ? std::nullopt : std::make_optional(*found);
    };
}

Days changes(const Days& days, const BaselineOf& baselineOf)
{
    Days changed;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        QList<RKPointLocationChartData> entries;
        for (RKPointLocationChartData entry : *day) {
            if (const std::optional<double> baseline = baselineOf(day.key(), entry)) {
                entry.value = variation::total(entry.value, *baseline);
                entries.append(entry);
            }
        }
        if (!entries.isEmpty()) {
            changed.insert(day.key(), entries);
        }
    }
    return changed;
}

Days increments(const Days& days)
{
    Days added;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        QList<RKPointLocationChartData> entries = fromTheTop(*day);
        for (int index = 0; index + 1 < entries.size(); ++index) {
            entries[index].value -= entries[index + 1].value;
        }
        if (!entries.isEmpty()) {
            added.insert(day.key(), entries);
        }
    }
    return added;
}

} // namespace chart
