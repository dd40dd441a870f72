#pragma once

#include <QPointF>
#include <QVector>

namespace chart {

/// The points of a curve over time, cut where nothing was measured for long: a line across a gap would show
/// values that nobody has seen. A gap is more than three times as long as the intervals before and after it,
/// so that a change from daily to weekly readings is none.
QVector<QVector<QPointF>> stretches(const QVector<QPointF>& points);

} // namespace chart
