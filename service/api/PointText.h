#pragma once

#include "store/PointSelection.h"

#include <string>

namespace monitorservice {

/// Appends the point as a JSON object: its document with its "category", its relations as "entity", and its
/// chosen samples as "data". Throws ApiError 413 when `out` grows larger than an answer may be.
void appendPoint(std::string& out, PointSelection& selection, const FoundPoint& point);

} // namespace monitorservice
