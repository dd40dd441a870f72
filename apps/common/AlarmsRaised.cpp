#include "AlarmsRaised.h"

#include "PagedReading.h"
#include "RecordChecks.h"

namespace alarms {

QList<RKAlarm> readPage(ServiceSession& session, const RKAlarmCondition& condition, int skip, int limit)
{
    const QString purpose = QStringLiteral("list alarms");
    QList<RKAlarm> page;
    session.ask(purpose,
                [&] { return session.projectData().getAlarmRangeData(condition, skip, limit, page); });
    requireIdentifiers(page, purpose, QStringLiteral("alarms"));
    return page;
}

int readCount(ServiceSession& session, const RKAlarmCondition& condition)
{
    int count = 0;
    session.ask(QStringLiteral("count alarms"),
                [&] { return session.projectData().getAlarmRangeCount(condition, count); });
    return count;
}

QList<RKAlarm> readAll(ServiceSession& session, const RKAlarmCondition& condition)
{
    return paging::readAll(
        QStringLiteral("alarms"),
        [&](int skip, int limit) { return readPage(session, condition, skip, limit); },
        [&] { return readCount(session, condition); });
}

QList<RKAlarmDetail> readDetailPage(ServiceSession& session, const RKAlarmDetailCondition& condition,
                                    int skip, int limit)
{
    const QString purpose = QStringLiteral("list the details of alarm %1").arg(condition.alarmManId);
    QList<RKAlarmDetail> page;
    session.ask(purpose,
                [&] { return session.data().getAlarmDetailRangeData(condition, skip, limit, page); });
    requireIdentifiers(page, purpose, QStringLiteral("alarms"));
    return page;
}

int readDetailCount(ServiceSession& session, const RKAlarmDetailCondition& condition)
{
    int count = 0;
    session.ask(QStringLiteral("count the details of alarm %1").arg(condition.alarmManId),
                [&] { return session.data().getAlarmDetailRangeCount(condition, count); });
    return count;
}

QList<RKAlarmDetail> readAllDetails(ServiceSession& session, const RKAlarmDetailCondition& condition)
{
    return paging::readAll(
        QStringLiteral("details"),
        [&](int skip, int limit) { return readDetailPage(session, condition, skip, limit); },
        [&] { return readDetailCount(session, condition); });
}

} // namespace alarms
