#include "store/OpenStore.h"

#include "store/postgres/PostgresStore.h"
#include "store/sqlite/SqliteCopy.h"
#include "store/sqlite/SqliteStore.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace monitorservice {

namespace {

// "postgresql" of "postgresql://host/name"; empty for a path.
std::string_view schemeOf(std::string_view location)
{
    const std::string_view scheme = location.substr(0, std::min(location.find("://"), location.size()));
    // A single letter is a drive.
    const bool isScheme = scheme.size() < location.size() && scheme.size() > 1 &&
                          std::all_of(scheme.begin(), scheme.end(), [](char c) {
                              return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                     (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
                          });
    return isScheme ? scheme : std::string_view();
}

bool isDatabase(const std::string& location)
{
    const std::string_view scheme = schemeOf(location);
    if (scheme.empty()) {
        return false;
    }
    if (scheme != "postgresql" && scheme != "postgres") {
        // The rest of it may hold a password.
        throw StoreError(StoreFailure::CannotOpen,
                         "cannot open " + std::string(scheme) +
                             "://...: data are kept in a file, given by its path, or at postgresql://...");
    }
    return true;
}

void requireFile(const std::string& location)
{
    if (isDatabase(location)) {
        throw StoreError(StoreFailure::CannotOpen,
                         nameOfStore(location) +
                             " is a database: back it up and restore it with its own tools, such as pg_dump "
                             "and pg_restore");
    }
}

} // namespace

std::unique_ptr<Store> openStore(const std::string& location, const StoreOptions& options)
{
    if (isDatabase(location)) {
        return std::make_unique<PostgresStore>(location, options);
    }
    return std::make_unique<SqliteStore>(location, options);
}

bool storeExists(const std::string& location)
{
    if (isDatabase(location)) {
        return PostgresStore::exists(location);
    }
    std::error_code error;
    return std::filesystem::exists(location, error);
}

std::string nameOfStore(const std::string& location)
{
    return isDatabase(location) ? PostgresStore::nameOf(location) : location;
}

void backUpStore(const std::string& location, const std::string& file)
{
    requireFile(location);
    backUpDatabase(location, file);
}

void restoreStore(const std::string& file, const std::string& location)
{
    requireFile(location);
    restoreDatabase(file, location);
}

} // namespace monitorservice
