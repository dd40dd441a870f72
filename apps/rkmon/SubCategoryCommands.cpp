#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"
#include "RecordChecks.h"

namespace {

struct SubCategoryListOptions
{
    std::optional<QString> category;
};

struct SubCategoryShowOptions
{
    QString id;
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
    const QStringList categories =
        options.category ? QStringList{*options.category} : lookup::categories(session);
    QList<RKMonitoringSubCategory> subCategories;
    for (const QString& category : categories) {
        subCategories.append(lookup::subCategories(session, category));
    }
    session.output().addList(subCategorySheet(subCategories));
    return ExitCode::Success;
}

ExitCode showSubCategory(Session& session, const SubCategoryShowOptions& options)
{
    const QString purpose = QStringLiteral("read sub-category %1").arg(options.id);
    RKMonitoringSubCategory subCategory;
    session.ask(purpose, [&] { return session.data().getSubCategoryById(options.id, subCategory); });
    requireIdentifier(subCategory, purpose, QStringLiteral("a sub-category"));
    session.output().addRecord(subCategorySheet({subCategory}));
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
    options::addIdentifier(show, "ID", shown->id, "Identifier of the sub-category")->required();
    options::setExamples(show, "  rkmon subcategory show 6745d2f0a1b2c3d4e5f60718");
    options::setExamples(group, "  rkmon subcategory list Slope");
}
