#include "admin/AdminCommand.h"
#include "admin/NearNames.h"
#include "admin/Suggestion.h"
#include "admin/Uses.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"

#include <charconv>
#include <iostream>

namespace monitorservice {

namespace {

constexpr std::int32_t mostDecimals = 15;

// What a command says of a sub-category; what is not given stays as it is.
struct Description
{
    std::optional<std::string> name;
    std::optional<std::string> alias;
    std::optional<std::string> kind;
    std::optional<std::string> unit;
    std::optional<std::string> decimals;

    bool isEmpty() const { return !name && !alias && !kind && !unit && !decimals; }
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

// An empty alias or unit is none.
void checkOptionalText(const std::string& what, const std::string& text)
{
    if (!text.empty()) {
        checkText(what, text);
    }
}

void apply(const Description& description, SubCategory& subCategory)
{
    if (description.name) {
        checkText("--name", *description.name);
        subCategory.name = *description.name;
    }
    if (description.alias) {
        checkOptionalText("--alias", *description.alias);
        subCategory.alias = *description.alias;
    }
    if (description.kind) {
        subCategory.kind = kindNamed(*description.kind);
    }
    if (description.unit) {
        checkOptionalText("--unit", *description.unit);
        subCategory.unit = *description.unit;
    }
    if (description.decimals) {
        subCategory.decimals = decimalsIn(*description.decimals);
    }
}

std::vector<SubCategory> subCategoriesOf(const Session& session, const std::string& project)
{
    std::vector<SubCategory> subCategories;
    DocumentQuery query;
    query.project = project;
    session.documents(DocumentKind::SubCategory).visit(query, [&](std::string_view document) {
        subCategories.push_back(fromDocument<SubCategory>(document));
    });
    return subCategories;
}

void warnOfLikeSubCategories(const Session& session, const SubCategory& subCategory)
{
    for (const SubCategory& other : subCategoriesOf(session, subCategory.project)) {
        if (other.id == subCategory.id) {
            continue;
        }
        if (!subCategory.alias.empty() && other.alias == subCategory.alias) {
            warn("sub-category \"" + other.name + "\" of category \"" + other.category +
                 "\" has the alias \"" + other.alias + "\" too");
        }
        if (other.category == subCategory.category && differInCaseOnly(other.name, subCategory.name)) {
            warn("category \"" + other.category + "\" of the project has a sub-category \"" + other.name +
                 "\" too");
        }
    }
}

// Writes with `write`, which fails when the category has a sub-category of this name.
template <typename Write>
void writeUnlessNamed(const SubCategory& subCategory, Write&& write)
{
    try {
        write();
    } catch (const StoreError& error) {
        if (error.failure() != StoreFailure::Conflict) {
            throw;
        }
        throw CommandError("category \"" + subCategory.category + "\" of the project has a sub-category \"" +
                           subCategory.name + "\" already");
    }
}

void createSubCategory(const AdminSettings& settings, SubCategory subCategory, const Description& description)
{
    apply(description, subCategory);
    const auto store = openExisting(settings);
    const auto session = store->write();
    checkProject(*session, subCategory.project);
    checkCategory(*session, subCategory.category);
    subCategory.id = session->newIdentifier();
    writeUnlessNamed(subCategory, [&] {
        session->documents(DocumentKind::SubCategory)
            .insert(subCategory.project, subCategory.id, toDocument(subCategory));
    });
    warnOfLikeSubCategories(*session, subCategory);
    session->commit();
    std::cout << subCategory.id << '\n';
}

SubCategory subCategoryNamed(const Session& session, const std::string& id)
{
    if (const auto stored = session.documents(DocumentKind::SubCategory).find(id)) {
        return fromDocument<SubCategory>(stored->text);
    }
    std::vector<std::pair<std::string, std::string>> known;
    for (const Project& project : session.projects().list()) {
        for (const SubCategory& one : subCategoriesOf(session, project.id)) {
            known.emplace_back(one.id, one.name);
        }
    }
    throw CommandError("there is no sub-category \"" + id + "\"" + didYouMeanIdentifier(id, known));
}

void changeSubCategory(const AdminSettings& settings, const std::string& id, const Description& description)
{
    const auto store = openExisting(settings);
    const auto session = store->write();
    SubCategory subCategory = subCategoryNamed(*session, id);
    apply(description, subCategory);
    writeUnlessNamed(subCategory, [&] {
        session->documents(DocumentKind::SubCategory)
            .replace(subCategory.project, subCategory.id, toDocument(subCategory));
    });
    if (description.name || description.alias) {
        warnOfLikeSubCategories(*session, subCategory);
    }
    session->commit();
}

void removeSubCategory(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    const auto session = store->write();
    const SubCategory subCategory = subCategoryNamed(*session, id);
    requireUnused("sub-category \"" + subCategory.name + "\"", usesOfSubCategory(*session, subCategory));
    session->documents(DocumentKind::SubCategory).remove(subCategory.project, subCategory.id);
    session->commit();
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
        checkProject(*session, onlyProject);
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
    CLI::Option* const name = command.add_option("--name", description.name, "Display name");
    command.add_option("--alias", description.alias, "Short name");
    command.add_option("--kind", description.kind,
                       "displacement, settlement, inclinometer, water level, force or other");
    command.add_option("--unit", description.unit, "Unit of the values, such as mm");
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
    change->callback([settings, id, description] {
        if (description->isEmpty()) {
            throw CLI::RequiredError("one of --name, --alias, --kind, --unit, --decimals");
        }
        changeSubCategory(*settings, *id, *description);
    });
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
