#include "CommandOptions.h"
#include "Commands.h"
#include "Failure.h"
#include "Lookup.h"
#include "Pages.h"
#include "Period.h"
#include "PlaceMarkers.h"

namespace {

struct ListOptions
{
    QString name;
    QStringList cells;
    QStringList categories;
    QStringList subCategories;
    Period period;
    PageOptions page;
};

struct DetailOptions
{
    QString id;
    QString point;
    Period period;
    PageOptions page;
};

struct DepthOptions
{
    QString id;
    QString depth;
};

Sheet alarmSheet(Session& session, const QList<RKAlarm>& alarms)
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    Sheet sheet{{{QStringLiteral("ID"), QStringLiteral("id"), listed, fixed},
                 {QStringLiteral("RAISED"), QStringLiteral("alarmTime"), listed, fixed},
                 {QStringLiteral("MONITORING"), QStringLiteral("cellName"), listed, !fixed},
                 {QStringLiteral("MONITORING ID"), QStringLiteral("cellId"), !listed, fixed},
                 {QStringLiteral("SUB-CATEGORY"), QStringLiteral("subCategoryName"), listed, !fixed},
                 {QStringLiteral("SUB-CATEGORY ID"), QStringLiteral("subCategoryId"), !listed, fixed},
                 {QStringLiteral("POINTS"), QStringLiteral("pointCounts"), listed, fixed}},
                {}};
    for (const RKAlarm& alarm : alarms) {
        sheet.rows.append({alarm.id, alarm.alarmTime, alarm.cellName, alarm.cellId,
                           lookup::subCategoryName(session, alarm.subCategoryId), alarm.subCategoryId,
                           alarm.pointCounts});
    }
    return sheet;
}

Sheet detailSheet(const QList<RKAlarmDetail>& details)
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    constexpr bool computed = true;
    Sheet sheet{{{QStringLiteral("ID"), QStringLiteral("id"), listed, fixed},
                 {QStringLiteral("POINT"), QStringLiteral("pointName"), listed, !fixed},
                 {QStringLiteral("DEPTH"), QStringLiteral("depth"), listed, fixed},
                 {QStringLiteral("MEASURED"), QStringLiteral("monitorTime"), listed, fixed},
                 {QStringLiteral("COUNT"), QStringLiteral("monitorCount"), !listed, fixed},
                 {QStringLiteral("TOTAL"), QStringLiteral("totalVar"), listed, fixed, computed},
                 {QStringLiteral("OVER BY"), QStringLiteral("totalBeyound"), listed, fixed, computed},
                 {QStringLiteral("DAILY"), QStringLiteral("dayVar"), listed, fixed, computed},
                 {QStringLiteral("OVER BY"), QStringLiteral("dayBeyound"), listed, fixed, computed},
                 {QStringLiteral("PER DEPTH"), QStringLiteral("isThreeVar"), !listed, fixed},
                 {QStringLiteral("INCLINOMETER"), QStringLiteral("isInclinometer"), !listed, fixed},
                 {QStringLiteral("RAISED"), QStringLiteral("alarmTime"), !listed, fixed}},
                {}};
    for (const RKAlarmDetail& detail : details) {
        const QString depth = detail.depth.isEmpty() ? QString() : detail.depth;
        sheet.rows.append({detail.id, detail.pointName, depth, detail.monitorTime, detail.monitorCount,
                           detail.totalVar, detail.totalBeyound, detail.dayVar, detail.dayBeyound,
                           detail.isThreeVar, detail.isInclinometer, detail.alarmTime});
    }
    return sheet;
}

Sheet depthSheet(const QList<AlarmThree>& depths)
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    constexpr bool computed = true;
    Sheet sheet{{{QStringLiteral("ID"), QStringLiteral("id"), !listed, fixed},
                 {QStringLiteral("POINT"), QStringLiteral("pointName"), listed, !fixed},
                 {QStringLiteral("DEPTH"), QStringLiteral("depth"), listed, fixed},
                 {QStringLiteral("TOTAL"), QStringLiteral("totalValue"), listed, fixed, computed},
                 {QStringLiteral("MEASURED"), QStringLiteral("monitorTime"), listed, fixed},
                 {QStringLiteral("COUNT"), QStringLiteral("monitorCount"), listed, fixed}},
                {}};
    for (const AlarmThree& depth : depths) {
        sheet.rows.append({depth.id, depth.pointName, depth.depth, depth.totalValue, depth.monitorTime,
                           depth.monitorCount});
    }
    return sheet;
}

// A success whose records lack their identifiers was none.
template <typename Records>
void requireIdentifiers(const Records& records, const QString& purpose)
{
    for (const auto& record : records) {
        if (record.id.isEmpty()) {
            throw Failure(ExitCode::Failed,
                          QStringLiteral("cannot %1: the answer is not that of alarms").arg(purpose));
        }
    }
}

RKAlarmCondition conditionOf(Session& session, const ListOptions& options)
{
    RKAlarmCondition condition;
    restrictTo(options.period, condition);
    condition.name = markers::keptOutOf(options.name);
    condition.isAllCell = options.cells.isEmpty();
    for (const QString& cell : options.cells) {
        condition.cellIds.append(lookup::monitoring(session, cell).id);
    }
    condition.isAllCategory = options.categories.isEmpty() && options.subCategories.isEmpty();
    for (const QString& category : options.categories) {
        condition.categories.append(markers::requireNone(category, "--category"));
    }
    for (const QString& subCategory : options.subCategories) {
        condition.subCategories.append(markers::requireNone(subCategory, "--sub-category"));
    }
    return condition;
}

ExitCode listAlarms(Session& session, const ListOptions& options)
{
    const RKAlarmCondition condition = conditionOf(session, options);
    const auto readPage = [&](int skip, int limit) {
        const QString purpose = QStringLiteral("list alarms");
        QList<RKAlarm> page;
        session.ask(purpose,
                    [&] { return session.projectData().getAlarmRangeData(condition, skip, limit, page); });
        requireIdentifiers(page, purpose);
        return page;
    };
    const auto readCount = [&] {
        int count = 0;
        session.ask(QStringLiteral("count alarms"),
                    [&] { return session.projectData().getAlarmRangeCount(condition, count); });
        return count;
    };
    const QList<RKAlarm> alarms =
        pages::read(session, options.page, QStringLiteral("alarms"), readPage, readCount);
    session.output().addList(alarmSheet(session, alarms));
    return ExitCode::Success;
}

ExitCode listDetails(Session& session, const DetailOptions& options)
{
    RKAlarmDetailCondition condition;
    restrictTo(options.period, condition);
    condition.alarmManId = options.id;
    condition.pointName = markers::keptOutOf(options.point);
    const auto readPage = [&](int skip, int limit) {
        const QString purpose = QStringLiteral("list the details of alarm %1").arg(options.id);
        QList<RKAlarmDetail> page;
        session.ask(purpose,
                    [&] { return session.data().getAlarmDetailRangeData(condition, skip, limit, page); });
        requireIdentifiers(page, purpose);
        return page;
    };
    const auto readCount = [&] {
        int count = 0;
        session.ask(QStringLiteral("count the details of alarm %1").arg(options.id),
                    [&] { return session.data().getAlarmDetailRangeCount(condition, count); });
        return count;
    };
    session.output().addList(
        detailSheet(pages::read(session, options.page, QStringLiteral("details"), readPage, readCount)));
    return ExitCode::Success;
}

ExitCode listDepths(Session& session, const DepthOptions& options)
{
    const QString purpose = QStringLiteral("list the depths of alarm detail %1").arg(options.id);
    QList<AlarmThree> depths;
    session.ask(purpose,
                [&] { return session.data().getAlarmThreeByDetailId(options.id, options.depth, depths); });
    requireIdentifiers(depths, purpose);
    session.output().addList(depthSheet(depths));
    return ExitCode::Success;
}

void addListCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] =
        options::addSubcommand(group, "list", "List alarms, newest first", chosen, listAlarms);
    options::addText(app, "--name", values->name,
                     "Of monitorings whose name contains this regular expression, case ignored")
        ->type_name("PATTERN");
    options::addTexts(app, "--cell", values->cells, "Of this monitoring, by identifier or exact name")
        ->type_name("MONITORING");
    options::addTexts(app, "--category", values->categories, "Of monitorings of this category")
        ->type_name("CATEGORY");
    options::addTexts(app, "--sub-category", values->subCategories,
                      "Of this sub-category, by identifier, name or alias");
    addPeriodOptions(app, values->period, "Raised at this time or later", "Raised on this day or earlier");
    addPageOptions(app, values->page);
    options::setExamples(app, "  rkmon alarm list\n"
                              "  rkmon alarm list --cell VH --cell LS-a --sub-category SM");
}

void addDetailCommands(CLI::App& group, Command& chosen)
{
    const auto [detail, detailed] =
        options::addSubcommand(group, "detail", "List the points of an alarm", chosen, listDetails);
    options::addIdentifier(detail, "ALARM", detailed->id, "Identifier of the alarm")->required();
    options::addText(detail, "--point", detailed->point,
                     "Points whose name contains this regular expression, case ignored")
        ->type_name("PATTERN");
    addPeriodOptions(detail, detailed->period, "Measured at this time or later",
                     "Measured on this day or earlier");
    addPageOptions(detail, detailed->page);
    options::setExamples(detail, "  rkmon alarm detail 6745d2f0a1b2c3d4e5f60718");

    const auto [depths, listed] = options::addSubcommand(
        group, "depths", "List the values per depth of one point of an alarm", chosen, listDepths);
    options::addIdentifier(depths, "DETAIL", listed->id, "Identifier, as rkmon alarm detail shows it")
        ->required();
    options::addText(depths, "--depth", listed->depth, "Only this depth")->type_name("DEPTH");
    options::setExamples(depths, "  rkmon alarm depths 6745d2f0a1b2c3d4e5f60718 --depth 2.5");
}

} // namespace

void addAlarmCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(root, "alarm", "List the alarms that deliveries raised");
    addListCommand(group, chosen);
    addDetailCommands(group, chosen);
    options::setExamples(group, "  rkmon alarm list --since 2026-03-01");
}
