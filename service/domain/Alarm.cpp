#include "domain/Alarm.h"

#include "domain/DocumentReader.h"
#include "domain/DocumentWriter.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const Alarm& alarm)
{
    JsonObjectWriter document;
    document.text("_id", alarm.id)
        .text("projectId", alarm.project)
        .text("cellId", alarm.cell)
        .text("cellName", alarm.cellName)
        .text("subCategoryId", alarm.subCategory)
        .text("alarmTime", alarm.raisedAt)
        .text("alarmDay", alarm.day)
        .integer("pointCounts", alarm.pointCount);
    return appendStamp(document, alarm.stamp).finish();
}

template <>
Alarm fromDocument<Alarm>(std::string_view text)
{
    const DocumentReader document("alarm", text);
    Alarm alarm;
    alarm.id = document.text("_id");
    alarm.project = document.text("projectId");
    alarm.cell = document.text("cellId");
    alarm.cellName = document.text("cellName");
    alarm.subCategory = document.text("subCategoryId");
    alarm.raisedAt = document.text("alarmTime");
    alarm.day = document.text("alarmDay");
    alarm.pointCount = document.integer("pointCounts");
    alarm.stamp = document.stamp();
    return alarm;
}

} // namespace monitorservice
