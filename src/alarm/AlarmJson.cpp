// The constructors that build alarm records from a reply object.

#include "RKAlarm.h"
#include "frame/Companions.h"
#include "frame/JsonKey.h"

#include <QJsonObject>

namespace {

namespace key {
using rk::jsonKey;
constexpr auto id = jsonKey("_id");
constexpr auto cellId = jsonKey("cellId");
constexpr auto cellName = jsonKey("cellName");
constexpr auto subCategoryId = jsonKey("subCategoryId");
constexpr auto alarmTime = jsonKey("alarmTime");
constexpr auto pointCounts = jsonKey("pointCounts");
constexpr auto alarmManId = jsonKey("alarmManId");
constexpr auto detailId = jsonKey("detailId");
constexpr auto pointName = jsonKey("pointName");
constexpr auto totalVar = jsonKey("totalVar");
constexpr auto dayVar = jsonKey("dayVar");
// Spelt as the service spells them.
constexpr auto totalBeyound = jsonKey("totalBeyound");
constexpr auto dayBeyound = jsonKey("dayBeyound");
constexpr auto isThreeVar = jsonKey("isThreeVar");
constexpr auto isInclinometer = jsonKey("isInclinometer");
constexpr auto monitorCount = jsonKey("monitorCount");
constexpr auto monitorTime = jsonKey("monitorTime");
constexpr auto totalValue = jsonKey("totalValue");
constexpr auto depth = jsonKey("depth");
constexpr auto updatedAt = jsonKey("updatedAt");
constexpr auto updatedBy = jsonKey("updatedBy");
constexpr auto createdAt = jsonKey("createdAt");
constexpr auto createdBy = jsonKey("createdBy");
} // namespace key

QDateTime timeOf(const QJsonObject& object, QLatin1String member)
{
    return RKPub::getDateTimeByQString(object.value(member).toString());
}

} // namespace

RKAlarm::RKAlarm(const QJsonObject& object)
    : id(object.value(key::id).toString()), cellId(object.value(key::cellId).toString()),
      cellName(object.value(key::cellName).toString()),
      subCategoryId(object.value(key::subCategoryId).toString()), alarmTime(timeOf(object, key::alarmTime)),
      pointCounts(object.value(key::pointCounts).toInt(0))
{
}

RKAlarmDetail::RKAlarmDetail(const QJsonObject& object)
    : id(object.value(key::id).toString()), alarmManId(object.value(key::alarmManId).toString()),
      pointName(object.value(key::pointName).toString()), totalVar(object.value(key::totalVar).toString()),
      dayVar(object.value(key::dayVar).toString()),
      totalBeyound(object.value(key::totalBeyound).toDouble(0.0)),
      dayBeyound(object.value(key::dayBeyound).toDouble(0.0)),
      isThreeVar(object.value(key::isThreeVar).toBool(false)),
      isInclinometer(object.value(key::isInclinometer).toBool(false)),
      monitorCount(object.value(key::monitorCount).toInt(0)), monitorTime(timeOf(object, key::monitorTime)),
      depth(object.value(key::depth).toString()), alarmTime(timeOf(object, key::alarmTime)),
      updatedAt(timeOf(object, key::updatedAt)), updatedBy(object.value(key::updatedBy).toString()),
      createdAt(timeOf(object, key::createdAt)), createdBy(object.value(key::createdBy).toString())
{
}

AlarmThree::AlarmThree(const QJsonObject& object)
    : id(object.value(key::id).toString()), detailId(object.value(key::detailId).toString()),
      pointName(object.value(key::pointName).toString()),
      monitorCount(object.value(key::monitorCount).toInt(0)), monitorTime(timeOf(object, key::monitorTime)),
      totalValue(object.value(key::totalValue).toDouble(0.0)), depth(object.value(key::depth).toString())
{
}
