#pragma once

#include "Period.h"
#include "Session.h"
#include "points/PointSelection.h"

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
    /// Identifiers or exact names of monitorings; as a rule one.
    QStringList cells;
    QStringList names;
    /// Identifiers, names or aliases of sub-categories.
    QStringList subCategories;
    Period period;
    bool isOnlyFlagA = false;
};

/// Adds --cell (required), --name, --sub-category, --since, --until and --flag-a.
void addPointFilterOptions(CLI::App& app, PointFilter& filter);

/// The same with a --cell that may be given several times.
void addPointFilterOptionsOfSeveral(CLI::App& app, PointFilter& filter);

/// The only monitoring that the filter names. Throws a Failure when there is none.
RKMonitoring monitoringOf(Session& session, const PointFilter& filter);

/// The library's condition for points of `monitoring`, which knows no sub-categories. Throws a Failure
/// (BadInput) for what cannot be asked.
RKPointLocationCondition conditionOf(Session& session, const PointFilter& filter,
                                     const RKMonitoring& monitoring);

/// The points of `monitoring` that the user wants; to be made after they were read.
PointSelection selectionOf(Session& session, const PointFilter& filter, const RKMonitoring& monitoring);
