#pragma once

#include "ServiceSession.h"

#include <QList>
#include <QString>
#include <RKAlarm.h>
#include <RKConditions.h>

/// The alarms that the readings of a project raised.
namespace alarms {

/// At most `limit` of them from the one at `skip` on, newest first.
QList<RKAlarm> readPage(ServiceSession& session, const RKAlarmCondition& condition, int skip, int limit);

int readCount(ServiceSession& session, const RKAlarmCondition& condition);

/// All of them. Throws a Failure when they kept changing.
QList<RKAlarm> readAll(ServiceSession& session, const RKAlarmCondition& condition);

/// The details of one alarm, likewise.
QList<RKAlarmDetail> readDetailPage(ServiceSession& session, const RKAlarmDetailCondition& condition,
                                    int skip, int limit);

int readDetailCount(ServiceSession& session, const RKAlarmDetailCondition& condition);

QList<RKAlarmDetail> readAllDetails(ServiceSession& session, const RKAlarmDetailCondition& condition);

} // namespace alarms
