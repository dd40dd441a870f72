#pragma once

#include "RKTimePeriod.h"

#include <QString>
#include <QStringList>

// What a query asks for. A member that is empty, or switched off, restricts nothing; the members that are
// set must all hold. Nothing is validated here: a bad pattern or an impossible period is the service's to
// refuse.

/// Which monitorings; the period restricts their creation time.
struct RKMonitoringCondition : RKTimePeriod
{
    /// A pattern (regular expression, case ignored) that the name contains.
    QString name;
    /// The name itself, letter for letter; overrides `name`.
    QString exactName;
    /// Identifier of the model that the monitoring is linked to.
    QString modelId;
};

/// Which alarms; the period restricts their creation time.
struct RKAlarmCondition : RKTimePeriod
{
    /// A pattern (regular expression, case ignored) that the name of the alarm's monitoring contains.
    QString name;
    /// True: `cellIds` is ignored.
    bool isAllCell = true;
    /// Identifiers of monitorings.
    QStringList cellIds;
    /// True: `categories` and `subCategories` are ignored.
    bool isAllCategory = true;
    QStringList categories;
    QStringList subCategories;
};

/// Which details of one alarm; the period restricts the time of the measurement.
struct RKAlarmDetailCondition : RKTimePeriod
{
    /// A pattern (regular expression, case ignored) that the point's name contains.
    QString pointName;
    /// Identifier of the alarm whose details are asked for; goes into the path of the request.
    QString alarmManId;
};

/// Which data manages; the period restricts their creation time.
struct RKDataManageCondition : RKTimePeriod
{
    /// A pattern (regular expression, case ignored) that the category contains.
    QString category;
    /// Identifier of the monitoring.
    QString cellId;
};

/// Which deliveries of one data manage.
struct RKHistoryDataCondition : RKTimePeriod
{
    /// The caller's own note; never read by the library.
    QString remark;
    /// What the period restricts: 2 the time of the last change, any other value the time of the latest data.
    qint32 timeType = 0;
    /// Identifier of the data manage whose history is asked for; goes into the path of the request.
    QString dataManageId;
};

/// Which point locations and statistics; the period restricts the time of the samples.
struct RKPointLocationCondition : RKTimePeriod
{
    /// The caller's own note; never read by the library.
    QString remark;
    /// Identifier of the monitoring; also the key of the point location cache.
    QString cellId;
    /// Names of points; an update replaces the links of the cached points of these names.
    QStringList names;
    /// True: only samples whose time flag is "A".
    bool onlyTimeFlagA = false;
};
