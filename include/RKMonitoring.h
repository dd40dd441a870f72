#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

/// One monitoring (the service's "cell"): the unit that point locations, groups, data manages and alarms
/// belong to.
struct RKMonitoring
{
    /// The service's identifier, 24 hexadecimal digits; empty until created.
    QString id;
    /// The caller's own note of a project; copied with the record, never read or written by the library
    /// (a monitoring is always written into the current project).
    QString projectId;
    QString name;
    /// One of the texts of RKMonitoringData::getMonitoringCategory.
    QString category;
    /// Identifier of the model that the monitoring is linked to; empty: no such link.
    QString modelId;
    /// Recipients of its alarms.
    QStringList alarmTo;
    // Kept by the service, never sent.
    QDateTime createdAt;
    QString createdBy;
    QDateTime updatedAt;
    QString updatedBy;
};
