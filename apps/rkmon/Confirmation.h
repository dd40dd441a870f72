#pragma once

#include "Session.h"

#include <QString>

#include <functional>

namespace CLI {
class App;
}

/// Whether the user has said beforehand that something is to be done that cannot simply be undone.
struct Confirmation
{
    bool isGiven = false;
};

/// Adds -y, --yes.
void addConfirmation(CLI::App& app, Confirmation& confirmation);

/// Whether the user wants it. Asks on a terminal unless that is said; `question` is only then called, and may
/// send requests of its own. Throws a Failure (BadInput) when nobody can be asked.
bool isConfirmed(Session& session, const Confirmation& confirmation,
                 const std::function<QString()>& question);
