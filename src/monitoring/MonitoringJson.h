#pragma once

#include "RKMonitoring.h"

#include <QJsonObject>

namespace rk {

/// Fills `record` from a service object. Every member that the object lacks is emptied, except `projectId`,
/// which has no JSON form, and `modelId`, which is kept when no link is of type "model".
void monitoringFromJson(const QJsonObject& object, RKMonitoring& record);

/// Inserts the members of a create or update body into `body`. The service's own members are not written;
/// "links" is written only when the record has a model.
void monitoringToJson(const RKMonitoring& record, QJsonObject& body);

} // namespace rk
