#pragma once

#include <CLI/CLI.hpp>

namespace monitorservice {

/// Adds `copy`, which copies the data of a service to another place. It throws CopyError, StoreError,
/// DamagedDocument or std::invalid_argument when it cannot.
void addCopyCommand(CLI::App& application);

} // namespace monitorservice
