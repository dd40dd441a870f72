#pragma once

#include "DrawingOptions.h"
#include "PointFilter.h"
#include "Session.h"
#include "chart/DailyStatistic.h"
#include "points/PointSelection.h"

#include <RKMonitoring.h>

#include <vector>

/// The statistic of a monitoring, of the points that the filter chose.
struct MonitoringStatistic
{
    RKMonitoring monitoring;
    chart::Days days;
    PointSelection selection;
};

/// Draws the statistics of monitorings over time, in one chart.
void drawOverTime(Session& session, const DrawingOptions& options, const PointFilter& filter,
                  std::vector<MonitoringStatistic>& statistics);

/// Draws that of a monitoring over depth.
void drawOverDepth(Session& session, const DrawingOptions& options, const PointFilter& filter,
                   MonitoringStatistic& statistic);

/// "monitoring: points", or the title that the user gives.
QString titleOf(const DrawingOptions& options, const PointFilter& filter, const QString& monitorings);
