#include "delivery/DeliveryRecord.h"

#include "domain/DataManage.h"
#include "domain/History.h"
#include "time/Timestamp.h"

#include <utility>

namespace monitorservice {

namespace {

std::optional<DataManage> find(const Session& session, const MonitoredQuantity& quantity)
{
    const Where where = Where::equals("subCategoryId", quantity.subCategory);
    DocumentQuery query;
    query.project = quantity.project;
    query.parent = quantity.cell;
    query.where = &where;
    query.limit = 1;
    std::optional<DataManage> found;
    session.documents(DocumentKind::DataManage).visit(query, [&found](std::string_view document) {
        found = fromDocument<DataManage>(document);
    });
    return found;
}

DataManage newDataManage(Session& session, const MonitoredQuantity& quantity, const Author& author)
{
    DataManage dataManage;
    dataManage.id = session.newIdentifier();
    dataManage.project = quantity.project;
    dataManage.cell = quantity.cell;
    dataManage.subCategory = quantity.subCategory;
    dataManage.stamp = Stamp::of(author);
    return dataManage;
}

// Samples leave the store with their data manage only, so that the latest entry's number still holds.
std::int64_t rowsHeld(const Session& session, const DataManage& dataManage)
{
    DocumentQuery query;
    query.project = dataManage.project;
    query.parent = dataManage.id;
    query.order = {{"_id", true}};
    query.limit = 1;
    std::int64_t rows = 0;
    session.documents(DocumentKind::History).visit(query, [&rows](std::string_view document) {
        rows = fromDocument<History>(document).lastCount;
    });
    return rows;
}

std::string laterDate(const std::string& held, const DeliveryShare& share)
{
    const std::optional<Timestamp> time = parseTimestamp(held);
    const bool isLater = share.lastTime && (!time || *share.lastTime > time->milliseconds);
    return isLater ? share.lastDate : held;
}

} // namespace

void recordDelivery(Session& session, const MonitoredQuantity& quantity, const DeliveryShare& share,
                    const Author& author)
{
    const std::optional<DataManage> found = find(session, quantity);
    DataManage dataManage = found ? *found : newDataManage(session, quantity, author);
    dataManage.lastDate = laterDate(dataManage.lastDate, share);
    dataManage.lastCount = static_cast<std::int64_t>(share.rows);
    dataManage.fileId = share.fileId;
    dataManage.stamp.change(author);

    History history;
    history.dataManage = dataManage.id;
    history.lastDate = dataManage.lastDate;
    history.lastCount = (found ? rowsHeld(session, dataManage) : 0) + share.inserted;
    history.insertCount = share.inserted;
    history.correctCount = share.corrected;
    history.fileId = share.fileId;
    history.stamp = Stamp::of(author);

    Documents& dataManages = session.documents(DocumentKind::DataManage);
    if (found) {
        dataManages.replace(quantity.project, dataManage.id, toDocument(dataManage));
    } else {
        dataManages.insert(quantity.project, dataManage.id, toDocument(dataManage));
    }
    history.id = session.newIdentifier();
    session.documents(DocumentKind::History).insert(quantity.project, history.id, toDocument(history));
}

} // namespace monitorservice
