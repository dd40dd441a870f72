#include "datamanage/DataManageJson.h"

#include "frame/Companions.h"
#include "frame/JsonKey.h"

namespace rk {

namespace {

namespace key {
constexpr auto id = jsonKey("_id");
constexpr auto cellId = jsonKey("cellId");
constexpr auto subCategoryId = jsonKey("subCategoryId");
constexpr auto subCategory = jsonKey("subCategory");
constexpr auto category = jsonKey("category");
constexpr auto alias = jsonKey("alias");
constexpr auto lastDate = jsonKey("lastDate");
constexpr auto lastCount = jsonKey("lastCount");
constexpr auto insertCount = jsonKey("insertCount");
constexpr auto fileId = jsonKey("fileId");
constexpr auto createdAt = jsonKey("createdAt");
constexpr auto createdBy = jsonKey("createdBy");
constexpr auto updatedAt = jsonKey("updatedAt");
constexpr auto updatedBy = jsonKey("updatedBy");
} // namespace key

} // namespace

void dataManageFromJson(const QJsonObject& object, RKDataManage& record)
{
    record.id = object.value(key::id).toString();
    record.cellId = object.value(key::cellId).toString();
    record.subCategoryId = object.value(key::subCategoryId).toString();
    record.lastDate = RKPub::getDateTimeByQString(object.value(key::lastDate).toString());
    record.lastCount = object.value(key::lastCount).toInt(0);
    record.fileId = object.value(key::fileId).toString();
    record.updatedBy = object.value(key::updatedBy).toString();
    record.updatedAt = RKPub::getDateTimeByQString(object.value(key::updatedAt).toString());
    const QJsonObject subCategory = object.value(key::subCategory).toObject();
    record.category = subCategory.value(key::category).toString();
    record.alias = subCategory.value(key::alias).toString();
}

void historyFromJson(const QJsonObject& object, HistoryData& record)
{
    record.lastDate = RKPub::getDateTimeByQString(object.value(key::lastDate).toString());
    record.lastCount = object.value(key::lastCount).toInt(0);
    record.insertCount = object.value(key::insertCount).toInt(0);
    record.fileId = object.value(key::fileId).toString();
    record.createdAt = RKPub::getDateTimeByQString(object.value(key::createdAt).toString());
    record.createdBy = object.value(key::createdBy).toString();
    record.updatedAt = RKPub::getDateTimeByQString(object.value(key::updatedAt).toString());
    record.updatedBy = object.value(key::updatedBy).toString();
}

} // namespace rk
