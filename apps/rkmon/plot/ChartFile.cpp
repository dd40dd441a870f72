// A header of Qwt gives flags as a number, which is among what we otherwise switch off as deprecated.
#undef QT_DISABLE_DEPRECATED_BEFORE

#include "plot/ChartFile.h"

#include "Failure.h"
#include "chart/Chart.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QSaveFile>
#include <QSvgGenerator>

#include <qwt_date_scale_draw.h>
#include <qwt_date_scale_engine.h>
#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_marker.h>
#include <qwt_plot_renderer.h>
#include <qwt_symbol.h>
#include <qwt_text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr int titleSize = 12; // points
constexpr int labelSize = 9;
constexpr double lineWidth = 1.6;
constexpr int symbolSize = 5;

QFont fontOf(int pointSize, QFont::Weight weight = QFont::Normal)
{
    QFont font;
    font.setPointSize(pointSize);
    font.setWeight(weight);
    return font;
}

QwtText textOf(const QString& text, int pointSize, QFont::Weight weight = QFont::Normal)
{
    // Plain: a name is never taken for markup.
    QwtText result(text, QwtText::PlainText);
    result.setFont(fontOf(pointSize, weight));
    result.setColor(Qt::black);
    return result;
}

// Colours that people with any kind of colour vision tell apart (Okabe and Ito, 2008).
QColor distinctColour(int index)
{
    static const std::array<QColor, 7> colours{
        QColor(0, 114, 178),  QColor(213, 94, 0),  QColor(0, 158, 115), QColor(204, 121, 167),
        QColor(86, 180, 233), QColor(230, 159, 0), QColor(64, 64, 64)};
    return colours[static_cast<std::size_t>(index) % colours.size()];
}

// From light to dark, the latest darkest.
QColor sequentialColour(int index, int count)
{
    const QColor first(253, 190, 110);
    const QColor middle(200, 60, 110);
    const QColor last(30, 20, 100);
    const double place = count > 1 ? static_cast<double>(index) / (count - 1) : 1.0;
    const bool isEarly = place < 0.5;
    const QColor& from = isEarly ? first : middle;
    const QColor& to = isEarly ? middle : last;
    const double share = isEarly ? place * 2 : place * 2 - 1;
    const auto mixed = [share](int left, int right) {
        return static_cast<int>(std::lround(left + (right - left) * share));
    };
    return {mixed(from.red(), to.red()), mixed(from.green(), to.green()), mixed(from.blue(), to.blue())};
}

QColor colourOf(const Chart& chart, int curve)
{
    return chart.kind == Chart::Kind::OverTime ? distinctColour(curve)
                                               : sequentialColour(curve, chart.curves.size());
}

// A chart as Qwt draws it.
class Drawing
{
public:
    explicit Drawing(const Chart& chart) : m_chart(chart)
    {
        addTitles();
        addGrid();
        for (int curve = 0; curve < m_chart.curves.size(); ++curve) {
            addCurve(curve);
        }
        for (const Chart::Limit& limit : m_chart.limits) {
            addLimit(limit);
        }
        scaleAxes();
        m_plot.insertLegend(std::make_unique<QwtLegend>().release(), QwtPlot::RightLegend);
        m_plot.legend()->setFont(fontOf(labelSize));
        m_plot.replot();
    }

    QByteArray svg()
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setResolution(dotsPerInch);
        generator.setSize(size());
        generator.setViewBox(QRect(QPoint(0, 0), size()));
        // The generator writes it as it is.
        generator.setTitle(m_chart.title.toHtmlEscaped());
        paint(generator);
        return buffer.data();
    }

    QByteArray png()
    {
        constexpr double inchesPerMetre = 1000.0 / millimetresPerInch;
        QImage image(size(), QImage::Format_RGB32);
        image.setDotsPerMeterX(qRound(dotsPerInch * inchesPerMetre));
        image.setDotsPerMeterY(qRound(dotsPerInch * inchesPerMetre));
        image.fill(Qt::white);
        paint(image);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return buffer.data();
    }

private:
    static constexpr int dotsPerInch = 150;
    static constexpr double millimetresPerInch = 25.4;

    QSize size() const
    {
        const QSizeF millimetres = isOverTime() ? QSizeF(250, 140) : QSizeF(190, 230);
        return (millimetres / millimetresPerInch * dotsPerInch).toSize();
    }

    void paint(QPaintDevice& device)
    {
        QwtPlotRenderer renderer;
        renderer.setDiscardFlag(QwtPlotRenderer::DiscardBackground);
        renderer.setDiscardFlag(QwtPlotRenderer::DiscardCanvasFrame);
        renderer.setLayoutFlag(QwtPlotRenderer::FrameWithScales);
        QPainter painter(&device);
        renderer.render(&m_plot, &painter, QRectF(QPointF(0, 0), size()));
    }

    bool isOverTime() const { return m_chart.kind == Chart::Kind::OverTime; }
    int valueAxis() const { return isOverTime() ? QwtPlot::yLeft : QwtPlot::xBottom; }
    int otherAxis() const { return isOverTime() ? QwtPlot::xBottom : QwtPlot::yLeft; }

    void addTitles()
    {
        m_plot.setTitle(textOf(m_chart.title, titleSize, QFont::Bold));
        m_plot.setCanvasBackground(Qt::white);
        // Otherwise the ticks stand beside the values that they name.
        m_plot.plotLayout()->setAlignCanvasToScales(true);
        m_plot.setAxisTitle(valueAxis(), textOf(m_chart.valueLabel, labelSize, QFont::DemiBold));
        m_plot.setAxisTitle(otherAxis(), textOf(m_chart.otherLabel, labelSize, QFont::DemiBold));
        m_plot.setAxisFont(QwtPlot::yLeft, fontOf(labelSize));
        m_plot.setAxisFont(QwtPlot::xBottom, fontOf(labelSize));
    }

    void addGrid()
    {
        auto grid = std::make_unique<QwtPlotGrid>();
        grid->setMajorPen(QColor(215, 215, 215), 0.8);
        grid->attach(&m_plot);
        m_items.push_back(std::move(grid));
    }

    void addCurve(int index)
    {
        const Chart::Curve& shown = m_chart.curves[index];
        const QColor colour = colourOf(m_chart, index);
        auto curve = std::make_unique<QwtPlotCurve>(textOf(shown.label, labelSize));
        curve->setSamples(shown.points);
        curve->setPen(colour, lineWidth);
        curve->setSymbol(std::make_unique<QwtSymbol>(QwtSymbol::Ellipse, colour, QPen(colour),
                                                     QSize(symbolSize, symbolSize))
                             .release());
        curve->setRenderHint(QwtPlotItem::RenderAntialiased);
        curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
        curve->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
        curve->setLegendIconSize(QSize(24, 10));
        curve->attach(&m_plot);
        m_items.push_back(std::move(curve));
    }

    void addLimit(const Chart::Limit& limit)
    {
        auto marker = std::make_unique<QwtPlotMarker>();
        marker->setLineStyle(isOverTime() ? QwtPlotMarker::HLine : QwtPlotMarker::VLine);
        marker->setLinePen(colourOf(m_chart, limit.curve), lineWidth, Qt::DashLine);
        marker->setValue(limit.value, limit.value);
        QwtText label = textOf(limit.label, labelSize - 1);
        label.setColor(colourOf(m_chart, limit.curve));
        marker->setLabel(label);
        marker->setLabelAlignment(Qt::AlignRight | Qt::AlignTop);
        marker->attach(&m_plot);
        m_items.push_back(std::move(marker));
    }

    void scaleAxes()
    {
        std::vector<double> values;
        std::vector<double> others;
        for (const Chart::Curve& curve : m_chart.curves) {
            for (const QPointF& point : curve.points) {
                values.push_back(isOverTime() ? point.y() : point.x());
                others.push_back(isOverTime() ? point.x() : point.y());
            }
        }
        // Limits are shown also while the values are far from them.
        for (const Chart::Limit& limit : m_chart.limits) {
            values.push_back(limit.value);
        }
        scale(valueAxis(), values);
        if (isOverTime()) {
            // Ownership of both goes to the plot.
            m_plot.setAxisScaleDraw(QwtPlot::xBottom, dateScale().release());
            m_plot.setAxisScaleEngine(QwtPlot::xBottom,
                                      std::make_unique<QwtDateScaleEngine>(Qt::UTC).release());
            scale(QwtPlot::xBottom, others);
        } else {
            m_plot.axisScaleEngine(QwtPlot::yLeft)->setAttribute(QwtScaleEngine::Inverted);
            scale(QwtPlot::yLeft, others);
        }
    }

    static std::unique_ptr<QwtDateScaleDraw> dateScale()
    {
        auto draw = std::make_unique<QwtDateScaleDraw>(Qt::UTC);
        const QString day = QStringLiteral("yyyy-MM-dd");
        for (const auto interval : {QwtDate::Day, QwtDate::Week}) {
            draw->setDateFormat(interval, day);
        }
        for (const auto interval : {QwtDate::Hour, QwtDate::Minute}) {
            draw->setDateFormat(interval, QStringLiteral("hh:mm\nyyyy-MM-dd"));
        }
        draw->setDateFormat(QwtDate::Month, QStringLiteral("yyyy-MM"));
        draw->setDateFormat(QwtDate::Year, QStringLiteral("yyyy"));
        return draw;
    }

    void scale(int axis, const std::vector<double>& values)
    {
        if (values.empty()) {
            return;
        }
        constexpr int mostSteps = 8;
        const auto [least, most] = std::minmax_element(values.cbegin(), values.cend());
        double from = *least;
        double to = *most;
        double step = 0.0;
        m_plot.axisScaleEngine(axis)->autoScale(mostSteps, from, to, step);
        m_plot.setAxisScaleDiv(axis, m_plot.axisScaleEngine(axis)->divideScale(from, to, mostSteps, 5, step));
    }

    const Chart& m_chart;
    QwtPlot m_plot;
    // After the plot: items leave it when they go.
    std::vector<std::unique_ptr<QwtPlotItem>> m_items;
};

QByteArray formatOf(const QString& path)
{
    return QFileInfo(path).suffix().toLower().toLatin1();
}

} // namespace

void requireChartPath(const QString& path)
{
    const QByteArray format = formatOf(path);
    if (format != "svg" && format != "png") {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("--plot: \"%1\" ends neither in .svg nor in .png").arg(path));
    }
}

void writeChart(const Chart& chart, const QString& path)
{
    Drawing drawing(chart);
    const QByteArray content = formatOf(path) == "svg" ? drawing.svg() : drawing.png();
    if (content.isEmpty()) {
        throw Failure(FailureKind::Other, QStringLiteral("cannot draw the chart"));
    }
    QSaveFile target(path);
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size() || !target.commit()) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("cannot write \"%1\": %2").arg(path, target.errorString()));
    }
}
