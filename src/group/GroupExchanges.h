#pragma once

#include "PointLocSetting.h"

#include <QList>
#include <QString>

// One request each; the result is the request's success. Outputs are filled from the reply either way.

namespace rk {

/// POST groupSettings; `group` becomes the service's view of it.
bool createGroup(PointLocSetting& group);

/// PUT groupSettings/{id of after} with the members in which `after` differs from `before`. No difference:
/// nothing is sent, `after` becomes `before`, true.
bool updateGroup(const PointLocSetting& before, PointLocSetting& after);

/// DELETE groupSettings/{id}; `cellId` becomes the monitoring of the deleted group, as the reply gives it.
bool deleteGroup(const QString& id, QString& cellId);

/// GET projects/{p}/groupSettings?where={"category":category}; appends.
bool fetchGroupsOfCategory(const QString& category, QList<PointLocSetting>& groups);

/// GET cells/{cellId}/groupSettings; appends.
bool fetchGroupsOfCell(const QString& cellId, QList<PointLocSetting>& groups);

} // namespace rk
