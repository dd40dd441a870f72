#pragma once

#include "admin/StoreCommandLine.h"
#include "administration/AdministrationError.h"
#include "store/Store.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace monitorservice {

/// A command that cannot be carried out; the message says why.
class CommandError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What every admin command is given.
struct AdminSettings
{
    StoreOnCommandLine store;
};

/// Adds `admin` with everything below it. The commands run while the line is parsed, write what was asked for
/// to the standard output, and throw CommandError or StoreError when they fail.
void addAdminCommand(CLI::App& application);

void addBackupCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);
void addProjectCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);
void addCategoryCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);
void addSampleCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);
void addSubCategoryCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);
void addTokenCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);
void addGrantCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings);

/// Opens the data; sets them up where there are none.
std::unique_ptr<Store> openOrCreate(const AdminSettings& settings);
/// Opens the data; there must be some.
std::unique_ptr<Store> openExisting(const AdminSettings& settings);

/// Throws CommandError that says of a refusal what people need: the option that is wrong, and what was
/// probably meant, as far as the session knows it; null: it knows nothing.
[[noreturn]] void explain(const AdministrationError& error, const Session* session);

/// Calls an action that may throw AdministrationError, and explains that.
template <typename Action>
auto explained(const Session* session, Action&& action)
{
    try {
        return action();
    } catch (const AdministrationError& error) {
        explain(error, session);
    }
}

/// Gives an action the session in which it changes the data, and commits. Gives what the action gives.
template <typename Action>
auto administer(Store& store, Action&& action)
{
    const auto session = store.write();
    auto result = explained(session.get(), [&] { return action(*session); });
    session->commit();
    return result;
}

/// Writes warnings to the standard error; what they are about was done nevertheless.
void warn(const std::vector<std::string>& warnings);

/// The value of an option that is not among those it may have: throws CLI::ValidationError, which lists these
/// and suggests the closest.
[[noreturn]] void refuseValue(const std::string& option, const std::string& value,
                              const std::vector<std::string>& possible);

/// Writes the rows under their titles in aligned columns.
void printTable(const std::vector<std::string>& titles, const std::vector<std::vector<std::string>>& rows);

/// Adds the flag --json to a command that lists.
void addJsonFlag(CLI::App& command, bool& json);

} // namespace monitorservice
