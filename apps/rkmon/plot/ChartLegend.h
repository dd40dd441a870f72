#pragma once

#include <QColor>
#include <QPointF>
#include <QString>
#include <QVector>

class QPainter;

/// What the lines of a panel are called, in as many columns as its height needs.
class ChartLegend
{
public:
    struct Entry
    {
        QString label;
        QColor colour;
        bool hasMarker = false;
        /// A ring about readings, and no line.
        bool isAlarm = false;
    };

    /// `height` is what there is for it.
    ChartLegend(const QVector<Entry>& entries, double height);

    double width() const;
    void paint(QPainter& painter, const QPointF& topLeft) const;

private:
    int columns() const;

    QVector<Entry> m_entries;
    int m_rows;
    double m_entryWidth = 0.0;
};
