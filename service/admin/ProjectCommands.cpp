#include "admin/AdminCommand.h"
#include "admin/Suggestion.h"
#include "json/JsonText.h"
#include "time/TimeZone.h"

#include <iostream>

namespace monitorservice {

namespace {

void createProject(const AdminSettings& settings, Project project)
{
    checkText("--name", project.name);
    if (!isTimeZone(project.timeZone)) {
        const std::string meant = didYouMean(project.timeZone, timeZoneNames());
        throw CommandError("--time-zone \"" + project.timeZone +
                           "\" is not a zone of this system's time zone database" +
                           (meant.empty() ? "; Europe/Vienna would be one" : meant));
    }
    const auto store = openOrCreate(settings);
    const auto session = store->write();
    project.id = session->newIdentifier();
    project.createdAt = session->now();
    session->projects().insert(project);
    session->commit();
    std::cout << project.id << '\n';
}

void listProjects(const AdminSettings& settings, bool json)
{
    const auto projects = openExisting(settings)->read()->projects().list();
    if (!json) {
        std::vector<std::vector<std::string>> rows;
        rows.reserve(projects.size());
        for (const Project& project : projects) {
            rows.push_back({project.id, project.timeZone, isoText(project.createdAt), project.name});
        }
        printTable({"ID", "TIME ZONE", "CREATED", "NAME"}, rows);
        return;
    }
    JsonArrayWriter array;
    for (const Project& project : projects) {
        array.json(JsonObjectWriter()
                       .text("_id", project.id)
                       .text("name", project.name)
                       .text("timeZone", project.timeZone)
                       .text("createdAt", isoText(project.createdAt))
                       .finish());
    }
    std::cout << array.finish() << '\n';
}

} // namespace

void addProjectCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const project =
        admin.add_subcommand("project", "Sites with their monitorings")->require_subcommand(1);

    CLI::App* const create = project->add_subcommand("create", "Make a project; prints its identifier");
    const auto made = std::make_shared<Project>();
    create->add_option("--name", made->name, "Display name")->required();
    create->add_option("--time-zone", made->timeZone, "Where the project's days begin, such as Europe/Vienna")
        ->required()
        ->type_name("AREA/CITY");
    create->callback([settings, made] { createProject(*settings, *made); });

    CLI::App* const list = project->add_subcommand("list", "Print all projects");
    const auto json = std::make_shared<bool>(false);
    addJsonFlag(*list, *json);
    list->callback([settings, json] { listProjects(*settings, *json); });
}

} // namespace monitorservice
