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
        .text("alarmTime", alarmDetail.raisedAt);
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
    alarmDetail.stamp = document.stamp();
    return alarmDetail;
}

} // namespace monitorservice
