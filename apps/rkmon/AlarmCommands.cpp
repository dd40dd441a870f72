#include "AlarmsRaised.h"
#include "CommandOptions.h"
#include "Commands.h"
#include "DailyLimit.h"
#include "Lookup.h"
#include "Pages.h"
#include "Period.h"
#include "PlaceMarkers.h"
#include "RecordChecks.h"

#include <QSet>

namespace {

struct AlarmListOptions
{
    QString name;
    QStringList cells;
    QStringList categories;
    QStringList subCategories;
    Period period;
    bool isOpen = false;
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
    Sheet sheet{{column::fixed("ID", "id"), column::fixed("RAISED", "alarmTime"),
                 column::text("MONITORING", "cellName"), column::unlisted("MONITORING ID", "cellId"),
                 column::dispensable(1, column::text("SUB-CATEGORY", "subCategoryName")),
                 column::unlisted("SUB-CATEGORY ID", "subCategoryId"),
                 column::fixed("POINTS", "pointCounts")},
                {}};
    for (const RKAlarm& alarm : alarms) {
        sheet.rows.append({alarm.id, alarm.alarmTime, alarm.cellName, alarm.cellId,
                           lookup::subCategoryName(session, alarm.subCategoryId), alarm.subCategoryId,
                           alarm.pointCounts});
    }
    return sheet;
}

// Why the details of an alarm are there, by their identifiers, as far as the service tells.
QMap<QString, AlarmReason> reasonsOf(Session& session, const QString& alarmId)
{
    QMap<QString, AlarmReason> reasons;
    if (session.extensions().has(Extension::AlarmReasons)) {
        const QList<AlarmReason> known = session.extensions().alarmReasons(alarmId);
        for (const AlarmReason& reason : known) {
            reasons.insert(reason.id, reason);
        }
    }
    return reasons;
}

// A daily variation, or by how much it passes its limit: in percent for a limit that is.
QVariant dailyCell(const QVariant& value, const AlarmReason& reason)
{
    constexpr int percentDecimals = 2;
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return isNumber && reason.dayVarType == daily::inPercent
               ? cell::shownAs(value, QString::number(number, 'f', percentDecimals) + QStringLiteral(" %"))
               : value;
}

Sheet detailSheet(const QList<RKAlarmDetail>& details, const QMap<QString, AlarmReason>& reasons)
{
    Sheet sheet{{column::fixed("ID", "id"), column::text("POINT", "pointName"),
                 column::fixed("DEPTH", "depth"),
                 column::dispensable(1, column::fixed("MEASURED", "monitorTime")),
                 column::unlisted("COUNT", "monitorCount"), column::computed("TOTAL", "totalVar"),
                 column::computed("OVER BY", "totalBeyound"), column::computed("DAILY", "dayVar"),
                 column::computed("OVER BY", "dayBeyound"), column::unlisted("PER DEPTH", "isThreeVar"),
                 column::unlisted("INCLINOMETER", "isInclinometer"), column::unlisted("RAISED", "alarmTime")},
                {}};
    for (const RKAlarmDetail& detail : details) {
        sheet.rows.append({detail.id, detail.pointName, noneIfEmpty(detail.depth), detail.monitorTime,
                           detail.monitorCount, detail.totalVar, detail.totalBeyound,
                           dailyCell(detail.dayVar, reasons.value(detail.id)),
                           dailyCell(detail.dayBeyound, reasons.value(detail.id)), detail.isThreeVar,
                           detail.isInclinometer, detail.alarmTime});
    }
    return sheet;
}

Sheet depthSheet(const QList<AlarmThree>& depths)
{
    Sheet sheet{{column::unlisted("ID", "id"), column::text("POINT", "pointName"),
                 column::fixed("DEPTH", "depth"), column::computed("TOTAL", "totalValue"),
                 column::fixed("MEASURED", "monitorTime"), column::fixed("COUNT", "monitorCount")},
                {}};
    for (const AlarmThree& depth : depths) {
        sheet.rows.append({depth.id, depth.pointName, depth.depth, depth.totalValue, depth.monitorTime,
                           depth.monitorCount});
    }
    return sheet;
}

RKAlarmCondition conditionOf(Session& session, const AlarmListOptions& options)
{
    RKAlarmCondition condition;
    restrictTo(options.period, session.zoneOf(), condition);
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

QList<RKAlarm> alarmsOf(Session& session, const RKAlarmCondition& condition, const PageOptions& page)
{
    return pages::read(
        session, page, QStringLiteral("alarms"),
        [&](int skip, int limit) { return alarms::readPage(session, condition, skip, limit); },
        [&] { return alarms::readCount(session, condition); });
}

// All are read whatever the page: the conditions of the library know nothing of what is open.
QList<RKAlarm> openAlarmsOf(Session& session, const RKAlarmCondition& condition, const PageOptions& page)
{
    const QSet<QString> identifiers = session.extensions().openAlarms(session.project());
    QList<RKAlarm> open;
    for (const RKAlarm& alarm : alarms::readAll(session, condition)) {
        if (identifiers.contains(alarm.id)) {
            open.append(alarm);
        }
    }
    return pages::read(
        session, page, QStringLiteral("alarms"), [&](int skip, int limit) { return open.mid(skip, limit); },
        [&] { return open.size(); });
}

ExitCode listAlarms(Session& session, const AlarmListOptions& options)
{
    const RKAlarmCondition condition = conditionOf(session, options);
    const QList<RKAlarm> listed = options.isOpen ? openAlarmsOf(session, condition, options.page)
                                                 : alarmsOf(session, condition, options.page);
    session.output().addList(alarmSheet(session, listed));
    return ExitCode::Success;
}

ExitCode listDetails(Session& session, const DetailOptions& options)
{
    RKAlarmDetailCondition condition;
    restrictTo(options.period, session.zoneOf(), condition);
    condition.alarmManId = options.id;
    condition.pointName = markers::keptOutOf(options.point);
    const QList<RKAlarmDetail> details = pages::read(
        session, options.page, QStringLiteral("details"),
        [&](int skip, int limit) { return alarms::readDetailPage(session, condition, skip, limit); },
        [&] { return alarms::readDetailCount(session, condition); });
    const auto reasons = details.isEmpty() ? QMap<QString, AlarmReason>() : reasonsOf(session, options.id);
    session.output().addList(detailSheet(details, reasons));
    return ExitCode::Success;
}

ExitCode listDepths(Session& session, const DepthOptions& options)
{
    const QString purpose = QStringLiteral("list the depths of alarm detail %1").arg(options.id);
    QList<AlarmThree> depths;
    session.ask(purpose,
                [&] { return session.data().getAlarmThreeByDetailId(options.id, options.depth, depths); });
    requireIdentifiers(depths, purpose, QStringLiteral("alarms"));
    session.output().addList(depthSheet(depths));
    return ExitCode::Success;
}

void addAlarmListCommand(CLI::App& group, Command& chosen)
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
                      "Of this sub-category, by identifier, name or alias")
        ->type_name("SUB-CATEGORY");
    addPeriodOptions(app, values->period, "Raised at this time or later", "Raised on this day or earlier");
    app.add_flag("--open", values->isOpen, "Only those in which the latest reading of a point stands");
    addPageOptions(app, values->page);
    options::setExamples(app, "  rkmon alarm list --open\n"
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
    options::setExamples(detail, "  rkmon alarm detail 6745d2f0a1b2c3d4e5f60718\n"
                                 "  rkmon alarm detail 6745d2f0a1b2c3d4e5f60718 --point '^VH-' --json");

    const auto [depths, listed] = options::addSubcommand(
        group, "depths", "List the values per depth of one point of an alarm", chosen, listDepths);
    options::addIdentifier(depths, "DETAIL", listed->id, "Identifier, as rkmon alarm detail shows it")
        ->required();
    options::addText(depths, "--depth", listed->depth, "Only this depth")->type_name("DEPTH");
    options::setExamples(depths, "  rkmon alarm depths 6745d2f0a1b2c3d4e5f60718\n"
                                 "  rkmon alarm depths 6745d2f0a1b2c3d4e5f60718 --depth 2.5");
}

} // namespace

void addAlarmCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(root, "alarm", "List the alarms that deliveries raised");
    addAlarmListCommand(group, chosen);
    addDetailCommands(group, chosen);
    options::setExamples(group, "  rkmon alarm list --since 2026-03-01\n"
                                "  rkmon alarm detail 6745d2f0a1b2c3d4e5f60718");
}
