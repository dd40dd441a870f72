#pragma once

#include "Period.h"
#include "Session.h"

#include <QString>
#include <QStringList>
#include <RKConditions.h>
#include <RKMonitoring.h>

namespace CLI {
class App;
}

/// Which points and which of their samples a command is about.
struct PointFilter
{
    /// Identifier or exact name of the monitoring.
    QString cell;
    QStringList names;
    Period period;
    bool isOnlyFlagA = false;
};

/// Adds --cell (required), --name, --since, --until and --flag-a.
void addPointFilterOptions(CLI::App& app, PointFilter& filter);

/// The library's condition for points of `monitoring`. Throws a Failure (BadInput) for what cannot be asked.
RKPointLocationCondition conditionOf(const PointFilter& filter, const RKMonitoring& monitoring);
