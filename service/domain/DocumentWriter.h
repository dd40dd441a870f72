#pragma once

#include "domain/Stamp.h"
#include "json/JsonText.h"

#include <string>
#include <vector>

namespace monitorservice {

/// The four members of the stamp, behind those written so far.
JsonObjectWriter& appendStamp(JsonObjectWriter& document, const Stamp& stamp);

/// The texts as a JSON array.
std::string textArray(const std::vector<std::string>& texts);

} // namespace monitorservice
