#include "admin/AdminCommand.h"

#include "admin/Suggestion.h"
#include "store/OpenStore.h"

#include <simdjson.h>

#include <algorithm>
#include <iostream>

namespace monitorservice {

namespace {

constexpr const char* examples = R"(
Examples:
  monitor-service admin --data site.db project create --name "Harbour tunnel" --time-zone Europe/Vienna
  monitor-service admin --data site.db category add Settlement Inclinometer
  monitor-service admin --data site.db category rename Settlement Settlements
  monitor-service admin --data site.db subcategory create --project ID --category Settlements --name "Ground level" \
      --kind settlement --unit mm --decimals 1
  monitor-service admin --data site.db token create --owner "A. Engineer" --name laptop
  monitor-service admin --data site.db grant --token ID --project ID --role editor
  monitor-service admin --data site.db token list --json
  monitor-service admin --data site.db backup site-backup.db
  monitor-service admin restore site-backup.db --data restored.db

Everything takes effect at once, also while the service runs.
Environment: MONITOR_SERVICE_DATA names the file when --data is not given.)";

std::size_t characters(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    }));
}

bool isControl(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
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

// To every command, so that it may stand before and behind each word; opening the data requires it. Gives
// that of the command itself.
CLI::Option* addDataOption(CLI::App& command, AdminSettings& settings)
{
    for (CLI::App* const below : command.get_subcommands({})) {
        addDataOption(*below, settings);
    }
    return command.add_option("--data", settings.file, "The service's data")->type_name("FILE");
}

} // namespace

void addAdminCommand(CLI::App& application)
{
    CLI::App* const admin =
        application.add_subcommand("admin", "Projects, categories, tokens and grants; backups")
            ->require_subcommand(1);
    admin->footer(examples);
    const auto settings = std::make_shared<AdminSettings>();
    addProjectCommands(*admin, settings);
    addCategoryCommands(*admin, settings);
    addSubCategoryCommands(*admin, settings);
    addTokenCommands(*admin, settings);
    addGrantCommands(*admin, settings);
    addBackupCommands(*admin, settings);
    addDataOption(*admin, *settings)->envname("MONITOR_SERVICE_DATA");
}

const std::string& dataOf(const AdminSettings& settings)
{
    if (settings.file.empty()) {
        throw CLI::RequiredError("--data");
    }
    return settings.file;
}

std::unique_ptr<Store> openOrCreate(const AdminSettings& settings)
{
    StoreOptions options;
    options.createIfMissing = true;
    return openStore(dataOf(settings), options);
}

std::unique_ptr<Store> openExisting(const AdminSettings& settings)
{
    return openStore(dataOf(settings));
}

void checkText(const std::string& what, const std::string& text)
{
    if (!simdjson::validate_utf8(text.data(), text.size())) {
        throw CommandError(what + " is not UTF-8");
    }
    if (text.find_first_not_of(' ') == std::string::npos) {
        throw CommandError(what + " is empty");
    }
    if (std::any_of(text.begin(), text.end(), isControl)) {
        throw CommandError(what + " has a control character");
    }
}

void refuseToken(const Session& session, const std::string& id)
{
    std::vector<std::pair<std::string, std::string>> known;
    for (const Token& token : session.tokens().list()) {
        known.emplace_back(token.id, token.owner);
    }
    throw CommandError("there is no token \"" + id + "\"" + didYouMeanIdentifier(id, known));
}

void checkProject(const Session& session, const std::string& project)
{
    if (session.projects().find(project)) {
        return;
    }
    std::vector<std::pair<std::string, std::string>> known;
    for (const Project& one : session.projects().list()) {
        known.emplace_back(one.id, one.name);
    }
    throw CommandError("there is no project \"" + project + "\"" + didYouMeanIdentifier(project, known));
}

void checkCategory(const Session& session, const std::string& category)
{
    if (!session.categories().contains(category)) {
        throw CommandError("there is no category \"" + category + "\"" +
                           didYouMean(category, session.categories().list()));
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
