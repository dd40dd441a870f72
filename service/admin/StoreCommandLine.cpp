#include "admin/StoreCommandLine.h"

#include "access/SecretFile.h"

#include <cstdlib>

namespace monitorservice {

namespace {

std::string environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

void refuseBoth(const char* one, const std::string& first, const char* other, const std::string& second)
{
    if (!first.empty() && !second.empty()) {
        throw CLI::ExcludesError(one, other);
    }
}

} // namespace

void addStoreOptions(CLI::App& command, StoreOnCommandLine& store)
{
    command.add_option("--data", store.file, "The service's data in a file")->type_name("FILE");
    command
        .add_option("--store", store.url,
                    "Or in a database: postgresql://USER@HOST:PORT/NAME; other users of the machine may see "
                    "a password in it")
        ->type_name("URL");
    command
        .add_option("--store-url-file", store.urlFile,
                    "Or in the database whose address, with its password, is the one line of this file")
        ->type_name("FILE");
}

std::string locationOf(const StoreOnCommandLine& store)
{
    refuseBoth("--data", store.file, "--store", store.url);
    refuseBoth("--data", store.file, "--store-url-file", store.urlFile);
    refuseBoth("--store", store.url, "--store-url-file", store.urlFile);
    StoreOnCommandLine used = store;
    if (store.file.empty() && store.url.empty() && store.urlFile.empty()) {
        used.file = environment("MONITOR_SERVICE_DATA");
        used.urlFile = used.file.empty() ? environment("MONITOR_SERVICE_STORE_URL_FILE") : "";
    }
    if (!used.urlFile.empty()) {
        return readSecretFile("--store-url-file", used.urlFile);
    }
    const std::string location = used.url.empty() ? used.file : used.url;
    if (location.empty()) {
        throw CLI::RequiredError("--data or --store");
    }
    return location;
}

} // namespace monitorservice
