#pragma once

#include "RKPointLocation.h"

#include <QCborMap>
#include <QJsonObject>

// The two directions are not symmetric: a point's relations are read from "entity" and written as "links",
// and each direction has members that the other ignores.

namespace rk {

/// Fills `sample` from an element of a point's "data". A QCborMap shares the memory of the QJsonObject that
/// it is made from, but finds one of a few keys in half the time.
void sampleFromJson(const QCborMap& object, RKPointLocationData& sample);
QJsonObject sampleToJson(const RKPointLocationData& sample);

/// Fills `record` from a service object: missing members are emptied, but samples are appended to `data`, and
/// `subCategoryId`, `alias` and `fileId` are not read. Pass a fresh record.
void pointLocationFromJson(const QJsonObject& object, RKPointLocation& record);

/// Inserts the members of a create body into `body`. Identifier, category and the service's own members are
/// not written.
void pointLocationToJson(const RKPointLocation& record, QJsonObject& body);

/// An entry of a statistic from an element of a day's "data".
RKPointLocationChartData chartEntryFromJson(const QJsonObject& object);

} // namespace rk
