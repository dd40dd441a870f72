#include "admin/AdminCommand.h"
#include "admin/CommandAuthor.h"
#include "administration/Existence.h"
#include "administration/SubCategoryAdministration.h"
#include "json/JsonText.h"

#include <charconv>
#include <iostream>

namespace monitorservice {

namespace {

// What a command says of a sub-category; what is not given stays as it is.
struct Description
{
    SubCategoryDescription texts; // without what is written in its own way
    std::optional<std::string> kind;
    std::optional<std::string> decimals;
};

std::vector<std::string> kindNames()
{
    std::vector<std::string> names;
    names.reserve(allSubCategoryKinds.size());
    for (const SubCategoryKind kind : allSubCategoryKinds) {
        names.emplace_back(toText(kind));
    }
    return names;
}

SubCategoryKind kindNamed(const std::string& name)
{
    const std::optional<SubCategoryKind> kind = subCategoryKindOf(name);
    if (!kind) {
        refuseValue("--kind", name, kindNames());
    }
    return *kind;
}

std::optional<std::int32_t> decimalsIn(const std::string& text)
{
    if (text == "none") {
        return std::nullopt;
    }
    std::int32_t decimals = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, decimals);
    if (error != std::errc() || rest != end || decimals < 0 || decimals > mostDecimals) {
        throw CLI::ValidationError("--decimals", "\"" + text + "\" is neither a whole number from 0 to " +
                                                     std::to_string(mostDecimals) + " nor none");
    }
    return decimals;
}

SubCategoryDescription read(const Description& given)
{
    SubCategoryDescription description = given.texts;
    if (given.kind) {
        description.kind = kindNamed(*given.kind);
    }
    if (given.decimals) {
        description.decimals = decimalsIn(*given.decimals);
    }
    return description;
}

void createSubCategory(const AdminSettings& settings, const SubCategory& place, const Description& given)
{
    const SubCategoryDescription description = read(given);
    const auto store = openExisting(settings);
    const Administered<SubCategory> made = administer(*store, [&](Session& session) {
        return SubCategoryAdministration(session, commandAuthor())
            .create(place.project, place.category, description);
    });
    warn(made.warnings);
    std::cout << made.thing.id << '\n';
}

void changeSubCategory(const AdminSettings& settings, const std::string& id, const Description& given)
{
    const SubCategoryDescription description = read(given);
    if (description.isEmpty()) {
        throw CLI::RequiredError("one of --name, --alias, --kind, --unit, --decimals");
    }
    const auto store = openExisting(settings);
    const Administered<SubCategory> changed = administer(*store, [&](Session& session) {
        return SubCategoryAdministration(session, commandAuthor()).change(id, description);
    });
    warn(changed.warnings);
}

void removeSubCategory(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    administer(*store, [&](Session& session) {
        return SubCategoryAdministration(session, commandAuthor()).remove(id);
    });
}

std::vector<std::string> rowOf(const SubCategory& subCategory)
{
    return {
        subCategory.id,       subCategory.project,
        subCategory.category, subCategory.name,
        subCategory.alias,    std::string(toText(subCategory.kind)),
        subCategory.unit,     subCategory.decimals ? std::to_string(*subCategory.decimals) : std::string()};
}

void listSubCategories(const AdminSettings& settings, const std::string& onlyProject, bool json)
{
    const auto store = openExisting(settings);
    const auto session = store->read();
    if (!onlyProject.empty()) {
        explained(session.get(), [&] { return requireProject(*session, onlyProject); });
    }
    JsonArrayWriter array;
    std::vector<std::vector<std::string>> rows;
    for (const Project& project : session->projects().list()) {
        if (!onlyProject.empty() && onlyProject != project.id) {
            continue;
        }
        for (const SubCategory& subCategory : subCategoriesOf(*session, project.id)) {
            array.json(toDocument(subCategory));
            rows.push_back(rowOf(subCategory));
        }
    }
    if (json) {
        std::cout << array.finish() << '\n';
    } else {
        printTable({"ID", "PROJECT", "CATEGORY", "NAME", "ALIAS", "KIND", "UNIT", "DECIMALS"}, rows);
    }
}

// Gives the option --name, which one command requires.
CLI::Option* addDescription(CLI::App& command, Description& description)
{
    CLI::Option* const name = command.add_option("--name", description.texts.name, "Display name");
    command.add_option("--alias", description.texts.alias, "Short name");
    command.add_option("--kind", description.kind,
                       "displacement, settlement, inclinometer, water level, force or other");
    command.add_option("--unit", description.texts.unit, "Unit of the values, such as mm");
    command
        .add_option("--decimals", description.decimals,
                    "Decimal places that values are shown with, 0 to 15; none: as they are")
        ->type_name("N");
    return name;
}

void addCreateCommand(CLI::App& subCategory, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const create =
        subCategory.add_subcommand("create", "Make a sub-category; prints its identifier");
    const auto made = std::make_shared<SubCategory>();
    const auto description = std::make_shared<Description>();
    create->add_option("--project", made->project, "The project's identifier")->required()->type_name("ID");
    create->add_option("--category", made->category, "The category it belongs to")->required();
    addDescription(*create, *description)->required();
    create->callback([settings, made, description] { createSubCategory(*settings, *made, *description); });
}

void addChangeCommand(CLI::App& subCategory, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const change = subCategory.add_subcommand(
        "change", "Change what is given of a sub-category; an empty alias or unit is none");
    const auto id = std::make_shared<std::string>();
    const auto description = std::make_shared<Description>();
    change->add_option("id", *id, "The sub-category's identifier")->required()->type_name("ID");
    addDescription(*change, *description);
    change->callback([settings, id, description] { changeSubCategory(*settings, *id, *description); });
}

} // namespace

void addSubCategoryCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const subCategory =
        admin.add_subcommand("subcategory", "What is measured within a category, per project")
            ->require_subcommand(1);
    addCreateCommand(*subCategory, settings);
    addChangeCommand(*subCategory, settings);

    CLI::App* const remove = subCategory->add_subcommand("remove", "Remove a sub-category that nothing uses");
    const auto removed = std::make_shared<std::string>();
    remove->add_option("id", *removed, "The sub-category's identifier")->required()->type_name("ID");
    remove->callback([settings, removed] { removeSubCategory(*settings, *removed); });

    CLI::App* const list = subCategory->add_subcommand("list", "Print the sub-categories");
    const auto project = std::make_shared<std::string>();
    const auto json = std::make_shared<bool>(false);
    list->add_option("--project", *project, "Only those of this project")->type_name("ID");
    addJsonFlag(*list, *json);
    list->callback([settings, project, json] { listSubCategories(*settings, *project, *json); });
}

} // namespace monitorservice
