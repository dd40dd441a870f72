#pragma once

#include "Session.h"
#include "chart/Chart.h"
#include "chart/StatisticsChart.h"
#include "chart/Words.h"

#include <QString>

#include <optional>

/// How a statistic is drawn, as the user says it.
struct DrawingOptions
{
    /// In the terminal.
    bool isDrawn = false;
    /// File of a chart for a report; empty: none.
    QString plot;
    QString title;
    QString unit;
    QString depthUnit;
    /// measured, cumulative, daily; over depth: measured, cumulative, incremental.
    QString values = QStringLiteral("measured");
    /// What changes over depth count from: reference, first, previous or a day.
    QString baseline;
    /// Curves of a panel over time that are shown; nothing: all.
    std::optional<int> top;
    /// Curves over depth at most.
    int curves = 10;
    /// Depth of the excavation.
    std::optional<double> level;
    /// Millimetres, as WIDTHxHEIGHT.
    QString size;
    int dotsPerInch = 150;
    /// en or zh.
    QString language = QStringLiteral("en");

    bool isAsked() const { return isDrawn || !plot.isEmpty(); }
    bool countsFromReference() const { return baseline.isEmpty() || baseline == QLatin1String("reference"); }
};

/// Throws a Failure (BadInput) for what can be seen to be wrong before anything is sent.
void requireDrawable(const DrawingOptions& options);

const chart::Words& wordsOf(const DrawingOptions& options);

/// What the values of a chart over time are to be.
chart::Values valuesOf(const DrawingOptions& options);

/// The unit that the user gives, or else that of the quantity.
QString unitOf(const DrawingOptions& options, const MeasuredSubCategory& quantity);

/// Draws `chart` in the terminal and into the file, as far as that is wanted, and says what there is to say
/// of it. Throws a Failure (NotFound) when it has no values; `what` is what it would have shown.
void drawChart(Session& session, const DrawingOptions& options, const Chart& chart, const QString& what);

/// Says that variations were counted from first readings; adds it to the title.
void tellOfGuesses(Session& session, Chart& chart);
