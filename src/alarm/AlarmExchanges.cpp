#include "alarm/AlarmExchanges.h"

#include "frame/RequestFrame.h"
#include "query/WhereBuilder.h"

namespace rk {

namespace {

template <typename Record>
void construct(const QJsonObject& object, Record& record)
{
    record = Record(object);
}

} // namespace

bool countAlarms(const RKAlarmCondition& condition, int& count)
{
    const QString url = projectUrl("projects/%1/alarmManages?where=%2&only_count=true");
    return readCount(url.arg(buildWhere(condition)), count);
}

bool fetchAlarms(const RKAlarmCondition& condition, int skip, int limit, QList<RKAlarm>& alarms)
{
    const QString url = projectUrl("projects/%1/alarmManages?where=%2&skip=%3&limit=%4");
    return appendRecords(pagedUrl(url.arg(buildWhere(condition)), skip, limit), alarms, construct<RKAlarm>);
}

bool countAlarmDetails(const RKAlarmDetailCondition& condition, int& count)
{
    const QString url = resourceUrl("alarmManages/%1/alarmDetails?where=%2&only_count=true");
    return readCount(url.arg(condition.alarmManId).arg(buildWhere(condition)), count);
}

bool fetchAlarmDetails(const RKAlarmDetailCondition& condition, int skip, int limit,
                       QList<RKAlarmDetail>& details)
{
    const QString url = resourceUrl("alarmManages/%1/alarmDetails?where=%2&skip=%3&limit=%4")
                            .arg(condition.alarmManId)
                            .arg(buildWhere(condition));
    return appendRecords(pagedUrl(url, skip, limit), details, construct<RKAlarmDetail>);
}

bool fetchAlarmDepths(const QString& detailId, const QString& depth, QList<AlarmThree>& depths)
{
    QString url = resourceUrl("alarmDetails/%1/threeDetails").arg(detailId);
    if (!depth.isEmpty()) {
        url = (url + QLatin1String("?where={\"depth\":\"%1\"}")).arg(depth);
    }
    return appendRecords(url, depths, construct<AlarmThree>);
}

} // namespace rk
