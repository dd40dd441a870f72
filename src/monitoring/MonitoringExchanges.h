#pragma once

#include "RKConditions.h"
#include "RKMonitoring.h"

#include <QList>
#include <QPair>
#include <QString>

// One request each; the result is the request's success. Outputs are filled from the reply either way.

namespace rk {

/// POST cells; `monitoring` becomes the service's view of it.
bool createMonitoring(RKMonitoring& monitoring);

/// PUT cells/{id} with the members in which `monitoring` differs from `cached`, which must not be an entry
/// of a cache that events could change. No difference: nothing is sent, `monitoring` becomes `cached`, true.
bool updateMonitoring(const RKMonitoring& cached, RKMonitoring& monitoring);

/// DELETE cells/{id}.
bool deleteMonitoring(const QString& id);

/// GET cells/{id}.
bool fetchMonitoring(const QString& id, RKMonitoring& monitoring);

/// GET projects/{p}/cells?where={"links.rId":modelId}; appends.
bool fetchMonitoringsOfModel(const QString& modelId, QList<RKMonitoring>& monitorings);

/// GET projects/{p}/cells?where=…&only_count=true.
bool countMonitorings(const RKMonitoringCondition& condition, int& count);

/// GET projects/{p}/cells?where=…&skip=…&limit=…; appends.
bool fetchMonitorings(const RKMonitoringCondition& condition, int skip, int limit,
                      QList<RKMonitoring>& monitorings);

/// GET projects/{p}/cells; appends identifier and name of each.
bool fetchMonitoringNames(QList<QPair<QString, QString>>& cells);

} // namespace rk
