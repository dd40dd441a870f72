#pragma once

#include <QColor>
#include <QFont>
#include <QString>

/// Fonts, colours and lines of charts for paper, in units of ChartPicture.
namespace style {

constexpr double margin = 24.0;
constexpr double gap = 8.0;
constexpr double tickLength = 6.0;
constexpr double panelGap = 28.0;
constexpr double curveWidth = 3.0;
constexpr double thinWidth = 1.5;
constexpr double limitWidth = 2.25;
constexpr double markerRadius = 5.0;
constexpr double alarmRadius = 11.0;

QFont titleFont();
QFont axisFont();
QFont labelFont();
QFont limitFont();

double widthOf(const QString& text, const QFont& font);
double heightOf(const QFont& font);

/// Of one of `count` curves that are equals.
QColor distinctColour(int index, int count);

/// Of a limit that holds for every curve.
QColor limitColour();

/// Of a depth that is marked.
QColor levelColour();

/// Of one of `count` curves that follow each other: from light to dark, the latest darkest.
QColor sequentialColour(int index, int count);

} // namespace style
