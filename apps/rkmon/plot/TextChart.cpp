#include "plot/TextChart.h"

#include "DisplayText.h"
#include "chart/Chart.h"

#include <QDateTime>
#include <QMap>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

struct Range
{
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();

    void include(double value)
    {
        least = std::min(least, value);
        most = std::max(most, value);
    }

    // The step that `value` falls into, from 0 to `steps` - 1; the middle when all values are equal.
    int step(double value, int steps) const
    {
        if (most <= least) {
            return steps / 2;
        }
        const double share = (value - least) / (most - least);
        return std::clamp(static_cast<int>(share * steps), 0, steps - 1);
    }
};

constexpr int leastCells = 10;

int labelWidth(const Chart& chart)
{
    int widest = 0;
    for (const Chart::Panel& panel : chart.panels) {
        for (const Chart::Curve& curve : panel.curves) {
            widest = std::max(widest, display::width(display::escaped(curve.label)));
        }
    }
    return widest;
}

Range timesOf(const Chart& chart)
{
    Range times;
    for (const Chart::Panel& panel : chart.panels) {
        for (const Chart::Curve& curve : panel.curves) {
            for (const QPointF& point : curve.points) {
                times.include(point.x());
            }
        }
    }
    return times;
}

QString dateText(double time)
{
    return QDateTime::fromMSecsSinceEpoch(std::llround(time), Qt::UTC).date().toString(Qt::ISODate);
}

// The first and the last date under the bars.
QString dateLine(const Range& times, int before, int cells)
{
    const QString first = dateText(times.least);
    const QString last = dateText(times.most);
    const QString blanks(before, QLatin1Char(' '));
    return first == last ? blanks + first : blanks + first + last.rightJustified(cells - first.size());
}

// Bars for the last value in each step of time; a blank where there is none.
QString bars(const Chart::Curve& curve, const Range& times, const Range& values, int cells)
{
    constexpr ushort lowestBar = 0x2581;
    constexpr int heights = 8;
    QString line(cells, QLatin1Char(' '));
    for (const QPointF& point : curve.points) {
        line[times.step(point.x(), cells)] =
            QChar(static_cast<ushort>(lowestBar + values.step(point.y(), heights)));
    }
    return line;
}

QStringList overTime(const Chart& chart, int width)
{
    constexpr int numberWidth = 12;
    const Range times = timesOf(chart);
    const int labels = labelWidth(chart);
    const int cells = std::max(leastCells, width - labels - 2 * numberWidth - 2);
    QStringList lines;
    for (const Chart::Panel& panel : chart.panels) {
        if (chart.panels.size() > 1) {
            lines.append(display::escaped(panel.valueLabel) + QLatin1Char(':'));
        }
        for (const Chart::Curve& curve : panel.curves) {
            Range values;
            for (const QPointF& point : curve.points) {
                values.include(point.y());
            }
            lines.append(QStringLiteral("%1  %2 %3 %4")
                             .arg(display::padded(display::escaped(curve.label), labels),
                                  QString::number(values.least).rightJustified(numberWidth - 2),
                                  bars(curve, times, values, cells), QString::number(values.most)));
        }
    }
    constexpr int datesWidth = 21; // two dates and a blank
    if (cells >= datesWidth) {
        lines.append(dateLine(times, labels + numberWidth + 1, cells));
    }
    return lines;
}

// Marks the values of `curve` on the line of their depth.
void mark(const Chart::Curve& curve, QChar sign, const Range& values, int cells, QMap<double, QString>& lines)
{
    for (const QPointF& point : curve.points) {
        QString& line = lines[point.y()];
        if (line.isEmpty()) {
            line = QString(cells, QLatin1Char(' '));
        }
        line[values.step(point.x(), cells)] = sign;
    }
}

QStringList overDepth(const Chart& chart, int width)
{
    constexpr int depthWidth = 8;
    const QChar first(0x25cb);
    const QChar last(0x25cf);
    const Chart::Curve& earliest = chart.panels.constFirst().curves.constFirst();
    const Chart::Curve& latest = chart.panels.constFirst().curves.constLast();
    Range values;
    for (const Chart::Curve* curve : {&earliest, &latest}) {
        for (const QPointF& point : curve->points) {
            values.include(point.x());
        }
    }
    const int cells = std::max(leastCells, width - depthWidth - 3);
    QMap<double, QString> marked; // by depth, ascending: downwards
    mark(earliest, first, values, cells, marked);
    mark(latest, last, values, cells, marked);

    const QString ends =
        QString::number(values.least) +
        QString::number(values.most).rightJustified(cells - QString::number(values.least).size());
    QStringList lines{QString(depthWidth + 2, QLatin1Char(' ')) + ends};
    for (auto line = marked.cbegin(); line != marked.cend(); ++line) {
        lines.append(QStringLiteral("%1 %2%3")
                         .arg(QString::number(line.key()).rightJustified(depthWidth))
                         .arg(QChar(0x2502))
                         .arg(*line));
    }
    lines.append(QStringLiteral("%1 %2   %3 %4").arg(first).arg(earliest.label).arg(last).arg(latest.label));
    return lines;
}

} // namespace

QStringList textChart(const Chart& chart, int width)
{
    if (chart.panels.isEmpty()) {
        return {};
    }
    return chart.kind == Chart::Kind::OverTime ? overTime(chart, width) : overDepth(chart, width);
}
