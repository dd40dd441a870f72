#pragma once

#include "RKAlarm.h"
#include "RKConditions.h"

#include <QList>
#include <QString>

// One GET each; the result is the request's success. Outputs are filled from the reply either way.

namespace rk {

/// projects/{p}/alarmManages?where=…&only_count=true.
bool countAlarms(const RKAlarmCondition& condition, int& count);

/// projects/{p}/alarmManages?where=…&skip=…&limit=…; appends.
bool fetchAlarms(const RKAlarmCondition& condition, int skip, int limit, QList<RKAlarm>& alarms);

/// alarmManages/{alarm}/alarmDetails?where=…&only_count=true.
bool countAlarmDetails(const RKAlarmDetailCondition& condition, int& count);

/// alarmManages/{alarm}/alarmDetails?where=…&skip=…&limit=…; appends.
bool fetchAlarmDetails(const RKAlarmDetailCondition& condition, int skip, int limit,
                       QList<RKAlarmDetail>& details);

/// alarmDetails/{detail}/threeDetails, and ?where={"depth":"{depth}"} when `depth` is not empty; appends.
/// The depth stands as it is: one with a double quote gives a malformed document, which the service refuses.
bool fetchAlarmDepths(const QString& detailId, const QString& depth, QList<AlarmThree>& depths);

} // namespace rk
