#pragma once

#include "time/Instant.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// Digits of an identifier: 11 for its millisecond, 3 for the lane of the session that gave it, 10 that count
/// within both, all hexadecimal and lower-case. Identifiers of different lanes are different.
constexpr std::size_t identifierLength = 24;

/// The identifier after `previous` (empty: none yet) at the time `now` in a lane, 0 to 4095. It is greater
/// than `previous` whatever that one's lane was, whatever the clock does: when the clock stands still or goes
/// back, the count within the last millisecond goes on.
std::string identifierAfter(std::string_view previous, Instant now, std::uint16_t lane);

} // namespace monitorservice
