#include "admin/AdminCommand.h"
#include "json/JsonText.h"

#include <iostream>

namespace monitorservice {

namespace {

void addCategories(const AdminSettings& settings, const std::vector<std::string>& categories)
{
    for (const std::string& category : categories) {
        checkText("category \"" + category + "\"", category);
    }
    const auto store = openOrCreate(settings);
    const auto session = store->write();
    for (const std::string& category : categories) {
        if (!session->categories().add(category)) {
            std::cerr << "category \"" << category << "\" is there already\n";
        }
    }
    session->commit();
}

void listCategories(const AdminSettings& settings, bool json)
{
    JsonArrayWriter array;
    for (const std::string& category : openExisting(settings)->read()->categories().list()) {
        if (json) {
            array.text(category);
        } else {
            std::cout << category << '\n';
        }
    }
    if (json) {
        std::cout << array.finish() << '\n';
    }
}

} // namespace

void addCategoryCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const category =
        admin.add_subcommand("category", "What monitorings are classified by, in all projects")
            ->require_subcommand(1);

    CLI::App* const add =
        category->add_subcommand("add", "Add categories; those that are there already stay");
    const auto added = std::make_shared<std::vector<std::string>>();
    add->add_option("category", *added, "The categories")->required()->type_name("TEXT");
    add->callback([settings, added] { addCategories(*settings, *added); });

    CLI::App* const list =
        category->add_subcommand("list", "Print all categories in the order of their addition");
    const auto json = std::make_shared<bool>(false);
    addJsonFlag(*list, *json);
    list->callback([settings, json] { listCategories(*settings, *json); });
}

} // namespace monitorservice
