#pragma once

#include <CLI/CLI.hpp>

namespace monitorservice {

/// Writes to the standard error what is wrong with the command line that `application` was given, with what
/// was probably meant and where help is to be had.
void reportUsageError(const CLI::ParseError& error, const CLI::App& application);

} // namespace monitorservice
