#include "plot/ChartFile.h"

#include "Failure.h"
#include "chart/Chart.h"
#include "plot/ChartPicture.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

namespace {

constexpr double millimetresPerInch = 25.4;

QSizeF millimetresOf(const Chart& chart, const ChartFormat& format)
{
    if (!format.millimetres.isEmpty()) {
        return format.millimetres;
    }
    if (chart.kind == Chart::Kind::OverDepth) {
        return {190, 230};
    }
    constexpr double firstPanel = 140;
    constexpr double furtherPanel = 85;
    return {250, firstPanel + furtherPanel * (chart.panels.size() - 1)};
}

QByteArray svgOf(const Chart& chart, const QSizeF& millimetres)
{
    const QSize size = (millimetres / millimetresPerInch * ChartPicture::unitsPerInch).toSize();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(ChartPicture::unitsPerInch);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    // The generator writes it as it is.
    generator.setTitle(chart.title.toHtmlEscaped());
    QPainter painter(&generator);
    ChartPicture(chart, size).paint(painter);
    painter.end();
    return buffer.data();
}

QByteArray pngOf(const Chart& chart, const QSizeF& millimetres, int dotsPerInch)
{
    constexpr double inchesPerMetre = 1000.0 / millimetresPerInch;
    const QSize size = (millimetres / millimetresPerInch * ChartPicture::unitsPerInch).toSize();
    const double scale = static_cast<double>(dotsPerInch) / ChartPicture::unitsPerInch;
    QImage image((QSizeF(size) * scale).toSize(), QImage::Format_RGB32);
    if (image.isNull()) {
        return {};
    }
    image.setDotsPerMeterX(qRound(dotsPerInch * inchesPerMetre));
    image.setDotsPerMeterY(qRound(dotsPerInch * inchesPerMetre));
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(scale, scale);
    ChartPicture(chart, size).paint(painter);
    painter.end();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray pdfOf(const Chart& chart, const QSizeF& millimetres)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(ChartPicture::unitsPerInch);
    writer.setTitle(chart.title);
    writer.setPageSize(QPageSize(millimetres, QPageSize::Millimeter));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
    ChartPicture(chart, millimetres / millimetresPerInch * ChartPicture::unitsPerInch).paint(painter);
    painter.end();
    return buffer.data();
}

QByteArray suffixOf(const QString& path)
{
    return QFileInfo(path).suffix().toLower().toLatin1();
}

} // namespace

void requireChartPath(const QString& path)
{
    const QByteArray suffix = suffixOf(path);
    if (suffix != "svg" && suffix != "png" && suffix != "pdf") {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("--plot: \"%1\" does not end in .svg, .png or .pdf").arg(path));
    }
}

void writeChart(const Chart& chart, const QString& path, const ChartFormat& format)
{
    const QSizeF millimetres = millimetresOf(chart, format);
    const QByteArray suffix = suffixOf(path);
    const QByteArray content = suffix == "svg"   ? svgOf(chart, millimetres)
                               : suffix == "pdf" ? pdfOf(chart, millimetres)
                                                 : pngOf(chart, millimetres, format.dotsPerInch);
    if (content.isEmpty()) {
        throw Failure(FailureKind::Other, QStringLiteral("cannot draw the chart"));
    }
    QSaveFile target(path);
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size() || !target.commit()) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("cannot write \"%1\": %2").arg(path, target.errorString()));
    }
}
