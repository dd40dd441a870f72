#include "chart/StatisticsChart.h"

#include "PointNames.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace chart {

namespace {

// The time as its own clock shows it, so that the axis shows the days of the site.
double clockOf(const QDateTime& time)
{
    return static_cast<double>(QDateTime(time.date(), time.time(), Qt::UTC).toMSecsSinceEpoch());
}

QString offsetText(int seconds)
{
    const QChar sign = QLatin1Char(seconds < 0 ? '-' : '+');
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("UTC%1%2:%3")
        .arg(sign)
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

// "Date", with the offset from UTC when all readings have the same.
QString dateLabel(const Days& days)
{
    QSet<int> offsets;
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            offsets.insert(entry.time.offsetFromUtc());
        }
    }
    return offsets.size() == 1 ? QStringLiteral("Date (%1)").arg(offsetText(*offsets.cbegin()))
                               : QStringLiteral("Date");
}

} // namespace

Chart overTime(const Days& days)
{
    Chart chart;
    chart.kind = Chart::Kind::OverTime;
    chart.otherLabel = dateLabel(days);
    QHash<QString, int> indexes;
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            const QString name = pointLabel(entry.name, entry.depth);
            if (!indexes.contains(name)) {
                indexes.insert(name, chart.curves.size());
                chart.curves.append({name, {}});
            }
            chart.curves[indexes[name]].points.append({clockOf(entry.time), entry.value});
        }
    }
    return chart;
}

Chart overDepth(const Days& days)
{
    Chart chart;
    chart.kind = Chart::Kind::OverDepth;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        Chart::Curve curve{day.key().toString(Qt::ISODate), {}};
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
            chart.curves.append(curve);
        }
    }
    return chart;
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
