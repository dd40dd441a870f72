#pragma once

#include "Session.h"

namespace CLI {
class App;
}

/// Adds `point import` below `group`.
void addPointImportCommand(CLI::App& group, Command& chosen);
