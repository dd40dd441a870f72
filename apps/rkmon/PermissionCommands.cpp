#include "CommandOptions.h"
#include "Commands.h"

namespace {

using Question = bool (RKMonitoringData::*)(const QString&);

struct CategoryOptions
{
    QString category;
};

ExitCode answer(Session& session, const QString& action, const QString& category, Question question)
{
    const bool isPermitted =
        session.ask(QStringLiteral("ask whether you may %1 monitorings of \"%2\"").arg(action, category),
                    [&] { return (session.projectData().*question)(category); });
    session.output().addText({{column::text("ACTION", "action"), column::text("CATEGORY", "category"),
                               column::text("PERMITTED", "permitted")},
                              {{action, category, isPermitted}}},
                             isPermitted ? QStringLiteral("permitted") : QStringLiteral("not permitted"));
    return isPermitted ? ExitCode::Success : ExitCode::NotPermitted;
}

ExitCode canCreate(Session& session, const CategoryOptions& options)
{
    return answer(session, QStringLiteral("create"), options.category,
                  &RKMonitoringData::canCreateMonitoring);
}

ExitCode canEdit(Session& session, const CategoryOptions& options)
{
    return answer(session, QStringLiteral("edit"), options.category, &RKMonitoringData::canEditMonitoring);
}

ExitCode canDelete(Session& session, const CategoryOptions& options)
{
    return answer(session, QStringLiteral("delete"), options.category,
                  &RKMonitoringData::canDeleteMonitoring);
}

void addQuestion(CLI::App& group, Command& chosen, const char* action, const char* description,
                 ExitCode (*run)(Session&, const CategoryOptions&))
{
    const auto [app, values] = options::addSubcommand(group, action, description, chosen, run);
    options::addText(app, "CATEGORY", values->category, "The category")->required()->type_name("CATEGORY");
    const std::string command = std::string("  rkmon can ") + action;
    options::setExamples(app, (command + " Slope && echo yes\n" + command + " Slope --json").c_str());
}

} // namespace

void addPermissionCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "can", "Ask what the token permits: status 0 if it does, else 3");
    addQuestion(group, chosen, "create", "May monitorings of a category be created?", canCreate);
    addQuestion(group, chosen, "edit", "May monitorings of a category be changed?", canEdit);
    addQuestion(group, chosen, "delete", "May monitorings of a category be deleted?", canDelete);
    options::setExamples(group, "  rkmon can create Slope\n"
                                "  rkmon can delete 'Retaining wall' --json");
}
