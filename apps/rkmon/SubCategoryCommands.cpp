#include "CommandOptions.h"
#include "Commands.h"
#include "Failure.h"

namespace {

struct ListOptions
{
    std::optional<QString> category;
};

struct ShowOptions
{
    QString id;
};

Sheet subCategorySheet(const QList<RKMonitoringSubCategory>& subCategories)
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    Sheet sheet{{{QStringLiteral("ID"), QStringLiteral("id"), listed, fixed},
                 {QStringLiteral("NAME"), QStringLiteral("name"), listed, !fixed},
                 {QStringLiteral("CATEGORY"), QStringLiteral("category"), listed, !fixed},
                 {QStringLiteral("ALIAS"), QStringLiteral("alias"), listed, !fixed}},
                {}};
    for (const RKMonitoringSubCategory& subCategory : subCategories) {
        sheet.rows.append({subCategory.id, subCategory.name, subCategory.category, subCategory.alias});
    }
    return sheet;
}

QStringList readCategories(Session& session)
{
    QStringList categories;
    session.ask(QStringLiteral("list categories"),
                [&] { return session.data().getMonitoringCategory(categories); });
    return categories;
}

QList<RKMonitoringSubCategory> readSubCategories(Session& session, const QString& category)
{
    QList<RKMonitoringSubCategory> subCategories;
    session.ask(QStringLiteral("list the sub-categories of \"%1\"").arg(category),
                [&] { return session.projectData().getMonitoringSubCategory(category, subCategories); });
    return subCategories;
}

ExitCode listSubCategories(Session& session, const ListOptions& options)
{
    const QStringList categories =
        options.category ? QStringList{*options.category} : readCategories(session);
    QList<RKMonitoringSubCategory> subCategories;
    for (const QString& category : categories) {
        subCategories.append(readSubCategories(session, category));
    }
    session.output().addList(subCategorySheet(subCategories));
    return ExitCode::Success;
}

ExitCode showSubCategory(Session& session, const ShowOptions& options)
{
    const QString purpose = QStringLiteral("read sub-category %1").arg(options.id);
    RKMonitoringSubCategory subCategory;
    session.ask(purpose, [&] { return session.data().getSubCategoryById(options.id, subCategory); });
    if (subCategory.id.isEmpty()) {
        throw Failure(ExitCode::Failed,
                      QStringLiteral("cannot %1: the answer is not that of a sub-category").arg(purpose));
    }
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
