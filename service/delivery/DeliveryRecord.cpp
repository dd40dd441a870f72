#include "delivery/DeliveryRecord.h"

#include "domain/History.h"
#include "domain/PointLocation.h"
#include "store/QuantityQuery.h"
#include "time/Timestamp.h"

#include <utility>

namespace monitorservice {

namespace {

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

std::string laterDate(const std::string& held, const DeliveryShare& share)
{
    const std::optional<Timestamp> time = parseTimestamp(held);
    const bool isLater = share.lastTime && (!time || *share.lastTime > time->milliseconds);
    return isLater ? share.lastDate : held;
}

std::optional<History> latestHistory(const Session& session, const DataManage& dataManage)
{
    DocumentQuery query;
    query.project = dataManage.project;
    query.parent = dataManage.id;
    query.order = {{"_id", true}};
    query.limit = 1;
    std::optional<History> latest;
    session.documents(DocumentKind::History).visit(query, [&latest](std::string_view document) {
        latest = fromDocument<History>(document);
    });
    return latest;
}

// One instant may be written in several ways: what is held stays when it is still right.
std::string latestDate(const Session& session, const DataManage& dataManage)
{
    const std::optional<StoredPoint> point =
        session.measurements().latestPoint(dataManage.cell, dataManage.subCategory);
    if (!point) {
        return {};
    }
    std::string latest = fromDocument<PointLocation>(point->document).lastDate;
    const std::optional<Timestamp> held = parseTimestamp(dataManage.lastDate);
    const std::optional<Timestamp> found = parseTimestamp(latest);
    return held && found && compare(*held, *found) == 0 ? dataManage.lastDate : latest;
}

void replaceRemoved(Session& session, DataManage& dataManage, std::int64_t removed, const Author& author)
{
    dataManage.lastDate = latestDate(session, dataManage);
    dataManage.sampleCount -= removed;
    dataManage.stamp.change(author);
    session.documents(DocumentKind::DataManage)
        .replace(dataManage.project, dataManage.id, toDocument(dataManage));
}

} // namespace

std::optional<DataManage> findDataManage(const Session& session, const MonitoredQuantity& quantity)
{
    const QuantityQuery first(quantity, 1);
    std::optional<DataManage> found;
    session.documents(DocumentKind::DataManage).visit(first.query(), [&found](std::string_view document) {
        found = fromDocument<DataManage>(document);
    });
    return found;
}

void DeliveryRecord::expect(const Session& session, const MonitoredQuantity& quantity)
{
    session.documents(DocumentKind::DataManage).expect(QuantityQuery(quantity, 1).query());
}

DeliveryRecord::DeliveryRecord(Session& session, const MonitoredQuantity& quantity, const Author& author)
    : m_session(session), m_quantity(quantity), m_author(author),
      m_found(findDataManage(session, quantity)), m_mark{(m_found ? m_found->deliveries : 0) + 1,
                                                         session.newIdentifier()}
{
}

void DeliveryRecord::write(const DeliveryShare& share)
{
    DataManage dataManage = m_found ? *m_found : newDataManage(m_session, m_quantity, m_author);
    dataManage.lastDate = laterDate(dataManage.lastDate, share);
    dataManage.lastCount = static_cast<std::int64_t>(share.rows);
    dataManage.sampleCount += share.inserted;
    dataManage.deliveries = m_mark.number;
    dataManage.fileId = share.fileId;
    dataManage.stamp.change(m_author);

    History history;
    history.id = m_mark.history;
    history.dataManage = dataManage.id;
    history.number = m_mark.number;
    history.lastDate = dataManage.lastDate;
    history.lastCount = dataManage.sampleCount;
    history.sentCount = dataManage.lastCount;
    history.insertCount = share.inserted;
    history.correctCount = share.corrected;
    history.fileId = share.fileId;
    history.stamp = Stamp::of(m_author);

    Documents& dataManages = m_session.documents(DocumentKind::DataManage);
    if (m_found) {
        dataManages.replace(m_quantity.project, dataManage.id, toDocument(dataManage));
    } else {
        dataManages.insert(m_quantity.project, dataManage.id, toDocument(dataManage));
    }
    m_session.documents(DocumentKind::History).insert(m_quantity.project, history.id, toDocument(history));
}

void noteRemoved(Session& session, const MonitoredQuantity& quantity, std::int64_t removed,
                 const Author& author)
{
    if (std::optional<DataManage> dataManage = findDataManage(session, quantity)) {
        replaceRemoved(session, *dataManage, removed, author);
    }
}

void takeBackRecord(Session& session, DataManage dataManage, const std::string& history, std::int64_t removed,
                    const Author& author)
{
    session.documents(DocumentKind::History).remove(dataManage.project, history);
    const std::optional<History> before = latestHistory(session, dataManage);
    if (!before) {
        session.documents(DocumentKind::DataManage).remove(dataManage.project, dataManage.id);
        return;
    }
    dataManage.lastDate = before->lastDate;
    dataManage.lastCount = before->sentCount;
    dataManage.deliveries = before->number;
    dataManage.fileId = before->fileId;
    replaceRemoved(session, dataManage, removed, author);
}

} // namespace monitorservice
