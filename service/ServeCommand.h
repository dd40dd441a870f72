#pragma once

#include <CLI/CLI.hpp>

namespace monitorservice {

/// Adds `serve`, which runs the service until SIGTERM or SIGINT. It throws StoreError, std::invalid_argument
/// or std::runtime_error when it cannot start.
void addServeCommand(CLI::App& application);

} // namespace monitorservice
