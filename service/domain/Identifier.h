#pragma once

#include "time/Instant.h"

#include <string>
#include <string_view>

namespace monitorservice {

/// Digits of an identifier: 12 for its millisecond, 12 that count within it, all hexadecimal and lower-case.
constexpr std::size_t identifierLength = 24;

/// The identifier after `previous` (empty: none yet) at the time `now`. It is greater than `previous`
/// whatever the clock does: when the clock stands still or goes back, the count within the last millisecond
/// goes on.
std::string identifierAfter(std::string_view previous, Instant now);

} // namespace monitorservice
