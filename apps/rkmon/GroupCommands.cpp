#include "CommandOptions.h"
#include "Commands.h"
#include "Confirmation.h"
#include "DailyLimit.h"
#include "Identifier.h"
#include "Lookup.h"
#include "RecordChecks.h"
#include "ThresholdGroups.h"

#include <algorithm>
#include <cmath>

namespace {

const QString unitText = QStringLiteral("unit");
const QString percentText = QStringLiteral("percent");

struct GroupListOptions
{
    QString cell;
    QString category;
};

// The members of a group that the user may set.
struct GroupMemberOptions
{
    std::optional<QString> name;
    QStringList points;
    std::optional<QString> dailyIn;
    std::optional<double> dailyLimit;
    std::optional<double> totalLimit;
};

struct CreateOptions
{
    QString cell;
    QString subCategory;
    GroupMemberOptions members;
};

// One group, as the user says it.
struct GroupTarget
{
    QString group;
    QString cell;
};

struct GroupUpdateOptions
{
    GroupTarget target;
    GroupMemberOptions members;
};

struct GroupDeleteOptions
{
    GroupTarget target;
    Confirmation confirmation;
};

Sheet groupSheet(Session& session, const QList<PointLocSetting>& groups)
{
    Sheet sheet{{column::fixed("ID", "id"), column::text("MONITORING", "cellName"),
                 column::unlisted("MONITORING ID", "cellId"),
                 column::dispensable(1, column::text("SUB-CATEGORY", "subCategoryName")),
                 column::unlisted("SUB-CATEGORY ID", "subCategoryId"), column::text("NAME", "name"),
                 column::dispensable(2, column::text("POINTS", "points")),
                 column::fixed("TOTAL LIMIT", "totalLimit"), column::fixed("DAILY LIMIT", "dailyLimit"),
                 column::fixed("DAILY IN", "dailyIn"), column::unlisted("VIEW PORT", "viewPortId"),
                 column::unlisted("CREATED", "createdAt"), column::unlisted("CREATED BY", "createdBy"),
                 column::unlisted("UPDATED", "updatedAt"), column::unlisted("UPDATED BY", "updatedBy")},
                {}};
    lookup::readMonitoringNamesOf(session, groups);
    for (const PointLocSetting& group : groups) {
        // A rule that this program does not know is shown as the service words it.
        const QVariant dailyIn = group.dayVarType == daily::inUnits     ? QVariant(unitText)
                                 : group.dayVarType == daily::inPercent ? QVariant(percentText)
                                                                        : QVariant(group.dayVarType);
        sheet.rows.append({group.id, lookup::monitoringName(session, group.cellId), group.cellId,
                           lookup::subCategoryName(session, group.subCategoryId), group.subCategoryId,
                           group.groupName, group.groupPoint, group.totalVar, group.dayVarValue, dailyIn,
                           noneIfEmpty(group.viewPortId), group.createdAt, group.createdBy, group.updatedAt,
                           group.updatedBy});
    }
    return sheet;
}

ExitCode listGroups(Session& session, const GroupListOptions& options)
{
    QList<PointLocSetting> groups;
    if (!options.cell.isEmpty()) {
        groups = groupsOfMonitoring(session, lookup::monitoring(session, options.cell));
    } else {
        groups = options.category.isEmpty() ? groupsOfProject(session)
                                            : groupsOfCategory(session, options.category);
    }
    session.output().addList(groupSheet(session, groups));
    return ExitCode::Success;
}

// Of several groups of one name, each with what tells it apart.
QStringList candidatesOf(Session& session, const QList<PointLocSetting>& groups)
{
    QStringList candidates;
    for (const PointLocSetting& group : groups) {
        candidates.append(QStringLiteral("%1 (%2, %3)")
                              .arg(group.id, lookup::monitoringName(session, group.cellId),
                                   lookup::subCategoryName(session, group.subCategoryId)));
    }
    return candidates;
}

// The service has no way to ask for one group.
PointLocSetting findGroup(Session& session, const GroupTarget& target)
{
    const QList<PointLocSetting> groups =
        target.cell.isEmpty() ? groupsOfProject(session)
                              : groupsOfMonitoring(session, lookup::monitoring(session, target.cell));
    QList<PointLocSetting> found;
    for (const PointLocSetting& group : groups) {
        if (group.id.compare(target.group, Qt::CaseInsensitive) == 0) {
            return group;
        }
        if (group.groupName == target.group) {
            found.append(group);
        }
    }
    if (found.isEmpty()) {
        throw Failure(FailureKind::NotFound, QStringLiteral("there is no group \"%1\"").arg(target.group));
    }
    if (found.size() > 1) {
        throw Failure(FailureKind::BadInput, lookup::severalText(QStringLiteral("groups"), target.group,
                                                                 candidatesOf(session, found)));
    }
    return found.constFirst();
}

double limitOf(double limit, const char* option)
{
    if (!std::isfinite(limit) || limit < 0.0) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("%1: a limit must not be negative; 0 means none").arg(QLatin1String(option)));
    }
    return limit;
}

void assignMembers(const GroupMemberOptions& members, PointLocSetting& group)
{
    group.groupName = members.name.value_or(group.groupName);
    if (!members.points.isEmpty()) {
        group.groupPoint = members.points;
    }
    if (members.dailyIn) {
        group.dayVarType = *members.dailyIn == percentText ? daily::inPercent : daily::inUnits;
    }
    if (members.dailyLimit) {
        group.dayVarValue = limitOf(*members.dailyLimit, "--daily-limit");
    }
    if (members.totalLimit) {
        group.totalVar = limitOf(*members.totalLimit, "--total-limit");
    }
}

ExitCode createGroup(Session& session, const CreateOptions& options)
{
    PointLocSetting group;
    assignMembers(options.members, group);
    const RKMonitoring monitoring = lookup::monitoring(session, options.cell);
    group.cellId = monitoring.id;
    group.subCategoryId = lookup::subCategory(session, monitoring.category, options.subCategory).id;
    const QString purpose = QStringLiteral("create group \"%1\"").arg(group.groupName);
    session.ask(purpose, [&] { return session.projectData().createGroup(group); });
    requireIdentifier(group, purpose, QStringLiteral("a group"));
    session.output().addText(groupSheet(session, {group}), group.id);
    return ExitCode::Success;
}

bool isSame(const PointLocSetting& left, const PointLocSetting& right)
{
    return left.groupName == right.groupName && hasSameLimits(left, right);
}

ExitCode updateGroup(Session& session, const GroupUpdateOptions& options)
{
    const GroupMemberOptions& members = options.members;
    if (!members.name && members.points.isEmpty() && !members.dailyIn && !members.dailyLimit &&
        !members.totalLimit) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("nothing to change is given: use --name, --point, "
                                     "--daily-in, --daily-limit or --total-limit"));
    }
    PointLocSetting checked;
    assignMembers(members, checked); // refused before anything is sent
    const PointLocSetting before = findGroup(session, options.target);
    // Its names, before anything is changed: if reading them failed afterwards, the result could not be
    // shown.
    lookup::monitoringName(session, before.cellId);
    lookup::subCategoryName(session, before.subCategoryId);
    PointLocSetting group = before;
    assignMembers(members, group);
    if (isSame(before, group)) {
        session.note(QStringLiteral("nothing to change"));
    } else {
        const QString purpose = QStringLiteral("update group %1").arg(before.id);
        session.ask(purpose, [&] { return session.data().updateGroup(before, group); });
        requireIdentifier(group, purpose, QStringLiteral("a group"));
    }
    session.output().addRecord(groupSheet(session, {group}));
    return ExitCode::Success;
}

ExitCode deleteGroup(Session& session, const GroupDeleteOptions& options)
{
    QString id = isIdentifier(options.target.group) ? options.target.group : QString();
    const auto question = [&] {
        const PointLocSetting group = findGroup(session, options.target);
        id = group.id;
        return QStringLiteral("Delete group \"%1\" (%2)? Its %3 points lose their limits.")
            .arg(group.groupName, group.id)
            .arg(group.groupPoint.size());
    };
    if (!isConfirmed(session, options.confirmation, question)) {
        return ExitCode::Failed;
    }
    if (id.isEmpty()) {
        id = findGroup(session, options.target).id;
    }
    session.ask(QStringLiteral("delete group %1").arg(id), [&] { return session.data().deleteGroup(id); });
    session.note(QStringLiteral("deleted group %1").arg(id));
    return ExitCode::Success;
}

void addMemberOptions(CLI::App& app, GroupMemberOptions& members)
{
    options::addText(app, "--name", members.name, "Its name");
    options::addTexts(app, "--point", members.points, "A point of the group, by name; once for each");
    options::addText(app, "--daily-in", members.dailyIn,
                     "What the daily limit counts in: the value's unit, or percent of the initial value")
        ->type_name("unit|percent")
        ->check(CLI::IsMember({"unit", "percent"}).description(""));
    options::addNumber(app, "--daily-limit", members.dailyLimit, "Limit of the variation in a day; 0: none");
    options::addNumber(app, "--total-limit", members.totalLimit, "Limit of the total variation; 0: none");
}

void addGroupListCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] =
        options::addSubcommand(group, "list", "List threshold groups", chosen, listGroups);
    CLI::Option* cell = options::addCell(app, values->cell);
    options::addText(app, "--category", values->category, "Those of the monitorings of this category")
        ->type_name("CATEGORY")
        ->excludes(cell);
    options::setExamples(app, "  rkmon group list\n"
                              "  rkmon group list --cell VH\n"
                              "  rkmon group list --category Slope --json");
}

void addGroupCreateCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "create", "Create a threshold group and print its identifier", chosen, createGroup);
    options::addCell(app, values->cell)->required();
    options::addSubCategory(app, values->subCategory, "What its points measure, by identifier, name or alias")
        ->required();
    addMemberOptions(app, values->members);
    app.get_option("--name")->required();
    app.get_option("--point")->required();
    options::setExamples(app, "  rkmon group create --cell VH --sub-category SM --name 'Probes' \\\n"
                              "      --point VH-W1 --point VH-W2 --total-limit 0.02 --daily-limit 0.01\n"
                              "  rkmon group create --cell M1 --sub-category SM --name A --point W1");
}

void addTargetOptions(CLI::App& app, GroupTarget& target)
{
    options::addText(app, "GROUP", target.group, "Identifier, or name where only one has it")
        ->required()
        ->type_name("GROUP");
    options::addCell(app, target.cell)->description("Monitoring of the group, by identifier or exact name");
}

void addGroupChangeCommands(CLI::App& group, Command& chosen)
{
    const auto [update, updated] = options::addSubcommand(
        group, "update", "Change a threshold group; only what differs is sent", chosen, updateGroup);
    addTargetOptions(update, updated->target);
    addMemberOptions(update, updated->members);
    options::setExamples(update, "  rkmon group update Probes --cell VH --total-limit 0.03\n"
                                 "  rkmon group update 6745d2f0a1b2c3d4e5f60718 --name 'Upper probes'");

    const auto [remove, removed] =
        options::addSubcommand(group, "delete", "Delete a threshold group", chosen, deleteGroup);
    addTargetOptions(remove, removed->target);
    addConfirmation(remove, removed->confirmation);
    options::setExamples(remove, "  rkmon group delete Probes --cell VH\n"
                                 "  rkmon group delete --yes 6745d2f0a1b2c3d4e5f60718");
}

} // namespace

void addGroupCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "group", "List and change threshold groups, which limit points");
    addGroupListCommand(group, chosen);
    addGroupCreateCommand(group, chosen);
    addGroupChangeCommands(group, chosen);
    options::setExamples(group, "  rkmon group list --cell VH\n"
                                "  rkmon group create --help");
}
