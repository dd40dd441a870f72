#include "CommandOptions.h"
#include "Commands.h"
#include "Confirmation.h"
#include "DataHeld.h"
#include "DataUndoCommand.h"
#include "Lookup.h"
#include "Pages.h"
#include "Period.h"
#include "PlaceMarkers.h"

#include <RKPub.h>

#include <algorithm>

namespace {

struct DataListOptions
{
    QString cell;
    QString category;
    Period period;
    PageOptions page;
};

struct HistoryOptions
{
    QString id;
    Period period;
    bool isByChange = false;
    PageOptions page;
};

struct DataDeleteOptions
{
    QString id;
    Confirmation confirmation;
};

Sheet dataSheet(Session& session, const QList<RKDataManage>& dataManages)
{
    Sheet sheet{{column::fixed("ID", "id"), column::text("MONITORING", "cellName"),
                 column::unlisted("MONITORING ID", "cellId"),
                 column::dispensable(2, column::text("CATEGORY", "category")),
                 column::text("SUB-CATEGORY", "subCategoryName"), column::unlisted("ALIAS", "alias"),
                 column::unlisted("SUB-CATEGORY ID", "subCategoryId"), column::fixed("LATEST", "lastDate"),
                 column::dispensable(1, column::fixed("ROWS", "lastCount")),
                 column::unlisted("FILE", "fileId"), column::unlisted("UPDATED", "updatedAt"),
                 column::unlisted("UPDATED BY", "updatedBy")},
                {}};
    lookup::readMonitoringNamesOf(session, dataManages);
    for (const RKDataManage& data : dataManages) {
        sheet.rows.append({data.id, lookup::monitoringName(session, data.cellId), data.cellId, data.category,
                           lookup::subCategoryName(session, data.subCategoryId), data.alias,
                           data.subCategoryId, data.lastDate, data.lastCount, noneIfEmpty(data.fileId),
                           data.updatedAt, data.updatedBy});
    }
    return sheet;
}

// A delivery with an identifier made of its members: the library reads none.
struct IdentifiedHistory
{
    QString id;
    HistoryData entry;
};

Sheet historySheet(const QList<IdentifiedHistory>& history)
{
    Sheet sheet{{column::fixed("DELIVERED", "createdAt"),
                 column::dispensable(2, column::text("BY", "createdBy")),
                 column::dispensable(1, column::fixed("LATEST", "lastDate")),
                 column::fixed("INSERTED", "insertCount"), column::fixed("HELD", "lastCount"),
                 column::unlisted("FILE", "fileId"), column::unlisted("UPDATED", "updatedAt"),
                 column::unlisted("UPDATED BY", "updatedBy")},
                {}};
    for (const IdentifiedHistory& identified : history) {
        const HistoryData& entry = identified.entry;
        sheet.rows.append({entry.createdAt, entry.createdBy, entry.lastDate, entry.insertCount,
                           entry.lastCount, noneIfEmpty(entry.fileId), entry.updatedAt, entry.updatedBy});
    }
    return sheet;
}

ExitCode listData(Session& session, const DataListOptions& options)
{
    RKDataManageCondition condition;
    restrictTo(options.period, session.zoneOf(), condition);
    condition.category = markers::keptOutOf(options.category);
    if (!options.cell.isEmpty()) {
        condition.cellId = lookup::monitoring(session, options.cell).id;
    }
    const QList<RKDataManage> dataManages = pages::read(
        session, options.page, QStringLiteral("data held"),
        [&](int skip, int limit) { return dataheld::readPage(session, condition, skip, limit); },
        [&] { return dataheld::readCount(session, condition); });
    session.output().addList(dataSheet(session, dataManages));
    return ExitCode::Success;
}

QList<IdentifiedHistory> readHistoryPage(Session& session, const RKHistoryDataCondition& condition, int skip,
                                         int limit)
{
    QList<HistoryData> page;
    session.ask(QStringLiteral("list the deliveries of %1").arg(condition.dataManageId),
                [&] { return session.data().getHistoryRangeData(condition, skip, limit, page); });
    QList<IdentifiedHistory> identified;
    for (const HistoryData& entry : qAsConst(page)) {
        const QString id = QStringLiteral("%1 %2 %3 %4")
                               .arg(RKPub::getQStringByDateTime(entry.createdAt),
                                    RKPub::getQStringByDateTime(entry.lastDate))
                               .arg(entry.lastCount)
                               .arg(entry.insertCount);
        identified.append({id, entry});
    }
    return identified;
}

int readHistoryCount(Session& session, const RKHistoryDataCondition& condition)
{
    int count = 0;
    session.ask(QStringLiteral("count the deliveries of %1").arg(condition.dataManageId),
                [&] { return session.data().getHistoryRangeCount(condition, count); });
    return count;
}

ExitCode listHistory(Session& session, const HistoryOptions& options)
{
    constexpr qint32 timeOfLatestData = 0;
    constexpr qint32 timeOfLastChange = 2;
    RKHistoryDataCondition condition;
    restrictTo(options.period, session.zoneOf(), condition);
    condition.dataManageId = options.id;
    condition.timeType = options.isByChange ? timeOfLastChange : timeOfLatestData;
    session.output().addList(historySheet(pages::read(
        session, options.page, QStringLiteral("deliveries"),
        [&](int skip, int limit) { return readHistoryPage(session, condition, skip, limit); },
        [&] { return readHistoryCount(session, condition); })));
    return ExitCode::Success;
}

ExitCode deleteData(Session& session, const DataDeleteOptions& options)
{
    const auto question = [&] {
        const RKDataManage data = dataheld::find(session, options.id);
        const QString monitoring = lookup::currentMonitoringName(session, data.cellId);
        return QStringLiteral("Delete all points, samples, deliveries and alarms of %1 of \"%2\"?")
            .arg(data.alias.isEmpty() ? data.subCategoryId : data.alias, monitoring);
    };
    if (!isConfirmed(session, options.confirmation, question)) {
        return ExitCode::Failed;
    }
    session.ask(QStringLiteral("delete data %1").arg(options.id),
                [&] { return session.data().deletePointData(options.id); });
    session.note(
        QStringLiteral("deleted data %1 with its points, samples, deliveries and alarms").arg(options.id));
    return ExitCode::Success;
}

void addDataListCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "list", "List the data held, by monitoring and sub-category, newest first", chosen, listData);
    options::addCell(app, values->cell);
    options::addText(app, "--category", values->category,
                     "Categories that contain this regular expression, case ignored")
        ->type_name("PATTERN");
    addPeriodOptions(app, values->period, "First delivered at this time or later",
                     "First delivered on this day or earlier");
    addPageOptions(app, values->page);
    options::setExamples(app, "  rkmon data list\n"
                              "  rkmon data list --cell VH --json");
}

void addHistoryCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "history", "List the deliveries of one of them, newest first", chosen, listHistory);
    options::addIdentifier(app, "ID", values->id, "Identifier, as rkmon data list shows it")->required();
    addPeriodOptions(app, values->period, "With data of this time or later",
                     "With data of this day or earlier");
    app.add_flag("--by-change", values->isByChange, "The period is that of the last change instead");
    addPageOptions(app, values->page);
    options::setExamples(app, "  rkmon data history 6745d2f0a1b2c3d4e5f60718\n"
                              "  rkmon data history 6745d2f0a1b2c3d4e5f60718 --since 2026-03-01 --by-change");
}

void addDataDeleteCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "delete", "Delete data with its points, samples, deliveries and alarms", chosen, deleteData);
    options::addIdentifier(app, "ID", values->id, "Identifier, as rkmon data list shows it")->required();
    addConfirmation(app, values->confirmation);
    options::setExamples(app, "  rkmon data delete 6745d2f0a1b2c3d4e5f60718\n"
                              "  rkmon data delete --yes 6745d2f0a1b2c3d4e5f60718");
}

} // namespace

void addDataCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(root, "data", "List the data held and how it was delivered");
    addDataListCommand(group, chosen);
    addHistoryCommand(group, chosen);
    addDataUndoCommand(group, chosen);
    addDataDeleteCommand(group, chosen);
    options::setExamples(group, "  rkmon data list --cell VH\n"
                                "  rkmon data undo --cell VH --sub-category SM");
}
