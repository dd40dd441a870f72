#pragma once

#include "Period.h"

#include <QString>
#include <RKMonitoringData.h>

namespace CLI {
class App;
}

/// Which monitorings a command is about, as the user says it; empty texts restrict nothing.
struct MonitoringFilter
{
    QString name;
    QString exactName;
    QString model;
    Period period;
};

void addFilterOptions(CLI::App& app, MonitoringFilter& filter);

/// The library's condition. Throws a Failure (BadInput) for a time that cannot be read.
RKMonitoringCondition conditionOf(const MonitoringFilter& filter, const std::function<QTimeZone()>& zoneOf);
