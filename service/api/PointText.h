#pragma once

#include "store/PointSelection.h"

#include <string>

namespace monitorservice {

/// The points of the selection's page as JSON objects with commas between them, behind what is there already:
/// of each its document with its "category", its relations as "entity", and its chosen samples as "data".
/// Throws ApiError 413 when the text grows larger than an answer may be.
std::string pointTexts(PointSelection& selection, std::string begin = {});

/// What is told of a point besides its document, in place of all its chosen samples.
struct PointDigest
{
    bool latest = false;   ///< the latest chosen sample as the only one in "data", which is empty otherwise
    bool extremes = false; ///< "minimum" and "maximum" of the last values of its days; null without any
};

/// The same with the digest of each point, and with its "reference": what its variations are counted from,
/// the initial value or else the earliest reading; null when it has neither.
std::string digestTexts(PointSelection& selection, const PointDigest& digest, std::string begin = {});

} // namespace monitorservice
