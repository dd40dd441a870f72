#include "admin/AdminCommand.h"
#include "admin/NearNames.h"
#include "admin/Suggestion.h"
#include "admin/Uses.h"
#include "json/JsonText.h"
#include "time/TimeZone.h"

#include <iostream>

namespace monitorservice {

namespace {

void warnOfLikeProjects(const Session& session, const Project& project)
{
    for (const Project& other : session.projects().list()) {
        const bool isLike = other.name == project.name || differInCaseOnly(other.name, project.name);
        if (other.id != project.id && isLike) {
            warn("project " + other.id + " is called \"" + other.name + "\" too");
        }
    }
}

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
    warnOfLikeProjects(*session, project);
    session->commit();
    std::cout << project.id << '\n';
}

void renameProject(const AdminSettings& settings, const std::string& id, const std::string& name)
{
    checkText("--name", name);
    const auto store = openExisting(settings);
    const auto session = store->write();
    checkProject(*session, id);
    session->projects().rename(id, name);
    warnOfLikeProjects(*session, {id, name, {}});
    session->commit();
}

void removeProject(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    const auto session = store->write();
    checkProject(*session, id);
    requireUnused("project " + id, usesOfProject(*session, id));
    session->projects().remove(id);
    session->commit();
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

    CLI::App* const rename = project->add_subcommand("rename", "Give a project another name");
    const auto renamed = std::make_shared<Project>();
    rename->add_option("id", renamed->id, "The project's identifier")->required()->type_name("ID");
    rename->add_option("--name", renamed->name, "Display name")->required();
    rename->callback([settings, renamed] { renameProject(*settings, renamed->id, renamed->name); });

    CLI::App* const remove = project->add_subcommand("remove", "Remove a project that nothing belongs to");
    const auto removed = std::make_shared<std::string>();
    remove->add_option("id", *removed, "The project's identifier")->required()->type_name("ID");
    remove->callback([settings, removed] { removeProject(*settings, *removed); });

    CLI::App* const list = project->add_subcommand("list", "Print all projects");
    const auto json = std::make_shared<bool>(false);
    addJsonFlag(*list, *json);
    list->callback([settings, json] { listProjects(*settings, *json); });
}

} // namespace monitorservice
