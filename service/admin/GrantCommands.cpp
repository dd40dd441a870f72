#include "admin/AdminCommand.h"
#include "admin/CommandAuthor.h"
#include "administration/GrantAdministration.h"
#include "json/JsonText.h"

#include <iostream>
#include <optional>
#include <sstream>
#include <string_view>

namespace monitorservice {

namespace {

struct GrantArguments
{
    std::string token;
    std::optional<std::string> project;
    std::optional<std::string> category;
    std::string rights;
    std::string role;
};

constexpr const char* administrator = "administrator";

Rights rightsOfRole(const std::string& role)
{
    if (role == "reader") {
        return Right::Read;
    }
    if (role == administrator) {
        return Right::Administer;
    }
    if (role != "editor") {
        refuseValue("--role", role, {"reader", "editor", administrator});
    }
    return Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete;
}

// To administer is no right in a project: it is given by its role alone.
Rights rightsNamed(const std::string& list)
{
    const std::optional<Rights> rights = Rights::ofNames(list);
    if (rights && !rights->has(Right::Administer)) {
        return *rights;
    }
    std::istringstream names(list);
    for (std::string name; std::getline(names, name, ',');) {
        const std::optional<Rights> right = Rights::ofNames(name);
        if (!right || right->has(Right::Administer)) {
            refuseValue("--rights", name, {"read", "create", "edit", "delete"});
        }
    }
    throw CLI::ValidationError("--rights", "\"" + list + "\" is not a list of read, create, edit, delete");
}

void addGrant(const AdminSettings& settings, const GrantArguments& arguments)
{
    Grant grant;
    grant.rights = arguments.role.empty() ? rightsNamed(arguments.rights) : rightsOfRole(arguments.role);
    grant.token = arguments.token;
    grant.project = arguments.project;
    grant.category = arguments.category;
    const auto store = openExisting(settings);
    const Grant held = administer(
        *store, [&](Session& session) { return GrantAdministration(session, commandAuthor()).add(grant); });
    std::cout << held.id << '\n';
}

void revokeGrant(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    administer(*store,
               [&](Session& session) { return GrantAdministration(session, commandAuthor()).revoke(id); });
}

// Where the rights of a grant are held, for a table.
std::vector<std::string> reachOf(const Grant& grant)
{
    if (!grant.project) {
        return {"(the whole service)", ""};
    }
    return {*grant.project, grant.category.value_or("(every category)")};
}

void listGrants(const AdminSettings& settings, bool json)
{
    JsonArrayWriter array;
    std::vector<std::vector<std::string>> rows;
    for (const Grant& grant : openExisting(settings)->read()->grants().list()) {
        array.json(toDocument(grant));
        const std::vector<std::string> reach = reachOf(grant);
        rows.push_back({grant.id, grant.token, reach[0], grant.rights.names(), reach[1]});
    }
    if (json) {
        std::cout << array.finish() << '\n';
    } else {
        printTable({"ID", "TOKEN", "PROJECT", "RIGHTS", "CATEGORY"}, rows);
    }
}

void refuseOptionsOfProjects(const CLI::App& grant)
{
    for (const char* const option : {"--project", "--category"}) {
        if (grant.count(option) > 0) {
            throw CLI::ValidationError(option, "an administrator is one of the whole service, not of a part");
        }
    }
}

// The options cannot be required by the parser, as "grant list" and "grant revoke" have none of them.
void requireOptions(const CLI::App& grant, const GrantArguments& arguments)
{
    const bool isOfWholeService = arguments.role == administrator;
    for (const char* const option : {"--token", "--project"}) {
        const bool isNeeded = option != std::string_view("--project") || !isOfWholeService;
        if (isNeeded && grant.count(option) == 0) {
            throw CLI::RequiredError(option);
        }
    }
    if (grant.count("--rights") + grant.count("--role") != 1) {
        throw CLI::RequiredError("exactly one of --rights and --role");
    }
    if (isOfWholeService) {
        refuseOptionsOfProjects(grant);
    }
}

} // namespace

void addGrantCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const grant = admin.add_subcommand(
        "grant", "Let a token do something in a project, or administer the service; adds to what it may "
                 "already; prints the grant's identifier");
    const auto arguments = std::make_shared<GrantArguments>();
    grant->require_subcommand(0, 1);
    grant->add_option("--token", arguments->token, "The token's identifier")->type_name("ID");
    grant->add_option("--project", arguments->project, "The project's identifier")->type_name("ID");
    grant->add_option("--category", arguments->category,
                      "Only in this category; every category when not given");
    grant->add_option("--rights", arguments->rights,
                      "A list of read, create, edit, delete with commas between");
    grant->add_option(
        "--role", arguments->role,
        "reader: read; editor: read, create, edit, delete; administrator: projects, categories and "
        "sub-categories of the whole service");
    grant->final_callback([settings, arguments, grant] {
        if (grant->get_subcommands().empty()) {
            requireOptions(*grant, *arguments);
            addGrant(*settings, *arguments);
        }
    });

    CLI::App* const list = grant->add_subcommand("list", "Print all grants");
    const auto json = std::make_shared<bool>(false);
    addJsonFlag(*list, *json);
    list->callback([settings, json] { listGrants(*settings, *json); });

    CLI::App* const revoke = grant->add_subcommand("revoke", "Take a grant back");
    const auto id = std::make_shared<std::string>();
    revoke->add_option("id", *id, "The grant's identifier")->required()->type_name("ID");
    revoke->callback([settings, id] { revokeGrant(*settings, *id); });
}

} // namespace monitorservice
