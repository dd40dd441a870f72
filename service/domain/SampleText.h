#pragma once

#include "domain/Sample.h"

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// Appends the sample as a JSON object with "count", "time", "value" and "timeFlag"; the time has the offset
/// with which it was delivered.
void appendSample(std::string& out, const Sample& sample);

/// The samples of an array of such objects. Throws DamagedDocument.
std::vector<Sample> samplesIn(std::string_view array);

} // namespace monitorservice
