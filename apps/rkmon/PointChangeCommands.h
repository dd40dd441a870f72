#pragma once

#include "Session.h"

namespace CLI {
class App;
}

/// Adds "reference" and "delete" below `group`, the commands about points.
void addPointChangeCommands(CLI::App& group, Command& chosen);
