#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"

namespace {

ExitCode listCategories(Session& session, const NoOptions&)
{
    session.output().addPlainTexts(QStringLiteral("category"), lookup::categories(session));
    return ExitCode::Success;
}

} // namespace

void addCategoryCommands(CLI::App& root, Command& chosen)
{
    // `category` alone lists too: there is nothing else to do with categories.
    const auto [group, unused] = options::addSubcommand(
        root, "category", "List the categories of monitorings", chosen, listCategories);
    Q_UNUSED(unused)
    const auto [list, alsoUnused] =
        options::addSubcommand(group, "list", "List the categories of monitorings", chosen, listCategories);
    Q_UNUSED(alsoUnused)
    group.require_subcommand(0, 1);
    options::setExamples(group, "  rkmon category\n"
                                "  rkmon category list --json");
    options::setExamples(list, "  rkmon category list\n"
                               "  rkmon category list --json");
}
