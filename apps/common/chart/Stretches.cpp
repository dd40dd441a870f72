#include "chart/Stretches.h"

#include <algorithm>

namespace chart {

namespace {

double intervalAfter(const QVector<QPointF>& points, int index)
{
    return points[index + 1].x() - points[index].x();
}

// Whether the interval after `index` is a gap.
bool isGap(const QVector<QPointF>& points, int index)
{
    constexpr double longTimes = 3.0;
    double usual = 0.0;
    if (index > 0) {
        usual = intervalAfter(points, index - 1);
    }
    if (index + 2 < points.size()) {
        usual = std::max(usual, intervalAfter(points, index + 1));
    }
    return usual > 0.0 && intervalAfter(points, index) > longTimes * usual;
}

} // namespace

QVector<QVector<QPointF>> stretches(const QVector<QPointF>& points)
{
    QVector<QVector<QPointF>> cut;
    for (int index = 0; index < points.size(); ++index) {
        if (index == 0 || isGap(points, index - 1)) {
            cut.append(QVector<QPointF>());
        }
        cut.last().append(points[index]);
    }
    return cut;
}

} // namespace chart
