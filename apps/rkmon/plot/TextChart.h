#pragma once

#include <QSize>
#include <QStringList>

struct Chart;

/// Draws `chart` in characters. Over time: one line per curve, its values as bars of eight heights in equal
/// steps of time, between its least and its greatest value, quantity by quantity, and below them the dates of
/// both ends. Over depth: the first and the last curve's values as ○ and ● on a common scale, in as many
/// lines as there are, which are equal steps of depth; both ends have theirs. `cells` are the columns and
/// lines there are.
QStringList textChart(const Chart& chart, const QSize& cells);
