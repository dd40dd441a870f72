#pragma once

#include "RequestFailure.h"
#include "extensions/LimitSide.h"

#include <QList>
#include <QString>

/// Why an alarm detail (RKAlarmDetail) is there: what was measured, and whose limits it is beyond. Values are
/// in `unit`.
struct AlarmReason
{
    QString id; ///< of the alarm detail
    QString pointName;
    double value = 0.0;     ///< the reading
    double reference = 0.0; ///< what its variations are counted from
    QString unit;           ///< empty when the sub-category has none
    QString groupId;        ///< of the group with these limits; it may be gone
    QString groupName;
    double totalLimit = 0.0; ///< 0: no limit
    double dayLimit = 0.0;   ///< 0: no limit; counts as `dayVarType` says
    LimitSide totalSide = LimitSide::Both;
    LimitSide daySide = LimitSide::Both;
    qint32 dayVarType = 0; ///< daily::inUnits or daily::inPercent
};

namespace extensions {

/// GET alarmManages/{id}/alarmDetails, page by page.
QList<AlarmReason> readAlarmReasons(const RequestContext& context, const QString& alarmId);

} // namespace extensions
