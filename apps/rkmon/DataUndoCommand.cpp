#include "DataUndoCommand.h"

#include "CommandOptions.h"
#include "Confirmation.h"
#include "DataHeld.h"
#include "Lookup.h"

namespace {

struct UndoOptions
{
    QString id;
    QString cell;
    QString subCategory;
    Confirmation confirmation;
};

QString titleOf(Session& session, const RKDataManage& data)
{
    return QStringLiteral("%1 of \"%2\"")
        .arg(lookup::subCategoryName(session, data.subCategoryId),
             lookup::monitoringName(session, data.cellId));
}

// What is held of the monitoring, and of the sub-category when one is given.
QList<RKDataManage> dataOf(Session& session, const UndoOptions& options)
{
    const RKMonitoring monitoring = lookup::monitoring(session, options.cell);
    const QString subCategory =
        options.subCategory.isEmpty()
            ? QString()
            : lookup::subCategory(session, monitoring.category, options.subCategory).id;
    RKDataManageCondition condition;
    condition.cellId = monitoring.id;
    QList<RKDataManage> found;
    const QList<RKDataManage> held = dataheld::readAll(session, condition);
    for (const RKDataManage& data : held) {
        if (subCategory.isEmpty() || data.subCategoryId == subCategory) {
            found.append(data);
        }
    }
    return found;
}

RKDataManage findData(Session& session, const UndoOptions& options)
{
    if (options.id.isEmpty() && options.cell.isEmpty()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("whose delivery? Give the identifier of its data, or --cell and "
                                     "--sub-category"));
    }
    if (!options.id.isEmpty()) {
        return dataheld::find(session, options.id);
    }
    const QList<RKDataManage> found = dataOf(session, options);
    if (found.isEmpty()) {
        throw Failure(FailureKind::NotFound,
                      QStringLiteral("nothing was delivered for \"%1\"").arg(options.cell));
    }
    if (found.size() > 1) {
        QStringList candidates;
        for (const RKDataManage& data : found) {
            candidates.append(QStringLiteral("%1 (%2)").arg(data.id, titleOf(session, data)));
        }
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("\"%1\" has data of several sub-categories; say which by --sub-category: %2")
                .arg(options.cell, candidates.join(QStringLiteral(", "))));
    }
    return found.constFirst();
}

DeliveryEntry latestDelivery(Session& session, const RKDataManage& data)
{
    const QList<DeliveryEntry> deliveries = session.extensions().deliveries(data.id, 0, 1);
    if (deliveries.isEmpty()) {
        throw Failure(FailureKind::NotFound,
                      QStringLiteral("there is no delivery of %1").arg(titleOf(session, data)));
    }
    return deliveries.constFirst();
}

ExitCode undoDelivery(Session& session, const UndoOptions& options)
{
    const RKDataManage data = findData(session, options);
    const DeliveryEntry delivery = latestDelivery(session, data);
    const auto question = [&] {
        const QString file =
            delivery.fileId.isEmpty() ? QString() : QStringLiteral(" of %1").arg(delivery.fileId);
        return QStringLiteral(
                   "Take back delivery %1%2 of %3 by %4: %5 samples inserted, %6 corrected, in %7?")
            .arg(delivery.number)
            .arg(file, shownTime(delivery.createdAt, session.shownZone()), delivery.createdBy)
            .arg(delivery.insertCount)
            .arg(delivery.correctCount)
            .arg(titleOf(session, data));
    };
    if (!isConfirmed(session, options.confirmation, question)) {
        return ExitCode::Failed;
    }
    const UndoneDelivery undone = session.extensions().undoDelivery(delivery.id);
    session.output().addRecord(
        {{column::fixed("DELIVERY", "id"), column::fixed("NUMBER", "number"),
          column::fixed("SAMPLES REMOVED", "removed"), column::fixed("SAMPLES RESTORED", "restored"),
          column::fixed("POINTS REMOVED", "removedPoints"), column::text("ALARMS CHANGED", "alarms")},
         {{undone.delivery.id, undone.delivery.number, undone.removed, undone.restored, undone.removedPoints,
           undone.alarms}}});
    return ExitCode::Success;
}

} // namespace

void addDataUndoCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "undo", "Take the latest delivery back, as if it had not been made", chosen, undoDelivery);
    CLI::Option* id =
        options::addIdentifier(app, "ID", values->id, "Identifier, as rkmon data list shows it");
    options::addCell(app, values->cell)->excludes(id);
    options::addSubCategory(app, values->subCategory, "What was delivered, by identifier, name or alias")
        ->excludes(id);
    addConfirmation(app, values->confirmation);
    options::setExamples(app, "  rkmon data undo --cell VH --sub-category SM\n"
                              "  rkmon data undo --yes 6745d2f0a1b2c3d4e5f60718");
}
