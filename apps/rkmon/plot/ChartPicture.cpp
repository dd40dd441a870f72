#include "plot/ChartPicture.h"

#include "chart/Stretches.h"
#include "plot/ChartLegend.h"
#include "plot/ChartStyle.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <limits>

namespace {

const QColor gridColour(215, 215, 215);
constexpr double legendGap = 3 * style::gap;

// What an axis must reach from and to.
struct Extent
{
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();

    void include(double value)
    {
        least = std::min(least, value);
        most = std::max(most, value);
    }

    bool isEmpty() const { return least > most; }
};

int ticksFor(double length, double spacing)
{
    constexpr int fewest = 2;
    constexpr int most = 10;
    return std::clamp(static_cast<int>(length / spacing), fewest, most);
}

QColor colourOfCurve(const Chart& chart, int panel, int curve)
{
    const int count = chart.panels[panel].curves.size();
    return chart.kind == Chart::Kind::OverTime ? style::distinctColour(curve, count)
                                               : style::sequentialColour(curve, count);
}

// Markers show single readings; where there are many they only hide each other.
bool hasMarkers(const Chart::Panel& panel)
{
    constexpr int mostCurves = 7;
    constexpr int mostPoints = 500;
    constexpr int fewPoints = 10; // of a curve
    int points = 0;
    for (const Chart::Curve& curve : panel.curves) {
        points += curve.points.size();
    }
    const bool areFew = points <= fewPoints * panel.curves.size();
    return (panel.curves.size() <= mostCurves || areFew) && points <= mostPoints;
}

ChartLegend legendOf(const Chart& chart, int panel, double height)
{
    const Chart::Panel& shown = chart.panels[panel];
    QVector<ChartLegend::Entry> entries;
    for (int curve = 0; curve < shown.curves.size(); ++curve) {
        entries.append(
            {shown.curves[curve].label, colourOfCurve(chart, panel, curve), hasMarkers(shown), false});
    }
    if (!shown.alarms.isEmpty()) {
        entries.append({chart.alarmLabel, style::limitColour(), false, true});
    }
    return {entries, height};
}

void drawCentred(QPainter& painter, const QPointF& topCentre, const QString& text, const QFont& font)
{
    painter.setFont(font);
    painter.drawText(
        QPointF(topCentre.x() - style::widthOf(text, font) / 2, topCentre.y() + QFontMetricsF(font).ascent()),
        text);
}

int longestLabel(const ChartAxis& axis)
{
    int lines = 1;
    for (const ChartAxis::Tick& tick : axis.ticks) {
        lines = std::max(lines, tick.label.size());
    }
    return lines;
}

double widestLabel(const ChartAxis& axis)
{
    double widest = 0.0;
    for (const ChartAxis::Tick& tick : axis.ticks) {
        for (const QString& line : tick.label) {
            widest = std::max(widest, style::widthOf(line, style::labelFont()));
        }
    }
    return widest;
}

Extent extentOfValues(const Chart& chart, const Chart::Panel& panel)
{
    Extent extent;
    for (const Chart::Curve& curve : panel.curves) {
        for (const QPointF& point : curve.points) {
            extent.include(chart.kind == Chart::Kind::OverTime ? point.y() : point.x());
        }
    }
    for (const Chart::Alarm& alarm : panel.alarms) {
        extent.include(alarm.point.y());
    }
    // Limits are shown also while the values are far from them, and not on the frame.
    Extent withLimits = extent;
    for (const Chart::Limit& limit : panel.limits) {
        withLimits.include(limit.value);
    }
    constexpr double beyond = 0.02; // of the whole
    const double margin = (withLimits.most - withLimits.least) * beyond;
    if (withLimits.least < extent.least) {
        withLimits.least -= margin;
    }
    if (withLimits.most > extent.most) {
        withLimits.most += margin;
    }
    return withLimits;
}

Extent extentOfOthers(const Chart& chart)
{
    Extent extent;
    for (const Chart::Panel& panel : chart.panels) {
        for (const Chart::Curve& curve : panel.curves) {
            for (const QPointF& point : curve.points) {
                extent.include(chart.kind == Chart::Kind::OverTime ? point.x() : point.y());
            }
        }
        for (const Chart::Alarm& alarm : panel.alarms) {
            extent.include(alarm.point.x());
        }
        for (const Chart::Level& level : panel.levels) {
            extent.include(level.depth);
        }
    }
    return extent;
}

// The first place that nothing stands in yet, or else the first of all.
QRectF freePlace(const QVector<QRectF>& places, const QVector<QRectF>& taken)
{
    for (const QRectF& place : places) {
        const bool isFree = std::none_of(taken.cbegin(), taken.cend(),
                                         [&](const QRectF& other) { return other.intersects(place); });
        if (isFree) {
            return place;
        }
    }
    return places.constFirst();
}

} // namespace

ChartPicture::ChartPicture(const Chart& chart, const QSizeF& size) : m_chart(chart), m_size(size)
{
    layOut();
}

void ChartPicture::layOut()
{
    const QRectF titleSpace(0, 0, m_size.width() - 2 * style::margin, m_size.height());
    m_titleHeight = QFontMetricsF(style::titleFont())
                        .boundingRect(titleSpace, Qt::AlignHCenter | Qt::TextWordWrap, m_chart.title)
                        .height();
    const int count = m_chart.panels.size();
    const double lineHeight = style::heightOf(style::labelFont());
    // As if labels of time had two lines, for how many ticks fit is only known afterwards.
    const double scaleHeight =
        style::tickLength + 2 * lineHeight + style::gap + style::heightOf(style::axisFont());
    const double top = style::margin + m_titleHeight + 2 * style::gap;
    const double height =
        (m_size.height() - style::margin - scaleHeight - top - (count - 1) * style::panelGap) /
        std::max(1, count);

    m_panels.resize(count);
    double legendWidth = 0.0;
    for (int panel = 0; panel < count; ++panel) {
        m_panels[panel].area = QRectF(0, top + panel * (height + style::panelGap), 0, height);
        legendWidth = std::max(legendWidth, legendOf(m_chart, panel, height).width());
    }
    const double right = m_size.width() - style::margin - legendWidth - legendGap;
    // Labels of values stand on the left over time, those of depth over depth.
    for (PanelPlace& place : m_panels) {
        place.area.setRight(right);
        place.area.setLeft(right / 2);
    }
    if (isOverTime()) {
        divideValues();
    } else {
        divideOthers();
    }
    for (PanelPlace& place : m_panels) {
        place.area.setLeft(style::margin + style::heightOf(style::axisFont()) + style::gap + labelSpace());
    }
    if (isOverTime()) {
        divideOthers();
    } else {
        divideValues();
    }
}

void ChartPicture::divideValues()
{
    constexpr double heightOfTick = 50.0;
    constexpr double widthOfTick = 100.0;
    for (int panel = 0; panel < m_panels.size(); ++panel) {
        PanelPlace& place = m_panels[panel];
        const int ticks = isOverTime() ? ticksFor(place.area.height(), heightOfTick)
                                       : ticksFor(place.area.width(), widthOfTick);
        const Extent extent = extentOfValues(m_chart, m_chart.panels[panel]);
        if (!extent.isEmpty()) {
            place.values = axisOfValues(extent.least, extent.most, ticks);
        }
    }
}

void ChartPicture::divideOthers()
{
    constexpr double widthOfDate = 130.0;
    constexpr double heightOfTick = 50.0;
    const Extent extent = extentOfOthers(m_chart);
    if (extent.isEmpty()) {
        return;
    }
    const QRectF& area = m_panels.constFirst().area;
    m_others = isOverTime() ? axisOfTimes(extent.least, extent.most, ticksFor(area.width(), widthOfDate))
                            : axisOfValues(extent.least, extent.most, ticksFor(area.height(), heightOfTick));
}

// What the labels on the left take, with their ticks.
double ChartPicture::labelSpace() const
{
    double widest = isOverTime() ? 0.0 : widestLabel(m_others);
    for (const PanelPlace& place : m_panels) {
        widest = std::max(widest, isOverTime() ? widestLabel(place.values) : 0.0);
    }
    return widest + style::gap + style::tickLength;
}

const ChartAxis& ChartPicture::horizontal(int panel) const
{
    return isOverTime() ? m_others : m_panels[panel].values;
}

const ChartAxis& ChartPicture::vertical(int panel) const
{
    return isOverTime() ? m_panels[panel].values : m_others;
}

QPointF ChartPicture::placeOf(int panel, const QPointF& point) const
{
    const QRectF& area = m_panels[panel].area;
    const double x = horizontal(panel).place(point.x(), area.left(), area.right());
    // Values grow upwards, depths downwards.
    return {x, isOverTime() ? vertical(panel).place(point.y(), area.bottom(), area.top())
                            : vertical(panel).place(point.y(), area.top(), area.bottom())};
}

// The line at a value, across the panel.
QLineF ChartPicture::levelLine(int panel, double value) const
{
    const QRectF& area = m_panels[panel].area;
    if (isOverTime()) {
        const double y = m_panels[panel].values.place(value, area.bottom(), area.top());
        return {area.left(), y, area.right(), y};
    }
    const double x = m_panels[panel].values.place(value, area.left(), area.right());
    return {x, area.top(), x, area.bottom()};
}

QColor ChartPicture::colourOf(const Chart::Limit& limit, int panel) const
{
    return limit.curve == Chart::Limit::everyCurve ? style::limitColour()
                                                   : colourOfCurve(m_chart, panel, limit.curve);
}

void ChartPicture::paint(QPainter& painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    paintTitle(painter);
    for (int panel = 0; panel < m_panels.size(); ++panel) {
        paintGrid(painter, panel);
        paintCurves(painter, panel);
        paintLimits(painter, panel);
        paintLevels(painter, panel);
        paintAlarms(painter, panel);
        paintScales(painter, panel);
        const QRectF& area = m_panels[panel].area;
        legendOf(m_chart, panel, area.height()).paint(painter, {area.right() + legendGap, area.top()});
    }
}

void ChartPicture::paintTitle(QPainter& painter) const
{
    painter.setPen(Qt::black);
    painter.setFont(style::titleFont());
    painter.drawText(QRectF(style::margin, style::margin, m_size.width() - 2 * style::margin, m_titleHeight),
                     Qt::AlignHCenter | Qt::TextWordWrap, m_chart.title);
}

void ChartPicture::paintGrid(QPainter& painter, int panel) const
{
    const QRectF& area = m_panels[panel].area;
    painter.setPen(QPen(gridColour, style::thinWidth));
    for (const ChartAxis::Tick& tick : horizontal(panel).ticks) {
        const double x = horizontal(panel).place(tick.value, area.left(), area.right());
        painter.drawLine(QLineF(x, area.top(), x, area.bottom()));
    }
    for (const ChartAxis::Tick& tick : vertical(panel).ticks) {
        const double y = placeOf(panel, {0.0, tick.value}).y();
        painter.drawLine(QLineF(area.left(), y, area.right(), y));
    }
}

void ChartPicture::paintCurves(QPainter& painter, int panel) const
{
    const Chart::Panel& shown = m_chart.panels[panel];
    const bool isMarked = hasMarkers(shown);
    for (int curve = 0; curve < shown.curves.size(); ++curve) {
        const QColor colour = colourOfCurve(m_chart, panel, curve);
        const QVector<QPointF>& points = shown.curves[curve].points;
        const QVector<QVector<QPointF>> lines =
            isOverTime() ? chart::stretches(points) : QVector<QVector<QPointF>>{points};
        for (const QVector<QPointF>& line : lines) {
            QPolygonF places;
            for (const QPointF& point : line) {
                places.append(placeOf(panel, point));
            }
            painter.setPen(QPen(colour, style::curveWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawPolyline(places);
            if (!isMarked && places.size() > 1) {
                continue;
            }
            painter.setBrush(colour);
            for (const QPointF& place : qAsConst(places)) {
                painter.drawEllipse(place, style::markerRadius - style::curveWidth / 2,
                                    style::markerRadius - style::curveWidth / 2);
            }
            painter.setBrush(Qt::NoBrush);
        }
    }
}

void ChartPicture::paintLimits(QPainter& painter, int panel) const
{
    for (const Chart::Limit& limit : m_chart.panels[panel].limits) {
        painter.setPen(
            QPen(colourOf(limit, panel), style::limitWidth, limit.isWarning ? Qt::DotLine : Qt::DashLine));
        painter.drawLine(levelLine(panel, limit.value));
    }
    painter.setFont(style::limitFont());
    const QFontMetricsF metrics(style::limitFont());
    QVector<QRectF> taken;
    for (const Chart::Limit& limit : m_chart.panels[panel].limits) {
        const QSizeF size(metrics.horizontalAdvance(limit.label) + style::gap, metrics.height());
        const QRectF place = freePlace(labelPlaces(panel, limit, size), taken);
        taken.append(place);
        painter.fillRect(place, QColor(255, 255, 255, 200));
        painter.setPen(colourOf(limit, panel));
        painter.drawText(QPointF(place.left() + style::gap / 2, place.top() + metrics.ascent()), limit.label);
    }
}

// Where the label of a limit may stand, the best place first.
QVector<QRectF> ChartPicture::labelPlaces(int panel, const Chart::Limit& limit, const QSizeF& size) const
{
    const QRectF& area = m_panels[panel].area;
    const QLineF line = levelLine(panel, limit.value);
    QVector<QRectF> places;
    if (isOverTime()) {
        for (const double left :
             {area.right() - size.width(), area.left(), area.center().x() - size.width() / 2}) {
            places.append({{left, line.y1() - size.height() - style::limitWidth}, size});
            places.append({{left, line.y1() + style::limitWidth}, size});
        }
    } else {
        const double left =
            std::clamp(line.x1() - size.width() / 2, area.left(), area.right() - size.width());
        for (int row = 0; row < 3; ++row) {
            places.append({{left, area.bottom() - (row + 1) * size.height()}, size});
        }
    }
    return places;
}

// Red rings about the readings.
void ChartPicture::paintAlarms(QPainter& painter, int panel) const
{
    painter.setPen(QPen(style::limitColour(), style::curveWidth));
    for (const Chart::Alarm& alarm : m_chart.panels[panel].alarms) {
        painter.drawEllipse(placeOf(panel, alarm.point), style::alarmRadius, style::alarmRadius);
    }
}

void ChartPicture::paintLevels(QPainter& painter, int panel) const
{
    const QRectF& area = m_panels[panel].area;
    const QFontMetricsF metrics(style::limitFont());
    painter.setFont(style::limitFont());
    for (const Chart::Level& level : m_chart.panels[panel].levels) {
        const double y = placeOf(panel, {0.0, level.depth}).y();
        painter.setPen(QPen(style::levelColour(), style::limitWidth, Qt::DashDotLine));
        painter.drawLine(QLineF(area.left(), y, area.right(), y));
        painter.drawText(QPointF(area.left() + style::gap / 2, y - style::limitWidth - metrics.descent()),
                         level.label);
    }
}

void ChartPicture::paintScales(QPainter& painter, int panel) const
{
    const QRectF& area = m_panels[panel].area;
    painter.setPen(QPen(Qt::black, style::thinWidth));
    painter.drawRect(area);
    const QFontMetricsF metrics(style::labelFont());
    for (const ChartAxis::Tick& tick : vertical(panel).ticks) {
        const double y = placeOf(panel, {0.0, tick.value}).y();
        painter.drawLine(QLineF(area.left() - style::tickLength, y, area.left(), y));
        const QString& text = tick.label.constFirst();
        painter.setFont(style::labelFont());
        painter.drawText(QPointF(area.left() - style::tickLength - style::gap / 2 -
                                     style::widthOf(text, style::labelFont()),
                                 y + (metrics.ascent() - metrics.descent()) / 2),
                         text);
    }
    const bool hasLabels = panel == m_panels.size() - 1;
    const ChartAxis& axis = horizontal(panel);
    for (const ChartAxis::Tick& tick : axis.ticks) {
        const double x = axis.place(tick.value, area.left(), area.right());
        painter.drawLine(QLineF(x, area.bottom(), x, area.bottom() + style::tickLength));
        double top = area.bottom() + style::tickLength;
        for (const QString& line : hasLabels ? tick.label : QStringList()) {
            drawCentred(painter, {x, top}, line, style::labelFont());
            top += style::heightOf(style::labelFont());
        }
    }
    const QString& valueLabel = m_chart.panels[panel].valueLabel;
    if (hasLabels) {
        const double top = area.bottom() + style::tickLength +
                           longestLabel(axis) * style::heightOf(style::labelFont()) + style::gap / 2;
        drawCentred(painter, {area.center().x(), top}, isOverTime() ? m_chart.otherLabel : valueLabel,
                    style::axisFont());
    }
    painter.save();
    painter.translate(style::margin, area.center().y());
    painter.rotate(-90);
    drawCentred(painter, {0.0, 0.0}, isOverTime() ? valueLabel : m_chart.otherLabel, style::axisFont());
    painter.restore();
}

QString ChartPicture::charactersWithoutFont(const Chart& chart)
{
    QString texts = chart.title + chart.otherLabel + chart.alarmLabel;
    for (const Chart::Panel& panel : chart.panels) {
        texts += panel.valueLabel;
        for (const Chart::Curve& curve : panel.curves) {
            texts += curve.label;
        }
        for (const Chart::Limit& limit : panel.limits) {
            texts += limit.label;
        }
        for (const Chart::Level& level : panel.levels) {
            texts += level.label;
        }
    }
    const QFontMetricsF metrics(style::labelFont());
    QString missing;
    for (const uint character : texts.toUcs4()) {
        const QString text = QString::fromUcs4(&character, 1);
        if (!metrics.inFontUcs4(character) && !missing.contains(text)) {
            missing += text;
        }
    }
    return missing;
}
