#pragma once

#include "delivery/Delivery.h"

#include <string_view>

namespace monitorservice {

/// Reads the body of a delivery: an array of points, or an array of arrays of points.
///
/// A point is an object with "cellId", "subCategoryId" and "name" (texts, the name not empty); it may have
/// "projectId" and "fileId" (text or null), "alias", "offsetDirection" and "depth" (texts), "dataType"
/// (32-bit), "initialValue" (number), "links" (array of {"type", "rId"}) and "data". "insertCount",
/// "lastCount" and "lastDate" are checked and left: they follow from the samples. A sample of "data" is
/// {"count", "time", "value", "timeFlag"}: 32-bit, a time as parseTimestamp() reads it, a finite number, and
/// a text that may be missing.
///
/// The body is read in pieces of bounded size; besides the samples themselves, 32 bytes each, little is kept.
/// Throws DeliveryRefusal for everything else, an unknown or repeated member, and one sample with two values.
Delivery parseDelivery(std::string_view body);

/// Whether the body begins like an array of arrays.
bool isNestedDelivery(std::string_view body);

} // namespace monitorservice
