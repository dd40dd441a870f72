#pragma once

#include <QDate>
#include <QPointF>
#include <QString>
#include <QVector>

/// What a chart shows, whatever draws it: panels of one quantity each, one above the other over one axis of
/// time, or a single panel over depth.
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
        /// Identifier, name and depth of the point that it is of, and identifier of its monitoring; empty
        /// when it is of several.
        QString pointId;
        QString pointName;
        QString depth;
        QString cellId;
        /// Over time: milliseconds since 1970 on the clock of the site, and value, in the order of time. Over
        /// depth: value and depth, from the top.
        QVector<QPointF> points;
        /// Over time: the project's day of each point.
        QVector<QDate> days;
    };

    /// A line that values should not cross, or one from which on to warn.
    struct Limit
    {
        /// `curve` of a line for the whole panel.
        static constexpr int everyCurve = -1;

        bool isWarning = false;
        QString label;
        double value = 0.0;
        /// Index of the curve that it is for.
        int curve = everyCurve;
    };

    /// A reading that an alarm tells of.
    struct Alarm
    {
        QPointF point;
        /// Index of the curve.
        int curve = 0;
    };

    /// A depth that is marked, such as that of the excavation.
    struct Level
    {
        QString label;
        double depth = 0.0;
    };

    /// Curves of one quantity, which share an axis of values.
    struct Panel
    {
        /// Identifier of the sub-category.
        QString subCategoryId;
        /// Of the axis of values, with their unit.
        QString valueLabel;
        QVector<Curve> curves;
        QVector<Limit> limits;
        QVector<Alarm> alarms;
        QVector<Level> levels;
    };

    Kind kind = Kind::OverTime;
    QString title;
    /// Of the axis of time or depth.
    QString otherLabel;
    /// Of the markers of alarms.
    QString alarmLabel;
    QVector<Panel> panels;
};
