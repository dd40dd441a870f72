#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

/// What a chart shows, whatever draws it.
struct Chart
{
    enum class Kind
    {
        /// Values (y) over time (x).
        OverTime,
        /// Values (x) over depth (y, downwards).
        OverDepth
    };

    struct Curve
    {
        QString label;
        /// Over time: milliseconds since 1970 on the clock of the site, and value. Over depth: value and
        /// depth.
        QVector<QPointF> points;
    };

    /// A line that the values of one curve should not cross.
    struct Limit
    {
        QString label;
        double value = 0.0;
        /// Index of the curve.
        int curve = 0;
    };

    Kind kind = Kind::OverTime;
    QString title;
    QString valueLabel;
    /// Of the axis of time or depth.
    QString otherLabel;
    QVector<Curve> curves;
    QVector<Limit> limits;
};
