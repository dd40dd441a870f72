#pragma once

#include "PointFilter.h"
#include "Session.h"
#include "chart/DailyStatistic.h"

#include <QString>
#include <RKMonitoring.h>

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
};

/// Throws a Failure (BadInput) for what can be seen to be wrong before anything is sent.
void requireDrawable(const DrawingOptions& options);

/// Draws the days of a monitoring that the filter chose, as the options say: over time, or over depth.
void drawOverTime(Session& session, const DrawingOptions& options, const PointFilter& filter,
                  const RKMonitoring& monitoring, const chart::Days& days, PointSelection& selection);
void drawOverDepth(Session& session, const DrawingOptions& options, const PointFilter& filter,
                   const RKMonitoring& monitoring, const chart::Days& days, PointSelection& selection);
