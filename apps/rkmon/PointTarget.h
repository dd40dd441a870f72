#pragma once

#include "Session.h"

#include <QString>

namespace CLI {
class App;
}

/// One point, as the user says it: by its identifier, or by its name and what tells it from others of that
/// name. Empty texts restrict nothing.
struct PointTarget
{
    QString point; ///< identifier or name
    QString name;
    QString cell;
    QString depth;
    QString subCategory;
};

/// Adds POINT, --name, --cell, --depth and --sub-category.
void addPointTargetOptions(CLI::App& app, PointTarget& target);

/// The point. Throws a Failure when there is none, or when there are several, which it then lists.
PointSummary findPoint(Session& session, const PointTarget& target);

/// A point that was found, for people: `"VH-W1" at 2.5 (6745…)`.
QString titleOf(const PointDetails& point);
