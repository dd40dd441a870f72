#include "CommandOptions.h"
#include "Commands.h"
#include "Confirmation.h"
#include "Failure.h"
#include "Lookup.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint32 inUnits = 0;
constexpr qint32 inPercent = 1;

const QString unitText = QStringLiteral("unit");
const QString percentText = QStringLiteral("percent");

struct ListOptions
{
    QString cell;
    QString category;
};

// The members of a group that the user may set.
struct MemberOptions
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
    MemberOptions members;
};

struct UpdateOptions
{
    QString id;
    MemberOptions members;
};

struct DeleteOptions
{
    QString id;
    bool isConfirmed = false;
};

Sheet groupSheet(Session& session, const QList<PointLocSetting>& groups)
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    Sheet sheet{{{QStringLiteral("ID"), QStringLiteral("id"), listed, fixed},
                 {QStringLiteral("MONITORING"), QStringLiteral("cellName"), listed, !fixed},
                 {QStringLiteral("MONITORING ID"), QStringLiteral("cellId"), !listed, fixed},
                 {QStringLiteral("SUB-CATEGORY"), QStringLiteral("subCategoryName"), listed, !fixed},
                 {QStringLiteral("SUB-CATEGORY ID"), QStringLiteral("subCategoryId"), !listed, fixed},
                 {QStringLiteral("NAME"), QStringLiteral("name"), listed, !fixed},
                 {QStringLiteral("POINTS"), QStringLiteral("points"), listed, !fixed},
                 {QStringLiteral("TOTAL LIMIT"), QStringLiteral("totalLimit"), listed, fixed},
                 {QStringLiteral("DAILY LIMIT"), QStringLiteral("dailyLimit"), listed, fixed},
                 {QStringLiteral("DAILY IN"), QStringLiteral("dailyIn"), listed, fixed},
                 {QStringLiteral("VIEW PORT"), QStringLiteral("viewPortId"), !listed, fixed},
                 {QStringLiteral("CREATED"), QStringLiteral("createdAt"), !listed, fixed},
                 {QStringLiteral("CREATED BY"), QStringLiteral("createdBy"), !listed, !fixed},
                 {QStringLiteral("UPDATED"), QStringLiteral("updatedAt"), !listed, fixed},
                 {QStringLiteral("UPDATED BY"), QStringLiteral("updatedBy"), !listed, !fixed}},
                {}};
    QSet<QString> cells;
    for (const PointLocSetting& group : groups) {
        cells.insert(group.cellId);
    }
    lookup::readMonitoringNames(session, cells);
    for (const PointLocSetting& group : groups) {
        const QString viewPort = group.viewPortId.isEmpty() ? QString() : group.viewPortId;
        // A rule that this program does not know is shown as the service words it.
        const QVariant dailyIn = group.dayVarType == inUnits     ? QVariant(unitText)
                                 : group.dayVarType == inPercent ? QVariant(percentText)
                                                                 : QVariant(group.dayVarType);
        sheet.rows.append({group.id, lookup::monitoringName(session, group.cellId), group.cellId,
                           lookup::subCategoryName(session, group.subCategoryId), group.subCategoryId,
                           group.groupName, group.groupPoint, group.totalVar, group.dayVarValue, dailyIn,
                           viewPort, group.createdAt, group.createdBy, group.updatedAt, group.updatedBy});
    }
    return sheet;
}

void requireIdentifier(const PointLocSetting& group, const QString& purpose)
{
    if (group.id.isEmpty()) {
        throw Failure(ExitCode::Failed,
                      QStringLiteral("cannot %1: the answer is not that of a group").arg(purpose));
    }
}

QList<PointLocSetting> groupsOfCategory(Session& session, const QString& category)
{
    const QString purpose = QStringLiteral("list the groups of \"%1\"").arg(category);
    QList<PointLocSetting> groups;
    session.ask(purpose, [&] { return session.projectData().getGroupsByCategory(category, groups); });
    for (const PointLocSetting& group : qAsConst(groups)) {
        requireIdentifier(group, purpose);
    }
    return groups;
}

QList<PointLocSetting> groupsOfCell(Session& session, const QString& cell)
{
    const RKMonitoring monitoring = lookup::monitoring(session, cell);
    const QString purpose = QStringLiteral("list the groups of \"%1\"").arg(monitoring.name);
    QList<PointLocSetting> groups;
    session.ask(purpose, [&] { return session.data().getGroupsByCellId(monitoring.id, groups, false); });
    for (const PointLocSetting& group : qAsConst(groups)) {
        requireIdentifier(group, purpose);
    }
    return groups;
}

QStringList categories(Session& session)
{
    QStringList found;
    session.ask(QStringLiteral("list categories"),
                [&] { return session.data().getMonitoringCategory(found); });
    return found;
}

ExitCode listGroups(Session& session, const ListOptions& options)
{
    QList<PointLocSetting> groups;
    if (!options.cell.isEmpty()) {
        groups = groupsOfCell(session, options.cell);
    } else {
        for (const QString& category :
             options.category.isEmpty() ? categories(session) : QStringList{options.category}) {
            groups.append(groupsOfCategory(session, category));
        }
    }
    session.output().addList(groupSheet(session, groups));
    return ExitCode::Success;
}

// The service has no way to ask for one group.
PointLocSetting findGroup(Session& session, const QString& id)
{
    for (const QString& category : categories(session)) {
        for (const PointLocSetting& group : groupsOfCategory(session, category)) {
            if (group.id.compare(id, Qt::CaseInsensitive) == 0) {
                return group;
            }
        }
    }
    throw Failure(ExitCode::NotFound, QStringLiteral("there is no group %1").arg(id));
}

double limitOf(double limit, const char* option)
{
    if (!std::isfinite(limit) || limit < 0.0) {
        throw Failure(
            ExitCode::Usage,
            QStringLiteral("%1: a limit is not negative, and 0 is no limit").arg(QLatin1String(option)));
    }
    return limit;
}

void assignMembers(const MemberOptions& members, PointLocSetting& group)
{
    group.groupName = members.name.value_or(group.groupName);
    if (!members.points.isEmpty()) {
        group.groupPoint = members.points;
    }
    if (members.dailyIn) {
        group.dayVarType = *members.dailyIn == percentText ? inPercent : inUnits;
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
    requireIdentifier(group, purpose);
    session.output().addText(groupSheet(session, {group}), group.id);
    return ExitCode::Success;
}

bool isSame(const PointLocSetting& left, const PointLocSetting& right)
{
    return left.groupName == right.groupName && left.groupPoint == right.groupPoint &&
           left.dayVarType == right.dayVarType && left.dayVarValue == right.dayVarValue &&
           left.totalVar == right.totalVar;
}

ExitCode updateGroup(Session& session, const UpdateOptions& options)
{
    const MemberOptions& members = options.members;
    if (!members.name && members.points.isEmpty() && !members.dailyIn && !members.dailyLimit &&
        !members.totalLimit) {
        throw Failure(ExitCode::Usage, QStringLiteral("nothing to change is given: use --name, --point, "
                                                      "--daily-in, --daily-limit or --total-limit"));
    }
    PointLocSetting checked;
    assignMembers(members, checked); // refused before anything is sent
    const PointLocSetting before = findGroup(session, options.id);
    // Its names, before anything is changed: what was done could not be told when they cannot be read then.
    lookup::monitoringName(session, before.cellId);
    lookup::subCategoryName(session, before.subCategoryId);
    PointLocSetting group = before;
    assignMembers(members, group);
    if (isSame(before, group)) {
        session.note(QStringLiteral("nothing to change"));
    } else {
        const QString purpose = QStringLiteral("update group %1").arg(options.id);
        session.ask(purpose, [&] { return session.data().updateGroup(before, group); });
        requireIdentifier(group, purpose);
    }
    session.output().addRecord(groupSheet(session, {group}));
    return ExitCode::Success;
}

ExitCode deleteGroup(Session& session, const DeleteOptions& options)
{
    const auto question = [&] {
        const PointLocSetting group = findGroup(session, options.id);
        return QStringLiteral("Delete group \"%1\" (%2)? Its %3 points lose their limits.")
            .arg(group.groupName, group.id)
            .arg(group.groupPoint.size());
    };
    if (!confirmed(session, options.isConfirmed, question)) {
        return ExitCode::Failed;
    }
    session.ask(QStringLiteral("delete group %1").arg(options.id),
                [&] { return session.data().deleteGroup(options.id); });
    session.note(QStringLiteral("deleted group %1").arg(options.id));
    return ExitCode::Success;
}

void addMemberOptions(CLI::App& app, MemberOptions& members)
{
    options::addText(app, "--name", members.name, "Its name");
    options::addTexts(app, "--point", members.points, "A point of the group, by name; once for each");
    options::addText(app, "--daily-in", members.dailyIn,
                     "What the daily limit counts in: the value's unit, or per cent of the initial value")
        ->type_name("unit|percent")
        ->check(CLI::IsMember({"unit", "percent"}).description(""));
    options::addNumber(app, "--daily-limit", members.dailyLimit, "Limit of the variation in a day; 0: none");
    options::addNumber(app, "--total-limit", members.totalLimit, "Limit of the total variation; 0: none");
}

void addListCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] =
        options::addSubcommand(group, "list", "List threshold groups", chosen, listGroups);
    CLI::Option* cell = lookup::addCellOption(app, values->cell);
    options::addText(app, "--category", values->category, "Those of the monitorings of this category")
        ->type_name("CATEGORY")
        ->excludes(cell);
    options::setExamples(app, "  rkmon group list\n"
                              "  rkmon group list --cell VH\n"
                              "  rkmon group list --category Slope --json");
}

void addCreateCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "create", "Create a threshold group and print its identifier", chosen, createGroup);
    lookup::addCellOption(app, values->cell)->required();
    options::addText(app, "--sub-category", values->subCategory,
                     "What its points measure, by identifier, name or alias")
        ->required();
    addMemberOptions(app, values->members);
    app.get_option("--name")->required();
    app.get_option("--point")->required();
    options::setExamples(app, "  rkmon group create --cell VH --sub-category SM --name 'Probes' \\\n"
                              "      --point VH-W1 --point VH-W2 --total-limit 0.02 --daily-limit 0.01");
}

void addChangeCommands(CLI::App& group, Command& chosen)
{
    const auto [update, updated] = options::addSubcommand(
        group, "update", "Change a threshold group; only what differs is sent", chosen, updateGroup);
    options::addIdentifier(update, "ID", updated->id, "Identifier of the group")->required();
    addMemberOptions(update, updated->members);
    options::setExamples(update, "  rkmon group update 6745d2f0a1b2c3d4e5f60718 --total-limit 0.03");

    const auto [remove, removed] =
        options::addSubcommand(group, "delete", "Delete a threshold group", chosen, deleteGroup);
    options::addIdentifier(remove, "ID", removed->id, "Identifier of the group")->required();
    addConfirmationOption(remove, removed->isConfirmed);
    options::setExamples(remove, "  rkmon group delete --yes 6745d2f0a1b2c3d4e5f60718");
}

} // namespace

void addGroupCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(
        root, "group", "List and change threshold groups: the limits of points' variations");
    addListCommand(group, chosen);
    addCreateCommand(group, chosen);
    addChangeCommands(group, chosen);
    options::setExamples(group, "  rkmon group list --cell VH\n"
                                "  rkmon group create --help");
}
