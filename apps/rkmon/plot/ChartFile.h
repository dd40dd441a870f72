#pragma once

#include <QString>

struct Chart;

/// Throws a Failure (BadInput) unless `path` ends in .svg or .png.
void requireChartPath(const QString& path);

/// Draws `chart` into the file at `path`, replacing it. Needs a QApplication. Throws a Failure when it cannot
/// be written.
void writeChart(const Chart& chart, const QString& path);
