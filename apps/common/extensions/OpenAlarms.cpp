#include "extensions/OpenAlarms.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

struct OpenAlarm
{
    QString id;
};

OpenAlarm openAlarmOf(const AnswerObject& object)
{
    return {object.identifier("_id")};
}

} // namespace

QSet<QString> readOpenAlarms(const RequestContext& context, const QString& project)
{
    const QList<OpenAlarm> alarms = readAll(
        context, {resourcePath("projects/%1/alarmManages", project), {}, {}, QStringLiteral("open=true")},
        QStringLiteral("open alarms"), openAlarmOf);
    QSet<QString> identifiers;
    for (const OpenAlarm& alarm : alarms) {
        identifiers.insert(alarm.id);
    }
    return identifiers;
}

} // namespace extensions
