#pragma once

#include <string>

namespace monitorservice {

/// Whether the system's time zone database has a zone of this name.
bool isTimeZone(const std::string& name);

} // namespace monitorservice
