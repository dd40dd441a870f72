#include "domain/AlarmDetail.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const AlarmDetail& alarmDetail)
{
    JsonObjectWriter document;
    document.text("_id", alarmDetail.id)
        .text("alarmManId", alarmDetail.alarm)
        .text("pointName", alarmDetail.point)
        .text("totalVar", alarmDetail.total)
        .text("dayVar", alarmDetail.daily)
        .number("totalBeyound", alarmDetail.totalExcess)
        .number("dayBeyound", alarmDetail.dailyExcess)
        .boolean("isThreeVar", alarmDetail.hasDepths)
        .boolean("isInclinometer", alarmDetail.isInclinometer)
        .integer("monitorCount", alarmDetail.count)
        .text("monitorTime", alarmDetail.time)
        .text("depth", alarmDetail.depth)
        .text("alarmTime", alarmDetail.raisedAt)
        .number("value", alarmDetail.value)
        .number("reference", alarmDetail.reference)
        .text("unit", alarmDetail.unit)
        .text("groupId", alarmDetail.group)
        .text("groupName", alarmDetail.groupName)
        .number("totalLimit", alarmDetail.totalLimit)
        .number("dayLimit", alarmDetail.dayLimit)
        .text("totalVarSide", toText(alarmDetail.totalSide))
        .text("dayVarSide", toText(alarmDetail.daySide))
        .integer("dayVarType", alarmDetail.dayVariationType);
    return appendStamp(document, alarmDetail.stamp).finish();
}

template <>
AlarmDetail fromDocument<AlarmDetail>(std::string_view text)
{
    const DocumentReader document("alarm detail", text);
    AlarmDetail alarmDetail;
    alarmDetail.id = document.text("_id");
    alarmDetail.alarm = document.text("alarmManId");
    alarmDetail.point = document.text("pointName");
    alarmDetail.total = document.text("totalVar");
    alarmDetail.daily = document.text("dayVar");
    alarmDetail.totalExcess = document.number("totalBeyound");
    alarmDetail.dailyExcess = document.number("dayBeyound");
    alarmDetail.hasDepths = document.boolean("isThreeVar");
    alarmDetail.isInclinometer = document.boolean("isInclinometer");
    alarmDetail.count = document.integer("monitorCount");
    alarmDetail.time = document.text("monitorTime");
    alarmDetail.depth = document.text("depth");
    alarmDetail.raisedAt = document.text("alarmTime");
    alarmDetail.value = document.number("value");
    alarmDetail.reference = document.number("reference");
    alarmDetail.unit = document.text("unit");
    alarmDetail.group = document.text("groupId");
    alarmDetail.groupName = document.text("groupName");
    alarmDetail.totalLimit = document.number("totalLimit");
    alarmDetail.dayLimit = document.number("dayLimit");
    alarmDetail.totalSide = document.limitSide("totalVarSide");
    alarmDetail.daySide = document.limitSide("dayVarSide");
    alarmDetail.dayVariationType = document.smallInteger("dayVarType");
    alarmDetail.stamp = document.stamp();
    return alarmDetail;
}

} // namespace monitorservice
