#include "chart/StatisticsChart.h"

#include "chart/Variation.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace chart {

namespace {

QString offsetText(int seconds)
{
    const QChar sign = QLatin1Char(seconds < 0 ? '-' : '+');
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("UTC%1%2:%3")
        .arg(sign)
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

// The date with the offset from UTC that all readings have, or else with the name of the zone.
QString dateLabel(const Words& words, const Days& days, const std::optional<QTimeZone>& zone)
{
    QSet<int> offsets;
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            offsets.insert(siteTime(entry.time, zone).offsetFromUtc());
        }
    }
    if (offsets.size() == 1) {
        return withUnit(words.date, offsetText(*offsets.cbegin()));
    }
    return withUnit(words.date, zone ? QString::fromLatin1(zone->id()) : QString());
}

bool isBefore(const MeasuredSubCategory& left, const MeasuredSubCategory& right)
{
    return left.name != right.name ? left.name < right.name : left.id < right.id;
}

// Puts entries into the curves of their points, in the panels that are there.
class Curves
{
public:
    Curves(Chart& chart, const std::optional<QTimeZone>& zone, const ShownPointOf& pointOf)
        : m_zone(zone), m_pointOf(pointOf), m_chart(chart)
    {
    }

    void add(const QDate& day, const RKPointLocationChartData& entry)
    {
        if (!m_places.contains(entry.id)) {
            const ShownPoint point = m_pointOf(entry);
            const int panel = panelOf(point.quantity.id);
            QVector<Chart::Curve>& curves = m_chart.panels[panel].curves;
            m_places.insert(entry.id, {panel, curves.size()});
            curves.append({point.label, entry.id, entry.name, entry.depth, point.cellId, {}, {}});
        }
        const auto [panel, index] = m_places.value(entry.id);
        Chart::Curve& curve = m_chart.panels[panel].curves[index];
        curve.points.append({clockOf(siteTime(entry.time, m_zone)), entry.value});
        curve.days.append(day);
    }

private:
    int panelOf(const QString& subCategoryId) const
    {
        const auto panel =
            std::find_if(m_chart.panels.cbegin(), m_chart.panels.cend(), [&](const Chart::Panel& candidate) {
                return candidate.subCategoryId == subCategoryId;
            });
        return static_cast<int>(panel - m_chart.panels.cbegin());
    }

    const std::optional<QTimeZone>& m_zone;
    const ShownPointOf& m_pointOf;
    Chart& m_chart;
    QHash<QString, QPair<int, int>> m_places; // panel and curve by point
};

double greatestChange(const Chart::Curve& curve, const ReferenceOf& referenceOf)
{
    if (curve.points.isEmpty()) {
        return 0.0;
    }
    const double reference = referenceOf(curve.pointId).value_or(curve.points.constFirst().y());
    double greatest = 0.0;
    for (const QPointF& point : curve.points) {
        greatest = std::max(greatest, std::abs(variation::total(point.y(), reference)));
    }
    return greatest;
}

} // namespace

QDateTime siteTime(const QDateTime& time, const std::optional<QTimeZone>& zone)
{
    return zone ? time.toTimeZone(*zone) : time;
}

double clockOf(const QDateTime& siteTime)
{
    return static_cast<double>(QDateTime(siteTime.date(), siteTime.time(), Qt::UTC).toMSecsSinceEpoch());
}

QString withUnit(const QString& name, const QString& unit)
{
    return unit.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, unit);
}

QString valueLabel(const Words& words, Values values, const QString& name, const QString& unit)
{
    switch (values) {
    case Values::Cumulative:
        return withUnit(words.totalVariation.arg(name), unit);
    case Values::Daily:
        return withUnit(words.dailyVariation.arg(name), unit);
    case Values::Measured:
        break;
    }
    return withUnit(name, unit);
}

QList<MeasuredSubCategory> quantitiesOf(const Days& days, const ShownPointOf& pointOf)
{
    QMap<QString, MeasuredSubCategory> found;
    QSet<QString> seen;
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            if (!seen.contains(entry.id)) {
                seen.insert(entry.id);
                const MeasuredSubCategory quantity = pointOf(entry).quantity;
                found.insert(quantity.id, quantity);
            }
        }
    }
    QList<MeasuredSubCategory> quantities = found.values();
    std::sort(quantities.begin(), quantities.end(), isBefore);
    return quantities;
}

Chart overTime(const Words& words, const Days& days, const std::optional<QTimeZone>& zone,
               const ShownPointOf& pointOf)
{
    Chart chart;
    chart.kind = Chart::Kind::OverTime;
    chart.otherLabel = dateLabel(words, days, zone);
    for (const MeasuredSubCategory& quantity : quantitiesOf(days, pointOf)) {
        chart.panels.append({quantity.id, withUnit(quantity.name, quantity.unit), {}, {}, {}, {}});
    }
    Curves curves(chart, zone, pointOf);
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        for (const RKPointLocationChartData& entry : *day) {
            curves.add(day.key(), entry);
        }
    }
    return chart;
}

Chart overDepth(const Days& days, const MeasuredSubCategory& quantity)
{
    Chart chart;
    chart.kind = Chart::Kind::OverDepth;
    Chart::Panel panel{quantity.id, withUnit(quantity.name, quantity.unit), {}, {}, {}, {}};
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        Chart::Curve curve;
        curve.label = day.key().toString(Qt::ISODate);
        for (const RKPointLocationChartData& entry : *day) {
            bool isNumber = false;
            const double depth = entry.depth.toDouble(&isNumber);
            if (isNumber) {
                curve.points.append({entry.value, depth});
            }
        }
        std::stable_sort(curve.points.begin(), curve.points.end(),
                         [](const QPointF& left, const QPointF& right) { return left.y() < right.y(); });
        if (!curve.points.isEmpty()) {
            panel.curves.append(curve);
        }
    }
    if (!panel.curves.isEmpty()) {
        chart.panels.append(panel);
    }
    return chart;
}

void makeCumulative(Chart& chart, const ReferenceOf& referenceOf)
{
    for (Chart::Panel& panel : chart.panels) {
        QVector<Chart::Curve> curves;
        for (Chart::Curve curve : qAsConst(panel.curves)) {
            const std::optional<double> reference = referenceOf(curve.pointId);
            if (reference) {
                for (QPointF& point : curve.points) {
                    point.setY(variation::total(point.y(), *reference));
                }
                curves.append(curve);
            }
        }
        panel.curves = curves;
    }
}

int keepMostChanged(Chart& chart, int most, const ReferenceOf& referenceOf)
{
    int leftOut = 0;
    for (Chart::Panel& panel : chart.panels) {
        QVector<QPair<double, int>> changes; // with the curve
        for (int curve = 0; curve < panel.curves.size(); ++curve) {
            changes.append({-greatestChange(panel.curves[curve], referenceOf), curve});
        }
        std::stable_sort(changes.begin(), changes.end(),
                         [](const auto& left, const auto& right) { return left.first < right.first; });
        leftOut += std::max(0, changes.size() - most);
        changes = changes.mid(0, most);
        std::sort(changes.begin(), changes.end(),
                  [](const auto& left, const auto& right) { return left.second < right.second; });
        QVector<Chart::Curve> curves;
        for (const auto& change : qAsConst(changes)) {
            curves.append(panel.curves[change.second]);
        }
        panel.curves = curves;
    }
    return leftOut;
}

void makeDaily(Chart& chart)
{
    for (Chart::Panel& panel : chart.panels) {
        for (Chart::Curve& curve : panel.curves) {
            QVector<QPointF> variations;
            for (int index = 1; index < curve.points.size(); ++index) {
                const int days = static_cast<int>(curve.days[index - 1].daysTo(curve.days[index]));
                variations.append(
                    {curve.points[index].x(),
                     variation::daily(curve.points[index].y(), curve.points[index - 1].y(), days)});
            }
            curve.points = variations;
            curve.days = curve.days.mid(1);
        }
    }
}

Days chosen(const Days& days, const std::function<bool(const RKPointLocationChartData&)>& isWanted)
{
    Days kept;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        QList<RKPointLocationChartData> entries;
        std::copy_if(day->cbegin(), day->cend(), std::back_inserter(entries), isWanted);
        if (!entries.isEmpty()) {
            kept.insert(day.key(), entries);
        }
    }
    return kept;
}

QStringList namesWithProfile(const Days& days)
{
    QSet<QString> names;
    for (const QList<RKPointLocationChartData>& day : days) {
        QSet<QString> seen;
        for (const RKPointLocationChartData& entry : day) {
            if (seen.contains(entry.name)) {
                names.insert(entry.name);
            }
            seen.insert(entry.name);
        }
    }
    QStringList sorted = names.values();
    sorted.sort();
    return sorted;
}

Days thinned(const Days& days, int most)
{
    if (days.size() <= most) {
        return days;
    }
    const QList<QDate> dates = days.keys();
    Days kept;
    for (int i = 0; i < most; ++i) {
        const QDate date = dates[static_cast<int>(static_cast<qint64>(i) * (dates.size() - 1) / (most - 1))];
        kept.insert(date, days[date]);
    }
    return kept;
}

} // namespace chart
