#pragma once

#include "Session.h"

namespace CLI {
class App;
}

/// Adds "undo" below `group`, the commands about data held.
void addDataUndoCommand(CLI::App& group, Command& chosen);
