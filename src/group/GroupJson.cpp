#include "group/GroupJson.h"

#include "frame/Companions.h"
#include "frame/JsonKey.h"
#include "frame/ProjectIdentifier.h"

#include <QJsonArray>

namespace rk {

namespace {

namespace key {
constexpr auto id = jsonKey("_id");
constexpr auto projectId = jsonKey("projectId");
constexpr auto cellId = jsonKey("cellId");
constexpr auto subCategoryId = jsonKey("subCategoryId");
constexpr auto groupName = jsonKey("groupName");
constexpr auto groupPoint = jsonKey("groupPoint");
constexpr auto dayVarType = jsonKey("dayVarType");
constexpr auto dayVarValue = jsonKey("dayVarValue");
constexpr auto totalVar = jsonKey("totalVar");
constexpr auto viewPortId = jsonKey("viewPortId");
constexpr auto createdAt = jsonKey("createdAt");
constexpr auto createdBy = jsonKey("createdBy");
constexpr auto updatedAt = jsonKey("updatedAt");
constexpr auto updatedBy = jsonKey("updatedBy");
} // namespace key

} // namespace

void groupFromJson(const QJsonObject& object, PointLocSetting& record)
{
    record.id = object.value(key::id).toString();
    record.projectId = object.value(key::projectId).toString();
    record.cellId = object.value(key::cellId).toString();
    record.subCategoryId = object.value(key::subCategoryId).toString();
    record.groupName = object.value(key::groupName).toString();
    record.groupPoint = RKPub::getStrListFromVarList(object.value(key::groupPoint).toArray().toVariantList());
    record.dayVarType = object.value(key::dayVarType).toInt(0);
    record.dayVarValue = object.value(key::dayVarValue).toDouble(0.0);
    record.totalVar = object.value(key::totalVar).toDouble(0.0);
    record.viewPortId = object.value(key::viewPortId).toString();
    record.createdAt = RKPub::getDateTimeByQString(object.value(key::createdAt).toString());
    record.createdBy = object.value(key::createdBy).toString();
    record.updatedAt = RKPub::getDateTimeByQString(object.value(key::updatedAt).toString());
    record.updatedBy = object.value(key::updatedBy).toString();
}

void groupToJson(const PointLocSetting& record, QJsonObject& body)
{
    body.insert(key::projectId, projectIdentifierValue());
    body.insert(key::cellId, record.cellId);
    body.insert(key::subCategoryId, record.subCategoryId);
    body.insert(key::groupName, record.groupName);
    body.insert(key::groupPoint, QJsonArray::fromStringList(record.groupPoint));
    body.insert(key::dayVarType, record.dayVarType);
    body.insert(key::dayVarValue, record.dayVarValue);
    body.insert(key::totalVar, record.totalVar);
}

} // namespace rk
