#include "admin/AdminCommand.h"

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
  monitor-service admin --data site.db subcategory create --project ID --category Settlement --name "Ground level"
  monitor-service admin --data site.db token create --owner "A. Engineer" --name laptop
  monitor-service admin --data site.db grant --token ID --project ID --role editor
  monitor-service admin --data site.db token list --json

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
    return text + '\n';
}

} // namespace

void addAdminCommand(CLI::App& application)
{
    CLI::App* const admin =
        application.add_subcommand("admin", "Projects, categories, tokens and grants")->require_subcommand(1);
    admin->footer(examples);
    const auto settings = std::make_shared<AdminSettings>();
    admin->add_option("--data", settings->file, "The service's data")
        ->required()
        ->type_name("FILE")
        ->envname("MONITOR_SERVICE_DATA");
    addProjectCommands(*admin, settings);
    addCategoryCommands(*admin, settings);
    addSubCategoryCommands(*admin, settings);
    addTokenCommands(*admin, settings);
    addGrantCommands(*admin, settings);
}

std::unique_ptr<Store> openOrCreate(const AdminSettings& settings)
{
    StoreOptions options;
    options.createIfMissing = true;
    return openStore(settings.file, options);
}

std::unique_ptr<Store> openExisting(const AdminSettings& settings)
{
    return openStore(settings.file);
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

void checkProject(const Session& session, const std::string& project)
{
    if (!session.projects().find(project)) {
        throw CommandError("there is no project \"" + project + "\"");
    }
}

void checkCategory(const Session& session, const std::string& category)
{
    if (!session.categories().contains(category)) {
        throw CommandError("there is no category \"" + category + "\"");
    }
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
