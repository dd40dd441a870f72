#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"

namespace {

struct SubCategoryListOptions
{
    std::optional<QString> category;
};

struct SubCategoryShowOptions
{
    QString subCategory;
};

Sheet subCategorySheet(const QList<RKMonitoringSubCategory>& subCategories)
{
    Sheet sheet{{column::fixed("ID", "id"), column::text("NAME", "name"),
                 column::text("CATEGORY", "category"), column::text("ALIAS", "alias")},
                {}};
    for (const RKMonitoringSubCategory& subCategory : subCategories) {
        sheet.rows.append({subCategory.id, subCategory.name, subCategory.category, subCategory.alias});
    }
    return sheet;
}

ExitCode listSubCategories(Session& session, const SubCategoryListOptions& options)
{
    session.output().addList(subCategorySheet(options.category
                                                  ? lookup::subCategories(session, *options.category)
                                                  : lookup::subCategories(session)));
    return ExitCode::Success;
}

ExitCode showSubCategory(Session& session, const SubCategoryShowOptions& options)
{
    session.output().addRecord(subCategorySheet({lookup::subCategory(session, options.subCategory)}));
    return ExitCode::Success;
}

} // namespace

void addSubCategoryCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(root, "subcategory", "List the project's sub-categories");
    const auto [list, listed] = options::addSubcommand(
        group, "list", "List the sub-categories of one category, or of all", chosen, listSubCategories);
    options::addText(list, "CATEGORY", listed->category, "Only those of this category")
        ->type_name("CATEGORY");
    options::setExamples(list, "  rkmon subcategory list\n"
                               "  rkmon subcategory list Slope");

    const auto [show, shown] =
        options::addSubcommand(group, "show", "Show one sub-category", chosen, showSubCategory);
    options::addText(show, "SUB-CATEGORY", shown->subCategory, "Identifier, name or alias")
        ->required()
        ->type_name("SUB-CATEGORY");
    options::setExamples(show, "  rkmon subcategory show SM\n"
                               "  rkmon subcategory show 6745d2f0a1b2c3d4e5f60718 --json");
    options::setExamples(group, "  rkmon subcategory list Slope\n"
                                "  rkmon subcategory show 'Soil moisture'");
}
