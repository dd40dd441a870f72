#pragma once

#include <ctime>
#include <string>

namespace monitorservice {

/// The time as a Date field writes it: "Sun, 06 Nov 1994 08:49:37 GMT" (RFC 9110, section 5.6.7), whatever
/// the locale.
std::string httpDate(std::time_t time);

} // namespace monitorservice
