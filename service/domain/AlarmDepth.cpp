#include "domain/AlarmDepth.h"

#include "domain/DocumentReader.h"
#include "json/JsonText.h"

namespace monitorservice {

std::string toDocument(const AlarmDepth& alarmDepth)
{
    JsonObjectWriter document;
    document.text("_id", alarmDepth.id)
        .text("detailId", alarmDepth.detail)
        .text("pointName", alarmDepth.point)
        .integer("monitorCount", alarmDepth.count)
        .text("monitorTime", alarmDepth.time)
        .number("totalValue", alarmDepth.total)
        .text("depth", alarmDepth.depth);
    return document.finish();
}

template <>
AlarmDepth fromDocument<AlarmDepth>(std::string_view text)
{
    const DocumentReader document("alarm depth", text);
    AlarmDepth alarmDepth;
    alarmDepth.id = document.text("_id");
    alarmDepth.detail = document.text("detailId");
    alarmDepth.point = document.text("pointName");
    alarmDepth.count = document.integer("monitorCount");
    alarmDepth.time = document.text("monitorTime");
    alarmDepth.total = document.number("totalValue");
    alarmDepth.depth = document.text("depth");
    return alarmDepth;
}

} // namespace monitorservice
