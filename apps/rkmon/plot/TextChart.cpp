#include "plot/TextChart.h"

#include "DisplayText.h"
#include "chart/Chart.h"

#include <QDateTime>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

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

// Two curves over depth, the depths downwards in equal steps.
class DepthRows
{
public:
    // In so many lines at most, and so many cells beside the depths.
    DepthRows(const Chart::Curve& earliest, const Chart::Curve& latest, int lines, int cells)
    {
        for (const Chart::Curve* curve : {&earliest, &latest}) {
            for (const QPointF& point : curve->points) {
                m_values.include(point.x());
                m_depths.include(point.y());
            }
        }
        m_rows.resize(m_depths.most > m_depths.least ? lines : 1);
        for (Row& row : m_rows) {
            row.cells = QString(cells, QLatin1Char(' '));
        }
        mark(earliest, earliestSign);
        mark(latest, latestSign);
        // Where several depths share a line it has the first one's; the last line ends the scale.
        m_rows.last().depth = m_depths.most;
    }

    QStringList lines() const
    {
        const int cells = m_rows.constFirst().cells.size();
        const QString least = QString::number(m_values.least);
        QStringList lines{QString(depthWidth + 2, QLatin1Char(' ')) + least +
                          QString::number(m_values.most).rightJustified(cells - least.size())};
        for (const Row& row : m_rows) {
            const QString depth = row.depth ? QString::number(*row.depth) : QString();
            lines.append(QStringLiteral("%1 %2%3")
                             .arg(depth.rightJustified(depthWidth))
                             .arg(QChar(0x2502))
                             .arg(row.cells));
        }
        return lines;
    }

    static constexpr int depthWidth = 8;
    static constexpr QChar earliestSign{0x25cb};
    static constexpr QChar latestSign{0x25cf};

private:
    struct Row
    {
        std::optional<double> depth; // nothing: none was measured there
        QString cells;
    };

    // Both ends of the depths are at the middle of their line, unlike steps of time, which begin with the
    // first.
    int rowOf(double depth) const
    {
        const double share = m_depths.most > m_depths.least
                                 ? (depth - m_depths.least) / (m_depths.most - m_depths.least)
                                 : 0.0;
        return static_cast<int>(std::lround(share * (m_rows.size() - 1)));
    }

    void mark(const Chart::Curve& curve, QChar sign)
    {
        for (const QPointF& point : curve.points) {
            Row& row = m_rows[rowOf(point.y())];
            row.depth = std::min(row.depth.value_or(point.y()), point.y());
            row.cells[m_values.step(point.x(), row.cells.size())] = sign;
        }
    }

    Range m_values;
    Range m_depths;
    QVector<Row> m_rows;
};

QStringList overDepth(const Chart& chart, const QSize& size)
{
    constexpr int leastLines = 2;
    constexpr int scaleAndLegend = 2;
    const Chart::Curve& earliest = chart.panels.constFirst().curves.constFirst();
    const Chart::Curve& latest = chart.panels.constFirst().curves.constLast();
    const DepthRows rows(earliest, latest, std::max(leastLines, size.height() - scaleAndLegend),
                         std::max(leastCells, size.width() - DepthRows::depthWidth - 3));
    return rows.lines() + QStringList{QStringLiteral("%1 %2   %3 %4")
                                          .arg(DepthRows::earliestSign)
                                          .arg(earliest.label)
                                          .arg(DepthRows::latestSign)
                                          .arg(latest.label)};
}

} // namespace

QStringList textChart(const Chart& chart, const QSize& cells)
{
    if (chart.panels.isEmpty()) {
        return {};
    }
    return chart.kind == Chart::Kind::OverTime ? overTime(chart, cells.width()) : overDepth(chart, cells);
}
