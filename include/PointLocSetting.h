#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

/// A group of points of one monitoring with the variation thresholds that apply to it.
struct PointLocSetting
{
    /// The service's identifier; empty until created.
    QString id;
    /// Project of the group; read, never written (a group is always written into the current project).
    QString projectId;
    /// Identifier of the monitoring; key of the group cache.
    QString cellId;
    QString subCategoryId;
    QString groupName;
    /// Names of the points that form the group.
    QStringList groupPoint;
    /// Kind of the daily-variation rule, as the service defines it.
    qint32 dayVarType = 0;
    /// Threshold of the daily variation; 0: no limit.
    double dayVarValue = 0.0;
    /// Threshold of the total (cumulative) variation; 0: no limit.
    double totalVar = 0.0;
    /// View port that the group is shown in; read, never written.
    QString viewPortId;
    // Kept by the service, never sent.
    QDateTime createdAt;
    QString createdBy;
    QDateTime updatedAt;
    QString updatedBy;
};
