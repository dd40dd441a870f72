#pragma once

#include <QSizeF>
#include <QString>

struct Chart;

/// How a chart is put on paper.
struct ChartFormat
{
    /// Width and height in millimetres; empty: what suits the chart.
    QSizeF millimetres;
    /// Of a .png file.
    int dotsPerInch = 150;
};

/// Throws a Failure (BadInput) unless `path` ends in .svg, .png or .pdf.
void requireChartPath(const QString& path);

/// Draws `chart` into the file at `path`, replacing it: the same drawing whatever the kind of file. Needs a
/// QGuiApplication. Throws a Failure when it cannot be written.
void writeChart(const Chart& chart, const QString& path, const ChartFormat& format = {});
