#include "extensions/AlarmReasons.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

AlarmReason reasonOf(const AnswerObject& object)
{
    AlarmReason reason;
    reason.id = object.identifier("_id");
    reason.pointName = object.text("pointName");
    reason.value = object.number("value");
    reason.reference = object.number("reference");
    reason.unit = object.text("unit");
    reason.groupId = object.text("groupId");
    reason.groupName = object.text("groupName");
    reason.totalLimit = object.number("totalLimit");
    reason.dayLimit = object.number("dayLimit");
    reason.totalSide = limitSideIn(object, "totalVarSide");
    reason.daySide = limitSideIn(object, "dayVarSide");
    reason.dayVarType = object.smallInteger("dayVarType");
    return reason;
}

} // namespace

QList<AlarmReason> readAlarmReasons(const RequestContext& context, const QString& alarmId)
{
    return readAll(context, {resourcePath("alarmManages/%1/alarmDetails", alarmId), {}, {}, {}},
                   QStringLiteral("alarm details"), reasonOf);
}

} // namespace extensions
