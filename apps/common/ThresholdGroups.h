#pragma once

#include "ServiceSession.h"

#include <QList>
#include <QString>
#include <RKMonitoring.h>

#include <PointLocSetting.h>

/// The threshold groups of a monitoring.
QList<PointLocSetting> groupsOfMonitoring(ServiceSession& session, const RKMonitoring& monitoring);

/// Those of all monitorings of a category.
QList<PointLocSetting> groupsOfCategory(ServiceSession& session, const QString& category);

/// Those of all monitorings of the project.
QList<PointLocSetting> groupsOfProject(ServiceSession& session);

/// Whether two groups bound the same points in the same way.
bool hasSameLimits(const PointLocSetting& left, const PointLocSetting& right);
