#pragma once

#include "RKConditions.h"
#include "RKPointLocation.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

// One request each; the result is the request's success. Outputs are filled from the reply either way.

namespace rk {

/// POST pointLocations with an array of points. The reply is not read.
bool createPointLocations(const QList<RKPointLocation>& points);

/// POST pointLocations with an array of arrays of points. `message` becomes the service's "message" after an
/// internal server error (500), "Connection closed prematurely" after an unknown server error, and is left
/// alone otherwise.
bool createPointLocations(const QList<QList<RKPointLocation>>& batches, QString& message);

/// GET projects/{p}/pointLocations?where=…&expand=true; appends.
bool fetchPointLocations(const RKPointLocationCondition& condition, QList<RKPointLocation>& points);

/// GET projects/{p}/pointLocations?expand=true&where={"uuid":uuid}; appends.
bool fetchPointLocationsByGuid(const QString& uuid, QList<RKPointLocation>& points);

/// GET pointLocations/{pointId}.
bool fetchPointLocation(const QString& pointId, RKPointLocation& point);

/// GET projects/{p}/pointLocations?where=…&expand=true&order=-data.time&limit=1&skip=0. An empty answer
/// leaves `point` alone.
bool fetchNewestPointLocation(const RKPointLocationCondition& condition, RKPointLocation& point);

/// PUT pointLocations?where=… with the links.
bool updatePointLocationLinks(const RKPointLocationCondition& condition,
                              const QMap<QString, QStringList>& links);

} // namespace rk
