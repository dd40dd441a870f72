#pragma once

#include "chart/Chart.h"
#include "plot/ChartAxis.h"

#include <QColor>
#include <QLineF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

class QPainter;

/// A chart laid out for paper: everything is drawn by the same maps from values to places, so that ticks,
/// grid and curves belong together on whatever it is painted. Needs a QGuiApplication, for fonts.
class ChartPicture
{
public:
    /// Fonts and lines have their size at so many units an inch.
    static constexpr int unitsPerInch = 150;

    /// `size` is in these units.
    ChartPicture(const Chart& chart, const QSizeF& size);

    void paint(QPainter& painter) const;

    /// Characters of the chart's texts for which there is no font, each once.
    static QString charactersWithoutFont(const Chart& chart);

private:
    // A panel's place in the picture, without its labels, and its axis of values.
    struct PanelPlace
    {
        QRectF area;
        ChartAxis values;
    };

    bool isOverTime() const { return m_chart.kind == Chart::Kind::OverTime; }
    void layOut();
    void divideValues();
    void divideOthers();
    double labelSpace() const;
    const ChartAxis& horizontal(int panel) const;
    const ChartAxis& vertical(int panel) const;
    QPointF placeOf(int panel, const QPointF& point) const;
    QLineF levelLine(int panel, double value) const;
    QVector<QRectF> labelPlaces(int panel, const Chart::Limit& limit, const QSizeF& size) const;
    QColor colourOf(const Chart::Limit& limit, int panel) const;

    void paintTitle(QPainter& painter) const;
    void paintGrid(QPainter& painter, int panel) const;
    void paintCurves(QPainter& painter, int panel) const;
    void paintLimits(QPainter& painter, int panel) const;
    void paintLevels(QPainter& painter, int panel) const;
    void paintAlarms(QPainter& painter, int panel) const;
    void paintScales(QPainter& painter, int panel) const;

    const Chart& m_chart;
    QSizeF m_size;
    double m_titleHeight = 0.0;
    QVector<PanelPlace> m_panels;
    ChartAxis m_others; // of time or depth
};
