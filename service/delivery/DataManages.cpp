#include "delivery/DataManages.h"

#include "json/JsonText.h"
#include "json/StoredText.h"
#include "time/Timestamp.h"

#include <simdjson.h>

#include <algorithm>

namespace monitorservice {

namespace {

// What is known of a data manage before a delivery.
struct DataManage
{
    std::string id;
    std::string lastDate;
    std::string fileId;
    std::string createdAt;
    std::string createdBy;
    std::string updatedAt;
    std::int64_t rowsHeld = 0;
};

template <typename Read>
void readDocument(std::string_view document, Read&& read)
{
    try {
        simdjson::dom::parser parser;
        read(parser.parse(document.data(), document.size()).value());
    } catch (const simdjson::simdjson_error& error) {
        throw StoreError(StoreFailure::InputOutput,
                         std::string("a stored data manage is damaged: ") + error.what());
    }
}

std::optional<DataManage> find(const Session& session, const DeliveryTarget& target)
{
    const Where where = Where::equals("subCategoryId", target.subCategory);
    DocumentQuery query;
    query.project = target.project;
    query.parent = target.cell;
    query.where = &where;
    query.limit = 1;
    std::optional<DataManage> found;
    session.documents(DocumentKind::DataManage).visit(query, [&found](std::string_view document) {
        readDocument(document, [&found](simdjson::dom::element object) {
            found = DataManage{storedText(object, "_id"),       storedText(object, "lastDate"),
                               storedText(object, "fileId"),    storedText(object, "createdAt"),
                               storedText(object, "createdBy"), storedText(object, "updatedAt")};
        });
    });
    return found;
}

// Samples leave the store with their data manage only, so that the latest entry's number still holds.
std::int64_t rowsHeld(const Session& session, const std::string& project, const std::string& dataManage)
{
    DocumentQuery query;
    query.project = project;
    query.parent = dataManage;
    query.order = {{"_id", true}};
    query.limit = 1;
    std::int64_t rows = 0;
    session.documents(DocumentKind::History).visit(query, [&rows](std::string_view document) {
        readDocument(document, [&rows](simdjson::dom::element object) {
            rows = object["lastCount"].get_int64().value();
        });
    });
    return rows;
}

std::string laterDate(const std::string& held, const DeliveryShare& share)
{
    const std::optional<Timestamp> time = parseTimestamp(held);
    const bool isLater = share.lastTime && (!time || *share.lastTime > time->milliseconds);
    return isLater ? share.lastDate : held;
}

std::string documentOf(const DataManage& dataManage, const DeliveryTarget& target, const DeliveryShare& share,
                       const Author& author)
{
    return JsonObjectWriter()
        .text("_id", dataManage.id)
        .text("projectId", target.project)
        .text("cellId", target.cell)
        .text("subCategoryId", target.subCategory)
        .text("lastDate", dataManage.lastDate)
        .integer("lastCount", static_cast<std::int64_t>(share.rows))
        .text("fileId", dataManage.fileId)
        .text("createdAt", dataManage.createdAt)
        .text("createdBy", dataManage.createdBy)
        .text("updatedAt", dataManage.updatedAt)
        .text("updatedBy", author.name)
        .finish();
}

void insertHistory(Session& session, const DataManage& dataManage, const DeliveryTarget& target,
                   const DeliveryShare& share, const Author& author)
{
    const std::string id = session.newIdentifier();
    session.documents(DocumentKind::History)
        .insert(target.project, id,
                JsonObjectWriter()
                    .text("_id", id)
                    .text("dataManageId", dataManage.id)
                    .text("lastDate", dataManage.lastDate)
                    .integer("lastCount", dataManage.rowsHeld)
                    .integer("insertCount", share.inserted)
                    .text("fileId", share.fileId)
                    .text("createdAt", author.time)
                    .text("createdBy", author.name)
                    .text("updatedAt", author.time)
                    .text("updatedBy", author.name)
                    .finish());
}

} // namespace

void recordDelivery(Session& session, const DeliveryTarget& target, const DeliveryShare& share,
                    const Author& author)
{
    std::optional<DataManage> found = find(session, target);
    const bool isNew = !found;
    DataManage dataManage =
        isNew ? DataManage{session.newIdentifier(), {}, {}, author.time, author.name, {}} : std::move(*found);
    if (!isNew) {
        dataManage.rowsHeld = rowsHeld(session, target.project, dataManage.id);
    }
    dataManage.rowsHeld += share.inserted;
    dataManage.lastDate = laterDate(dataManage.lastDate, share);
    dataManage.fileId = share.fileId;
    dataManage.updatedAt = std::max(author.time, dataManage.updatedAt);
    const std::string document = documentOf(dataManage, target, share, author);
    if (isNew) {
        session.documents(DocumentKind::DataManage).insert(target.project, dataManage.id, document);
    } else {
        session.documents(DocumentKind::DataManage).replace(target.project, dataManage.id, document);
    }
    insertHistory(session, dataManage, target, share, author);
}

} // namespace monitorservice
