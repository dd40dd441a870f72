#include "monitoring/MonitoringJson.h"

#include "frame/Companions.h"
#include "frame/JsonKey.h"
#include "frame/ProjectIdentifier.h"

#include <QJsonArray>

namespace rk {

namespace {

namespace key {
constexpr auto id = jsonKey("_id");
constexpr auto projectId = jsonKey("projectId");
constexpr auto name = jsonKey("name");
constexpr auto category = jsonKey("category");
constexpr auto alarmTo = jsonKey("alarmTo");
constexpr auto createdAt = jsonKey("createdAt");
constexpr auto createdBy = jsonKey("createdBy");
constexpr auto updatedAt = jsonKey("updatedAt");
constexpr auto updatedBy = jsonKey("updatedBy");
constexpr auto links = jsonKey("links");
constexpr auto linkType = jsonKey("type");
constexpr auto linkedId = jsonKey("rId");
} // namespace key

constexpr auto modelLink = jsonKey("model");

void readModelLink(const QJsonArray& links, QString& modelId)
{
    for (const QJsonValue& element : links) {
        const QJsonObject link = element.toObject();
        if (link.value(key::linkType).toString() == modelLink) {
            modelId = link.value(key::linkedId).toString();
            return;
        }
    }
}

} // namespace

void monitoringFromJson(const QJsonObject& object, RKMonitoring& record)
{
    record.id = object.value(key::id).toString();
    record.name = object.value(key::name).toString();
    record.category = object.value(key::category).toString();
    record.alarmTo = RKPub::getStrListFromVarList(object.value(key::alarmTo).toArray().toVariantList());
    record.createdAt = RKPub::getDateTimeByQString(object.value(key::createdAt).toString());
    record.createdBy = object.value(key::createdBy).toString();
    record.updatedAt = RKPub::getDateTimeByQString(object.value(key::updatedAt).toString());
    record.updatedBy = object.value(key::updatedBy).toString();
    readModelLink(object.value(key::links).toArray(), record.modelId);
}

void monitoringToJson(const RKMonitoring& record, QJsonObject& body)
{
    body.insert(key::projectId, projectIdentifierValue());
    body.insert(key::name, record.name);
    body.insert(key::category, record.category);
    body.insert(key::alarmTo, QJsonArray::fromStringList(record.alarmTo));
    if (!record.modelId.isEmpty()) {
        const QJsonObject link{{key::linkType, modelLink}, {key::linkedId, record.modelId}};
        body.insert(key::links, QJsonArray{link});
    }
}

} // namespace rk
