#pragma once

#include <string>
#include <vector>

namespace monitorservice {

/// Whether the system's time zone database has a zone of this name.
bool isTimeZone(const std::string& name);

/// The names of all zones that the system's time zone database has.
std::vector<std::string> timeZoneNames();

} // namespace monitorservice
