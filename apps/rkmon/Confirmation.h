#pragma once

#include "Session.h"

#include <QString>

#include <functional>

namespace CLI {
class App;
}

/// Adds -y, --yes.
void addConfirmationOption(CLI::App& app, bool& isConfirmed);

/// Whether the user wants it. Asks on a terminal unless `isConfirmed`; `question` is only then called, and
/// may send requests of its own. Throws a usage Failure when nobody can be asked.
bool confirmed(Session& session, bool isConfirmed, const std::function<QString()>& question);
