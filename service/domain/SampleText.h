#pragma once

#include "domain/Sample.h"

#include <string>

namespace monitorservice {

/// Appends the sample as a JSON object with "count", "time", "value" and "timeFlag"; the time has the offset
/// with which it was delivered.
void appendSample(std::string& out, const Sample& sample);

} // namespace monitorservice
