#pragma once

#include <QStringList>

struct Chart;

/// Draws `chart` in characters. Over time: one line per curve, its values as bars of eight heights in equal
/// steps of time, between its least and its greatest value, quantity by quantity, and below them the dates of
/// both ends. Over depth: one line per depth, the first and the last curve's values as ○ and ● on a common
/// scale.
QStringList textChart(const Chart& chart, int width);
