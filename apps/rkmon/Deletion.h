#pragma once

#include "Session.h"

#include <QString>

#include <functional>

namespace CLI {
class App;
}

/// What to delete.
struct DeleteOptions
{
    QString id;
    /// The user need not be asked.
    bool isConfirmed = false;
};

/// Adds "delete ID" with -y, --yes below `group`; `identifier` describes ID.
CLI::App& addDeleteCommand(CLI::App& group, Command& chosen, const char* description, const char* identifier,
                           ExitCode (*run)(Session&, const DeleteOptions&));

/// Whether the user wants it. Asks on a terminal unless that is said; `question` is only then called, and may
/// send requests of its own. Throws a Failure (BadInput) when nobody can be asked.
bool confirmed(Session& session, const DeleteOptions& options, const std::function<QString()>& question);
