#include "admin/AdminCommand.h"

#include "admin/Suggestion.h"
#include "administration/Existence.h"
#include "store/OpenStore.h"
#include "time/TimeZone.h"

#include <algorithm>
#include <cctype>
#include <iostream>

namespace monitorservice {

namespace {

const std::string examples = std::string(R"(
Examples:
  monitor-service admin --data site.db project create --name "Harbour tunnel" --time-zone Europe/Vienna
  monitor-service admin --data site.db category add Settlement Inclinometer
  monitor-service admin --data site.db category rename Settlement Settlements
  monitor-service admin --data site.db subcategory create --project ID --category Settlements --name "Ground level" \
      --kind settlement --unit mm --decimals 1
  monitor-service admin --data site.db token create --owner "A. Engineer" --name laptop
  monitor-service admin --data site.db grant --token ID --project ID --role editor
  monitor-service admin --data site.db grant --token ID --role administrator
  monitor-service admin --data site.db token list --json
  monitor-service admin --data site.db samples check
  monitor-service admin --data site.db backup site-backup.db
  monitor-service admin restore site-backup.db --data restored.db
  monitor-service admin --store-url-file site.url project list

Everything takes effect at once, also while the service runs.
)") + storeEnvironment;

std::size_t characters(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    }));
}

std::string line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths)
{
    std::string text;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        text += cells[column];
        if (column + 1 < cells.size()) {
            text.append(widths[column] - characters(cells[column]) + 2, ' ');
        }
    }
    // The last cells of a row may be empty.
    return text.substr(0, text.find_last_not_of(' ') + 1) + '\n';
}

// The option of a member: "--time-zone" of "timeZone".
std::string optionOf(const std::string& member)
{
    std::string option = "--";
    for (const char letter : member) {
        if (std::isupper(static_cast<unsigned char>(letter)) != 0) {
            option += '-';
        }
        option += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return option;
}

// Categories are no options: they stand as they are behind the command.
std::string nameOfValue(const AdministrationError& error)
{
    const bool isNamedByItself = error.subject() == "category";
    const std::string name = isNamedByItself ? error.subject() : optionOf(error.subject());
    const bool isShown = isNamedByItself || error.subject() == "timeZone";
    return isShown ? name + " \"" + error.value() + "\"" : name;
}

// Ends the message about a value with one that could be taken, where that is hard to find.
std::string possibleValue(const AdministrationError& error)
{
    if (error.subject() != "timeZone") {
        return {};
    }
    const std::string meant = didYouMean(error.value(), timeZoneNames());
    return meant.empty() ? "; Europe/Vienna would be one" : meant;
}

// Identifiers with the names that are easily given in their place.
std::vector<std::pair<std::string, std::string>> knownAs(const std::string& kind, const Session& session)
{
    std::vector<std::pair<std::string, std::string>> known;
    if (kind == "token") {
        for (const Token& token : session.tokens().list()) {
            known.emplace_back(token.id, token.owner);
        }
    }
    for (const Project& project : session.projects().list()) {
        if (kind == "project") {
            known.emplace_back(project.id, project.name);
        } else if (kind == "sub-category") {
            for (const SubCategory& one : subCategoriesOf(session, project.id)) {
                known.emplace_back(one.id, one.name);
            }
        }
    }
    return known;
}

std::string suggestionFor(const AdministrationError& unknown, const Session& session)
{
    return unknown.subject() == "category"
               ? didYouMean(unknown.value(), session.categories().list())
               : didYouMeanIdentifier(unknown.value(), knownAs(unknown.subject(), session));
}

// To every command, so that they may stand before and behind each word; opening the data requires one.
void addDataOptions(CLI::App& command, AdminSettings& settings)
{
    for (CLI::App* const below : command.get_subcommands({})) {
        addDataOptions(*below, settings);
    }
    addStoreOptions(command, settings.store);
}

} // namespace

void addAdminCommand(CLI::App& application)
{
    CLI::App* const admin =
        application.add_subcommand("admin", "Projects, categories, tokens and grants; checks and backups")
            ->require_subcommand(1);
    admin->footer(examples);
    const auto settings = std::make_shared<AdminSettings>();
    addProjectCommands(*admin, settings);
    addCategoryCommands(*admin, settings);
    addSubCategoryCommands(*admin, settings);
    addTokenCommands(*admin, settings);
    addGrantCommands(*admin, settings);
    addSampleCommands(*admin, settings);
    addBackupCommands(*admin, settings);
    addDataOptions(*admin, *settings);
}

std::unique_ptr<Store> openOrCreate(const AdminSettings& settings)
{
    StoreOptions options;
    options.createIfMissing = true;
    return openStore(locationOf(settings.store), options);
}

std::unique_ptr<Store> openExisting(const AdminSettings& settings)
{
    return openStore(locationOf(settings.store));
}

void explain(const AdministrationError& error, const Session* session)
{
    switch (error.failure()) {
    case AdministrationFailure::BadValue:
        throw CommandError(nameOfValue(error) + " " + error.what() + possibleValue(error));
    case AdministrationFailure::Unknown:
        throw CommandError(error.what() + (session == nullptr ? "" : suggestionFor(error, *session)));
    default:
        throw CommandError(error.what());
    }
}

void warn(const std::vector<std::string>& warnings)
{
    for (const std::string& warning : warnings) {
        std::cerr << "warning: " + warning + '\n';
    }
}

void refuseValue(const std::string& option, const std::string& value,
                 const std::vector<std::string>& possible)
{
    std::string list;
    for (const std::string& one : possible) {
        list += (list.empty() ? "" : ", ") + one;
    }
    throw CLI::ValidationError(option, "\"" + value + "\" is none of " + list + didYouMean(value, possible));
}

void printTable(const std::vector<std::string>& titles, const std::vector<std::vector<std::string>>& rows)
{
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < titles.size(); ++column) {
        std::size_t width = characters(titles[column]);
        for (const auto& row : rows) {
            width = std::max(width, characters(row[column]));
        }
        widths.push_back(width);
    }
    std::cout << line(titles, widths);
    for (const auto& row : rows) {
        std::cout << line(row, widths);
    }
}

void addJsonFlag(CLI::App& command, bool& json)
{
    command.add_flag("--json", json, "As a JSON array");
}

} // namespace monitorservice
