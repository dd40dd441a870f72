#pragma once

#include <QDateTime>
#include <QString>

class QJsonObject;

// The constructors from a reply object are the library's own: applications get these records filled.

/// One alarm that a delivery raised for a monitoring. Only ever read.
struct RKAlarm
{
    RKAlarm() = default;
    explicit RKAlarm(const QJsonObject& object);

    QString id;
    /// Identifier of the monitoring.
    QString cellId;
    /// Display name of the monitoring.
    QString cellName;
    QString subCategoryId;
    QDateTime alarmTime;
    /// Number of points in alarm.
    qint32 pointCounts = 0;
};

/// One point of an alarm. Only ever read.
struct RKAlarmDetail
{
    RKAlarmDetail() = default;
    explicit RKAlarmDetail(const QJsonObject& object);

    QString id;
    /// Identifier of the alarm.
    QString alarmManId;
    QString pointName;
    /// Total variation, as the service words it.
    QString totalVar;
    /// Daily variation, as the service words it.
    QString dayVar;
    /// Amount by which the total variation exceeds its limit.
    double totalBeyound = 0.0;
    /// Amount by which the daily variation exceeds its limit.
    double dayBeyound = 0.0;
    /// The point has values per depth (RKMonitoringData::getAlarmThreeByDetailId).
    bool isThreeVar = false;
    bool isInclinometer = false;
    /// Count of the reading at which the alarm arose.
    qint32 monitorCount = 0;
    /// Time of that reading.
    QDateTime monitorTime;
    /// Depth concerned, as text.
    QString depth;
    QDateTime alarmTime;
    QDateTime updatedAt;
    QString updatedBy;
    QDateTime createdAt;
    QString createdBy;
};

/// The value of an alarm detail's point at one depth. Only ever read.
struct AlarmThree
{
    AlarmThree() = default;
    explicit AlarmThree(const QJsonObject& object);

    QString id;
    /// Identifier of the alarm detail.
    QString detailId;
    QString pointName;
    /// Count of the reading.
    qint32 monitorCount = 0;
    /// Time of the reading.
    QDateTime monitorTime;
    double totalValue = 0.0;
    /// The depth, as text.
    QString depth;
};
