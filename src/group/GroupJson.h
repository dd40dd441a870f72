#pragma once

#include "PointLocSetting.h"

#include <QJsonObject>

namespace rk {

/// Fills `record` from a service object; every member that the object lacks is emptied.
void groupFromJson(const QJsonObject& object, PointLocSetting& record);

/// Inserts the members of a create or update body into `body`. Identifier, view port and the service's own
/// members are not written; "projectId" is the current project, not the record's.
void groupToJson(const PointLocSetting& record, QJsonObject& body);

} // namespace rk
