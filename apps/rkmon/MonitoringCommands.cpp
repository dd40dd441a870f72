#include "CommandOptions.h"
#include "Commands.h"
#include "Confirmation.h"
#include "Identifier.h"
#include "Lookup.h"
#include "MonitoringFilter.h"
#include "MonitoringSheet.h"
#include "Pages.h"
#include "RecordChecks.h"

namespace {

struct MonitoringListOptions
{
    MonitoringFilter filter;
    PageOptions page;
};

struct CountOptions
{
    MonitoringFilter filter;
};

struct MonitoringShowOptions
{
    QString monitoring;
};

struct NameOptions
{
    QStringList monitorings;
};

// The members of a monitoring that the user may set.
struct MonitoringMemberOptions
{
    std::optional<QString> name;
    std::optional<QString> category;
    std::optional<QString> model;
    std::optional<QString> alarmTo;
    bool isNobodyAlarmed = false;
};

struct MonitoringUpdateOptions
{
    QString monitoring;
    MonitoringMemberOptions members;
};

struct MonitoringDeleteOptions
{
    QString monitoring;
    Confirmation confirmation;
};

QList<RKMonitoring> readPage(Session& session, const RKMonitoringCondition& condition, int skip, int limit)
{
    const QString purpose = QStringLiteral("list monitorings");
    QList<RKMonitoring> page;
    session.ask(purpose,
                [&] { return session.projectData().getMonitoringRangeData(condition, skip, limit, page); });
    requireIdentifiers(page, purpose, QStringLiteral("monitorings"));
    return page;
}

int readCount(Session& session, const RKMonitoringCondition& condition)
{
    int count = 0;
    session.ask(QStringLiteral("count monitorings"),
                [&] { return session.projectData().getMonitoringRangeCount(condition, count); });
    return count;
}

ExitCode listMonitorings(Session& session, const MonitoringListOptions& options)
{
    const RKMonitoringCondition condition = conditionOf(options.filter, session.zoneOf());
    session.output().addList(monitoringSheet(pages::read(
        session, options.page, QStringLiteral("monitorings"),
        [&](int skip, int limit) { return readPage(session, condition, skip, limit); },
        [&] { return readCount(session, condition); })));
    return ExitCode::Success;
}

ExitCode countMonitorings(Session& session, const CountOptions& options)
{
    const int count = readCount(session, conditionOf(options.filter, session.zoneOf()));
    session.output().addText({{column::text("COUNT", "count")}, {{count}}}, QString::number(count));
    return ExitCode::Success;
}

ExitCode showMonitoring(Session& session, const MonitoringShowOptions& options)
{
    session.output().addRecord(monitoringSheet({lookup::monitoring(session, options.monitoring)}));
    return ExitCode::Success;
}

Sheet nameSheet(const QList<QPair<QString, QString>>& cells)
{
    Sheet sheet{{column::fixed("ID", "id"), column::text("NAME", "name")}, {}};
    for (const auto& [id, name] : cells) {
        sheet.rows.append({id, name});
    }
    return sheet;
}

ExitCode nameMonitorings(Session& session, const NameOptions& options)
{
    QList<QPair<QString, QString>> cells;
    QStringList names;
    QMap<QString, QPair<QString, QString>> known; // one that is given twice is asked for once
    for (const QString& text : options.monitorings) {
        if (!known.contains(text)) {
            const RKMonitoring monitoring = lookup::monitoring(session, text);
            known[text] = {monitoring.id, monitoring.name};
        }
        names.append(known[text].second);
        cells.append(known[text]);
    }
    session.output().addTexts(nameSheet(cells), names);
    return ExitCode::Success;
}

ExitCode listIdentifiers(Session& session, const NoOptions&)
{
    QList<QPair<QString, QString>> cells;
    session.ask(QStringLiteral("list monitorings"),
                [&] { return session.projectData().getCellIdAndName(cells); });
    session.output().addList(nameSheet(cells));
    return ExitCode::Success;
}

QStringList recipientsOf(const QString& text)
{
    QStringList recipients;
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString& part : parts) {
        recipients.append(part.trimmed());
        if (recipients.constLast().isEmpty()) {
            throw Failure(FailureKind::BadInput,
                          QStringLiteral("--alarm-to: \"%1\" names an empty recipient").arg(text));
        }
    }
    return recipients;
}

void assignMembers(const MonitoringMemberOptions& members, RKMonitoring& monitoring)
{
    monitoring.name = members.name.value_or(monitoring.name);
    monitoring.category = members.category.value_or(monitoring.category);
    monitoring.modelId = members.model.value_or(monitoring.modelId);
    if (members.alarmTo) {
        monitoring.alarmTo = recipientsOf(*members.alarmTo);
    }
    if (members.isNobodyAlarmed) {
        monitoring.alarmTo.clear();
    }
}

ExitCode createMonitoring(Session& session, const MonitoringMemberOptions& members)
{
    RKMonitoring monitoring;
    assignMembers(members, monitoring);
    const QString purpose = QStringLiteral("create monitoring \"%1\"").arg(monitoring.name);
    session.ask(purpose, [&] { return session.projectData().createMonitoring(monitoring); });
    requireIdentifier(monitoring, purpose, QStringLiteral("a monitoring"));
    session.output().addText(monitoringSheet({monitoring}), monitoring.id);
    return ExitCode::Success;
}

bool isSame(const RKMonitoring& left, const RKMonitoring& right)
{
    return left.name == right.name && left.category == right.category && left.modelId == right.modelId &&
           left.alarmTo == right.alarmTo;
}

void requireMembers(const MonitoringMemberOptions& members)
{
    if (!members.name && !members.category && !members.model && !members.alarmTo &&
        !members.isNobodyAlarmed) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("nothing to change is given: use --name, --category, --model, "
                                     "--alarm-to or --no-alarm-to"));
    }
}

ExitCode updateMonitoring(Session& session, const MonitoringUpdateOptions& options)
{
    requireMembers(options.members);
    if (options.members.alarmTo) {
        recipientsOf(*options.members.alarmTo); // refused before anything is sent
    }
    const RKMonitoring before = lookup::monitoring(session, options.monitoring);
    RKMonitoring monitoring = before;
    assignMembers(options.members, monitoring);
    if (isSame(before, monitoring)) {
        session.note(QStringLiteral("nothing to change"));
    } else {
        const QString purpose = QStringLiteral("update monitoring %1").arg(before.id);
        session.ask(purpose, [&] { return session.data().updateMonitoring(monitoring); });
        requireIdentifier(monitoring, purpose, QStringLiteral("a monitoring"));
    }
    session.output().addRecord(monitoringSheet({monitoring}));
    return ExitCode::Success;
}

ExitCode deleteMonitoring(Session& session, const MonitoringDeleteOptions& options)
{
    QString id = isIdentifier(options.monitoring) ? options.monitoring : QString();
    const auto question = [&] {
        const RKMonitoring monitoring = lookup::monitoring(session, options.monitoring);
        id = monitoring.id;
        return QStringLiteral("Delete monitoring \"%1\" (%2, %3)?")
            .arg(monitoring.name, monitoring.category, monitoring.id);
    };
    if (!isConfirmed(session, options.confirmation, question)) {
        return ExitCode::Failed;
    }
    if (id.isEmpty()) {
        id = lookup::monitoring(session, options.monitoring).id;
    }
    session.ask(QStringLiteral("delete monitoring %1").arg(id),
                [&] { return session.data().deleteMonitoring(id); });
    session.note(QStringLiteral("deleted monitoring %1").arg(id));
    return ExitCode::Success;
}

void addRecipientOptions(CLI::App& app, MonitoringMemberOptions& members)
{
    options::addText(app, "--alarm-to", members.alarmTo, "Who receives its alarms, separated by commas")
        ->type_name("A,B...");
}

void addMonitoringListCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] =
        options::addSubcommand(group, "list", "List monitorings, oldest first", chosen, listMonitorings);
    addFilterOptions(app, values->filter);
    addPageOptions(app, values->page);
    options::setExamples(app, "  rkmon monitoring list --name '^LS-'\n"
                              "  rkmon monitoring list --since 2026-03-01 --until 2026-03-31\n"
                              "  rkmon monitoring list --all --csv > monitorings.csv");
}

void addCountCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] =
        options::addSubcommand(group, "count", "Count monitorings", chosen, countMonitorings);
    addFilterOptions(app, values->filter);
    options::setExamples(app, "  rkmon monitoring count\n"
                              "  rkmon monitoring count --exact-name VH");
}

void addMonitoringReadingCommands(CLI::App& group, Command& chosen)
{
    const auto [show, shown] =
        options::addSubcommand(group, "show", "Show one monitoring", chosen, showMonitoring);
    options::addMonitoring(show, shown->monitoring);
    options::setExamples(show, "  rkmon monitoring show VH\n"
                               "  rkmon monitoring show 6745d2f0a1b2c3d4e5f60718 --json");

    const auto [name, named] =
        options::addSubcommand(group, "name", "Print the names of monitorings", chosen, nameMonitorings);
    options::addTexts(name, "MONITORING", named->monitorings, "Identifiers or exact names")
        ->required()
        ->allow_extra_args()
        ->type_name("MONITORING");
    options::setExamples(name, "  rkmon monitoring name 6745d2f0a1b2c3d4e5f60718\n"
                               "  rkmon monitoring name VH --json");

    const auto [ids, unused] = options::addSubcommand(
        group, "ids", "List identifier and name of every monitoring", chosen, listIdentifiers);
    Q_UNUSED(unused)
    options::setExamples(ids, "  rkmon monitoring ids\n"
                              "  rkmon monitoring ids --csv");
}

void addMonitoringCreateCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "create", "Create a monitoring and print its identifier", chosen, createMonitoring);
    options::addText(app, "--name", values->name, "Its name")->required();
    options::addText(app, "--category", values->category, "One of those of rkmon category list")
        ->required()
        ->type_name("CATEGORY");
    options::addText(app, "--model", values->model, "Model that it is linked to")->type_name("MODEL");
    addRecipientOptions(app, *values);
    options::setExamples(app, "  rkmon monitoring create --name VH --category Slope\n"
                              "  rkmon monitoring create --name M1 --category Slope --alarm-to ana,ben");
}

void addUpdateCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "update", "Change a monitoring; only what differs is sent", chosen, updateMonitoring);
    options::addMonitoring(app, values->monitoring);
    MonitoringMemberOptions& members = values->members;
    options::addText(app, "--name", members.name, "New name");
    options::addText(app, "--category", members.category, "New category")->type_name("CATEGORY");
    options::addText(app, "--model", members.model, "New model; a link cannot be removed")
        ->type_name("MODEL");
    addRecipientOptions(app, members);
    app.add_flag("--no-alarm-to", members.isNobodyAlarmed, "Nobody receives its alarms")
        ->excludes("--alarm-to");
    options::setExamples(app, "  rkmon monitoring update VH --name 'VH upper'\n"
                              "  rkmon monitoring update 6745d2f0a1b2c3d4e5f60718 --alarm-to ana,ben");
}

void addMonitoringDeleteCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] =
        options::addSubcommand(group, "delete", "Delete a monitoring", chosen, deleteMonitoring);
    options::addMonitoring(app, values->monitoring);
    addConfirmation(app, values->confirmation);
    options::setExamples(app, "  rkmon monitoring delete VH\n"
                              "  rkmon monitoring delete --yes 6745d2f0a1b2c3d4e5f60718");
}

} // namespace

void addMonitoringCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(root, "monitoring", "List, create and change monitorings");
    addMonitoringListCommand(group, chosen);
    addMonitoringReadingCommands(group, chosen);
    addMonitoringCreateCommand(group, chosen);
    addUpdateCommand(group, chosen);
    addMonitoringDeleteCommand(group, chosen);
    addCountCommand(group, chosen);
    options::setExamples(group, "  rkmon monitoring list --name '^LS-'\n"
                                "  rkmon monitoring create --name VH --category Slope\n"
                                "  rkmon monitoring list --help");
}
