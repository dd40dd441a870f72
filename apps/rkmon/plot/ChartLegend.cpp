#include "plot/ChartLegend.h"

#include "plot/ChartStyle.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double sampleLength = 36.0;
constexpr double widestInLegend = 260.0;

QString shownLabel(const QString& label)
{
    return QFontMetricsF(style::labelFont()).elidedText(label, Qt::ElideMiddle, widestInLegend);
}

double rowHeight()
{
    return style::heightOf(style::labelFont()) + style::gap / 2;
}

void paintSample(QPainter& painter, const ChartLegend::Entry& entry, const QPointF& left)
{
    const QPointF centre(left.x() + sampleLength / 2, left.y());
    painter.setPen(QPen(entry.colour, style::curveWidth));
    if (entry.isAlarm) {
        painter.drawEllipse(centre, style::alarmRadius, style::alarmRadius);
        return;
    }
    painter.drawLine(QLineF(left, {left.x() + sampleLength, left.y()}));
    if (entry.hasMarker) {
        painter.setBrush(entry.colour);
        painter.drawEllipse(centre, style::markerRadius, style::markerRadius);
        painter.setBrush(Qt::NoBrush);
    }
}

} // namespace

ChartLegend::ChartLegend(const QVector<Entry>& entries, double height)
    : m_entries(entries), m_rows(std::max(1, static_cast<int>(height / rowHeight())))
{
    for (Entry& entry : m_entries) {
        entry.label = shownLabel(entry.label);
        m_entryWidth = std::max(m_entryWidth,
                                sampleLength + style::gap + style::widthOf(entry.label, style::labelFont()));
    }
}

int ChartLegend::columns() const
{
    return (m_entries.size() + m_rows - 1) / m_rows;
}

double ChartLegend::width() const
{
    return m_entries.isEmpty() ? 0.0 : columns() * (m_entryWidth + 2 * style::gap) - 2 * style::gap;
}

void ChartLegend::paint(QPainter& painter, const QPointF& topLeft) const
{
    const QFontMetricsF metrics(style::labelFont());
    painter.setFont(style::labelFont());
    for (int index = 0; index < m_entries.size(); ++index) {
        const Entry& entry = m_entries[index];
        const int column = index / m_rows;
        const double x = topLeft.x() + column * (m_entryWidth + 2 * style::gap);
        const double middle = topLeft.y() + (index % m_rows + 0.5) * rowHeight();
        paintSample(painter, entry, {x, middle});
        painter.setPen(Qt::black);
        painter.drawText(
            QPointF(x + sampleLength + style::gap, middle + (metrics.ascent() - metrics.descent()) / 2),
            entry.label);
    }
}
