#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace monitorservice {

/// Where the data are, as it was given on a command line.
struct StoreOnCommandLine
{
    std::string file;    ///< --data
    std::string url;     ///< --store
    std::string urlFile; ///< --store-url-file
};

/// What the help says of the environment.
constexpr const char* storeEnvironment =
    "Environment: MONITOR_SERVICE_DATA names the file, and MONITOR_SERVICE_STORE_URL_FILE the file with the\n"
    "address of the database, when none of --data, --store and --store-url-file is given.";

/// Adds --data, --store and --store-url-file.
void addStoreOptions(CLI::App& command, StoreOnCommandLine& store);

/// The location for openStore(): what the options say, and when there are none, the environment. Throws
/// CLI::RequiredError when nothing says it, CLI::ExcludesError when two options do, and std::invalid_argument
/// when the file with the address cannot be used.
std::string locationOf(const StoreOnCommandLine& store);

} // namespace monitorservice
