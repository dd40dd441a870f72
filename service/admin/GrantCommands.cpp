#include "admin/AdminCommand.h"
#include "json/JsonText.h"

#include <iostream>
#include <sstream>

namespace monitorservice {

namespace {

struct GrantArguments
{
    std::string token;
    std::string project;
    std::string category;
    bool categoryGiven = false;
    std::string rights;
    std::string role;
};

Rights rightsOfRole(const std::string& role)
{
    if (role == "reader") {
        return Right::Read;
    }
    if (role != "editor") {
        refuseValue("--role", role, {"reader", "editor"});
    }
    return Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete;
}

Rights rightsOf(const GrantArguments& arguments)
{
    if (!arguments.role.empty()) {
        return rightsOfRole(arguments.role);
    }
    if (const std::optional<Rights> rights = Rights::ofNames(arguments.rights)) {
        return *rights;
    }
    std::istringstream names(arguments.rights);
    for (std::string name; std::getline(names, name, ',');) {
        if (!Rights::ofNames(name)) {
            refuseValue("--rights", name, {"read", "create", "edit", "delete"});
        }
    }
    throw CLI::ValidationError("--rights",
                               "\"" + arguments.rights + "\" is not a list of read, create, edit, delete");
}

void addGrant(const AdminSettings& settings, const GrantArguments& arguments)
{
    Grant grant;
    grant.rights = rightsOf(arguments);
    grant.token = arguments.token;
    grant.project = arguments.project;
    const auto store = openExisting(settings);
    const auto session = store->write();
    const std::optional<Token> token = session->tokens().find(grant.token);
    if (!token) {
        refuseToken(*session, grant.token);
    }
    if (token->revokedAt) {
        throw CommandError("token " + grant.token + " has been revoked");
    }
    checkProject(*session, arguments.project);
    if (arguments.categoryGiven) {
        checkCategory(*session, arguments.category);
        grant.category = arguments.category;
    }
    grant.id = session->newIdentifier();
    grant.createdAt = session->now();
    const std::string id = session->grants().add(grant);
    session->commit();
    std::cout << id << '\n';
}

void revokeGrant(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    const auto session = store->write();
    if (!session->grants().remove(id)) {
        throw CommandError("there is no grant \"" + id + "\"");
    }
    session->commit();
}

std::string toJson(const Grant& grant)
{
    JsonObjectWriter object;
    object.text("_id", grant.id).text("tokenId", grant.token);
    grant.project ? object.text("projectId", *grant.project) : object.null("projectId");
    grant.category ? object.text("category", *grant.category) : object.null("category");
    return object.text("rights", grant.rights.names()).text("createdAt", isoText(grant.createdAt)).finish();
}

void listGrants(const AdminSettings& settings, bool json)
{
    JsonArrayWriter array;
    std::vector<std::vector<std::string>> rows;
    for (const Grant& grant : openExisting(settings)->read()->grants().list()) {
        array.json(toJson(grant));
        rows.push_back({grant.id, grant.token, grant.project.value_or("(the whole service)"),
                        grant.rights.names(), grant.category.value_or("(every category)")});
    }
    if (json) {
        std::cout << array.finish() << '\n';
    } else {
        printTable({"ID", "TOKEN", "PROJECT", "RIGHTS", "CATEGORY"}, rows);
    }
}

// The options cannot be required by the parser, as "grant list" and "grant revoke" have none of them.
void requireOptions(const CLI::App& grant)
{
    for (const char* const option : {"--token", "--project"}) {
        if (grant.count(option) == 0) {
            throw CLI::RequiredError(option);
        }
    }
    if (grant.count("--rights") + grant.count("--role") != 1) {
        throw CLI::RequiredError("exactly one of --rights and --role");
    }
}

} // namespace

void addGrantCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const grant = admin.add_subcommand(
        "grant",
        "Let a token do something in a project; adds to what it may already; prints the grant's identifier");
    const auto arguments = std::make_shared<GrantArguments>();
    grant->require_subcommand(0, 1);
    grant->add_option("--token", arguments->token, "The token's identifier")->type_name("ID");
    grant->add_option("--project", arguments->project, "The project's identifier")->type_name("ID");
    grant->add_option("--category", arguments->category,
                      "Only in this category; every category when not given");
    grant->add_option("--rights", arguments->rights,
                      "A list of read, create, edit, delete with commas between");
    grant->add_option("--role", arguments->role, "reader: read; editor: everything");
    grant->final_callback([settings, arguments, grant] {
        if (grant->get_subcommands().empty()) {
            requireOptions(*grant);
            arguments->categoryGiven = grant->count("--category") > 0;
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
