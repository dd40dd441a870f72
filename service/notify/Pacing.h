#pragma once

#include "store/Outbox.h"

#include <algorithm>
#include <cstdint>

namespace monitorservice {

/// Between two messages to one recipient of one alarm.
constexpr Instant timeBetweenMessages = 10 * 60'000;

/// For so long nobody else sends what a sender has taken; longer than any transfer lasts. After a crash in
/// between, this is how late the message is sent again.
constexpr Instant timeToSend = 2 * 60'000;

/// How long to wait after so many failures, at least one: 10 s, twice as long each time, at most an hour.
inline Instant pauseAfter(std::int64_t failures)
{
    constexpr Instant first = 10'000;
    constexpr std::int64_t mostDoublings = 9; // beyond an hour; more might not fit
    return std::min(first << std::clamp<std::int64_t>(failures - 1, 0, mostDoublings), longestWait);
}

} // namespace monitorservice
