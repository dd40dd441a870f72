#pragma once

#include "RKPointLocation.h"

#include <QJsonObject>

// The two directions are not symmetric: a point's relations are read from "entity" and written as "links", and
// each direction has members that the other ignores.

namespace rk {

/// A sample from an element of a point's "data".
RKPointLocationData sampleFromJson(const QJsonObject& object);
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
