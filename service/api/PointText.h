#pragma once

#include "store/PointSelection.h"

#include <string>

namespace monitorservice {

/// The points of the selection's page as JSON objects with commas between them, behind what is there already:
/// of each its document with its "category", its relations as "entity", and its chosen samples as "data".
/// Throws ApiError 413 when the text grows larger than an answer may be.
std::string pointTexts(PointSelection& selection, std::string begin = {});

} // namespace monitorservice
