#pragma once

#include "time/DayPeriod.h"

namespace monitorservice::test {

/// The day of UTC that the instant lies in.
inline DayPeriod utcDayOf(Instant instant)
{
    constexpr Instant length = 24LL * 3600 * 1000;
    const std::int64_t day = instant / length - (instant % length < 0 ? 1 : 0);
    return {day, day * length, (day + 1) * length};
}

} // namespace monitorservice::test
