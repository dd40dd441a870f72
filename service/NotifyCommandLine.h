#pragma once

#include "notify/NotifySettings.h"

#include <CLI/CLI.hpp>

namespace monitorservice {

/// Adds the options that say how people are told of alarms. They are checked when they are used.
void addNotifyOptions(CLI::App& command, NotifyOptions& options);

} // namespace monitorservice
