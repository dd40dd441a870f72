#pragma once

#include "chart/Chart.h"

/// Parts of charts that say no more than a test needs.

inline Chart::Curve curveOf(const QString& label, const QVector<QPointF>& points)
{
    Chart::Curve curve;
    curve.label = label;
    curve.points = points;
    return curve;
}

inline Chart::Panel panelOf(const QString& valueLabel, const QVector<Chart::Curve>& curves)
{
    Chart::Panel panel;
    panel.valueLabel = valueLabel;
    panel.curves = curves;
    return panel;
}
