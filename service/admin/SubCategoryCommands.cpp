#include "admin/AdminCommand.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"

#include <simdjson.h>

#include <iostream>

namespace monitorservice {

namespace {

void createSubCategory(const AdminSettings& settings, SubCategory subCategory)
{
    checkText("--name", subCategory.name);
    if (!subCategory.alias.empty()) {
        checkText("--alias", subCategory.alias);
    }
    const auto store = openExisting(settings);
    const auto session = store->write();
    checkProject(*session, subCategory.project);
    checkCategory(*session, subCategory.category);
    subCategory.id = session->newIdentifier();
    try {
        session->documents(DocumentKind::SubCategory)
            .insert(subCategory.project, subCategory.id, toDocument(subCategory));
    } catch (const StoreError& error) {
        if (error.failure() != StoreFailure::Conflict) {
            throw;
        }
        throw CommandError("category \"" + subCategory.category + "\" of the project has a sub-category \"" +
                           subCategory.name + "\" already");
    }
    session->commit();
    std::cout << subCategory.id << '\n';
}

std::vector<std::string> documentsOf(const Session& session, const std::string& onlyProject)
{
    std::vector<std::string> documents;
    for (const Project& project : session.projects().list()) {
        if (!onlyProject.empty() && onlyProject != project.id) {
            continue;
        }
        DocumentQuery query;
        query.project = project.id;
        session.documents(DocumentKind::SubCategory).visit(query, [&](std::string_view document) {
            documents.emplace_back(document);
        });
    }
    return documents;
}

std::vector<std::string> rowOf(const std::string& document)
{
    simdjson::dom::parser parser;
    const simdjson::dom::element object = parser.parse(document);
    std::vector<std::string> row;
    for (const char* const member : {"_id", "projectId", "category", "name", "alias"}) {
        row.emplace_back(object[member].get_string().value());
    }
    return row;
}

void listSubCategories(const AdminSettings& settings, const std::string& project, bool json)
{
    const auto store = openExisting(settings);
    const auto session = store->read();
    if (!project.empty()) {
        checkProject(*session, project);
    }
    JsonArrayWriter array;
    std::vector<std::vector<std::string>> rows;
    for (const std::string& document : documentsOf(*session, project)) {
        array.json(document);
        rows.push_back(rowOf(document));
    }
    if (json) {
        std::cout << array.finish() << '\n';
    } else {
        printTable({"ID", "PROJECT", "CATEGORY", "NAME", "ALIAS"}, rows);
    }
}

} // namespace

void addSubCategoryCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const subCategory =
        admin.add_subcommand("subcategory", "What is measured within a category, per project")
            ->require_subcommand(1);

    CLI::App* const create =
        subCategory->add_subcommand("create", "Make a sub-category; prints its identifier");
    const auto made = std::make_shared<SubCategory>();
    create->add_option("--project", made->project, "The project's identifier")->required()->type_name("ID");
    create->add_option("--category", made->category, "The category it belongs to")->required();
    create->add_option("--name", made->name, "Display name")->required();
    create->add_option("--alias", made->alias, "Short name");
    create->callback([settings, made] { createSubCategory(*settings, *made); });

    CLI::App* const list = subCategory->add_subcommand("list", "Print the sub-categories");
    const auto project = std::make_shared<std::string>();
    const auto json = std::make_shared<bool>(false);
    list->add_option("--project", *project, "Only those of this project")->type_name("ID");
    addJsonFlag(*list, *json);
    list->callback([settings, project, json] { listSubCategories(*settings, *project, *json); });
}

} // namespace monitorservice
