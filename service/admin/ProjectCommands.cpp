#include "admin/AdminCommand.h"
#include "admin/CommandAuthor.h"
#include "administration/ProjectAdministration.h"
#include "domain/Document.h"
#include "json/JsonText.h"

#include <iostream>

namespace monitorservice {

namespace {

void createProject(const AdminSettings& settings, const ProjectDescription& description)
{
    // Before a file comes to be.
    explained(nullptr, [&] { ProjectAdministration::check(description); });
    const auto store = openOrCreate(settings);
    const Administered<Project> made = administer(*store, [&](Session& session) {
        return ProjectAdministration(session, commandAuthor()).create(description);
    });
    warn(made.warnings);
    std::cout << made.thing.id << '\n';
}

void renameProject(const AdminSettings& settings, const std::string& id, const std::string& name)
{
    const auto store = openExisting(settings);
    const Administered<Project> renamed = administer(*store, [&](Session& session) {
        return ProjectAdministration(session, commandAuthor()).rename(id, name);
    });
    warn(renamed.warnings);
}

void removeProject(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    administer(*store,
               [&](Session& session) { return ProjectAdministration(session, commandAuthor()).remove(id); });
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
        array.json(std::string(openedDocument(toDocument(project))) + ",\"createdAt\":\"" +
                   isoText(project.createdAt) + "\"}");
    }
    std::cout << array.finish() << '\n';
}

} // namespace

void addProjectCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const project =
        admin.add_subcommand("project", "Sites with their monitorings")->require_subcommand(1);

    CLI::App* const create = project->add_subcommand("create", "Make a project; prints its identifier");
    const auto made = std::make_shared<ProjectDescription>();
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
