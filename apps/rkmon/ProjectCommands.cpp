#include "CommandOptions.h"
#include "Commands.h"
#include "ConfigurationFile.h"
#include "Identifier.h"
#include "Lookup.h"

namespace {

struct ProjectShowOptions
{
    QString project;
};

struct ProjectUseOptions
{
    QString project;
};

Sheet projectSheet(const Session& session, const QList<ServiceProject>& projects)
{
    Sheet sheet{{column::fixed("ID", "id"), column::text("NAME", "name"),
                 column::dispensable(1, column::text("TIME ZONE", "timeZone")),
                 column::text("IN USE", "isInUse")},
                {}};
    const Configuration& inUse = session.configuration();
    for (const ServiceProject& project : projects) {
        sheet.rows.append({project.id, project.name, project.timeZone,
                           project.id == inUse.project || project.name == inUse.projectName});
    }
    return sheet;
}

ExitCode listProjects(Session& session, const NoOptions&)
{
    session.output().addList(projectSheet(session, session.extensions().projects()));
    return ExitCode::Success;
}

ExitCode showProject(Session& session, const ProjectShowOptions& options)
{
    if (options.project.isEmpty()) {
        session.projectData(); // refused first when there is no project
    }
    const QString text = options.project.isEmpty() ? session.project() : options.project;
    session.output().addRecord(projectSheet(session, {lookup::project(session.extensions(), text)}));
    return ExitCode::Success;
}

// What to call a project: a service that cannot tell of projects is believed an identifier.
ServiceProject projectToUse(Session& session, const QString& text)
{
    if (isIdentifier(text) && !session.extensions().has(Extension::Projects)) {
        session.warn(QStringLiteral("the service cannot say whether it has a project %1").arg(text));
        return {text, text, QString()};
    }
    return lookup::project(session.extensions(), text);
}

ExitCode useProject(Session& session, const ProjectUseOptions& options)
{
    const Configuration& configuration = session.configuration();
    const ServiceProject project = projectToUse(session, options.project);
    ConfigurationFile file = ConfigurationFile::read(configuration.configFile, false);
    file.setValue(configuration.profile, QStringLiteral("project"), project.id);
    file.write();
    const QString place = configuration.profile.isEmpty()
                              ? file.path()
                              : QStringLiteral("profile %1 of %2").arg(configuration.profile, file.path());
    session.note(QStringLiteral("project \"%1\" is now the one of %2").arg(project.name, place));
    if (!qEnvironmentVariableIsEmpty("RKMON_PROJECT")) {
        session.warn(QStringLiteral("RKMON_PROJECT is set, and goes before the configuration file"));
    }
    return ExitCode::Success;
}

} // namespace

void addProjectCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "project", "List the service's projects, and choose one to work in");
    const auto [list, unused] = options::addSubcommand(
        group, "list", "List the projects that the token has rights in", chosen, listProjects);
    Q_UNUSED(unused)
    options::setExamples(list, "  rkmon project list\n"
                               "  rkmon project list --json");

    const auto [show, shown] =
        options::addSubcommand(group, "show", "Show a project, or the one in use", chosen, showProject);
    options::addText(show, "PROJECT", shown->project, "Identifier or exact name")->type_name("PROJECT");
    options::setExamples(show, "  rkmon project show\n"
                               "  rkmon project show 'Coastal bluff'");

    const auto [use, used] = options::addSubcommand(
        group, "use", "Write a project into the configuration file, to work in it from now on", chosen,
        useProject);
    options::addText(use, "PROJECT", used->project, "Identifier or exact name")
        ->required()
        ->type_name("PROJECT");
    options::setExamples(use, "  rkmon project use 'Coastal bluff'\n"
                              "  rkmon project use 6745d2f0a1b2c3d4e5f60718 --profile north");
    options::setExamples(group, "  rkmon project list\n"
                                "  rkmon project use 'Coastal bluff'");
}
