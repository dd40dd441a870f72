#include "admin/AdminCommand.h"
#include "admin/CommandAuthor.h"
#include "administration/CategoryAdministration.h"
#include "json/JsonText.h"

#include <iostream>

namespace monitorservice {

namespace {

// Those that are there already stay. Gives the warnings.
std::vector<std::string> addNewCategories(Session& session, const std::vector<std::string>& categories)
{
    std::vector<std::string> warnings;
    CategoryAdministration administration(session, commandAuthor());
    for (const std::string& category : categories) {
        if (session.categories().contains(category)) {
            std::cerr << "category \"" << category << "\" is there already\n";
            continue;
        }
        const std::vector<std::string> more = administration.add(category).warnings;
        warnings.insert(warnings.end(), more.begin(), more.end());
    }
    return warnings;
}

void addCategories(const AdminSettings& settings, const std::vector<std::string>& categories)
{
    // Before a file comes to be.
    explained(nullptr, [&] {
        for (const std::string& category : categories) {
            CategoryAdministration::check(category);
        }
    });
    const auto store = openOrCreate(settings);
    warn(administer(*store, [&](Session& session) { return addNewCategories(session, categories); }));
}

void renameCategory(const AdminSettings& settings, const std::string& category, const std::string& name)
{
    const auto store = openExisting(settings);
    const Administered<std::string> renamed = administer(*store, [&](Session& session) {
        return CategoryAdministration(session, commandAuthor()).rename(category, name);
    });
    warn(renamed.warnings);
}

void removeCategory(const AdminSettings& settings, const std::string& category)
{
    const auto store = openExisting(settings);
    administer(*store, [&](Session& session) {
        return CategoryAdministration(session, commandAuthor()).remove(category);
    });
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

    CLI::App* const rename =
        category->add_subcommand("rename", "Rename a category with all that is of it, in all projects");
    const auto from = std::make_shared<std::string>();
    const auto to = std::make_shared<std::string>();
    rename->add_option("category", *from, "The category")->required()->type_name("OLD");
    rename->add_option("name", *to, "Its name from now on")->required()->type_name("NEW");
    rename->callback([settings, from, to] { renameCategory(*settings, *from, *to); });

    CLI::App* const remove = category->add_subcommand("remove", "Remove a category that nothing is of");
    const auto removed = std::make_shared<std::string>();
    remove->add_option("category", *removed, "The category")->required()->type_name("TEXT");
    remove->callback([settings, removed] { removeCategory(*settings, *removed); });

    CLI::App* const list =
        category->add_subcommand("list", "Print all categories in the order of their addition");
    const auto json = std::make_shared<bool>(false);
    addJsonFlag(*list, *json);
    list->callback([settings, json] { listCategories(*settings, *json); });
}

} // namespace monitorservice
