#pragma once

#include "time/DayPeriod.h"
#include "time/Instant.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace date {
class time_zone;
}

namespace monitorservice {

/// The system's time zone database has no zone of a name; the message says which.
class UnknownTimeZone : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Calendar days of one time zone, numbered from 1970-01-01 as day 0. For one thread at a time.
class LocalDays
{
public:
    /// Throws UnknownTimeZone when the time zone database has no zone of this name.
    explicit LocalDays(const std::string& timeZone);

    /// The day that the instant lies in: that of the calendar on the wall, unless the clock was put back over
    /// midnight. A day that has begun is not left again.
    DayPeriod periodOf(Instant instant);
    std::int64_t dayOf(Instant instant) { return periodOf(instant).day; }

    /// The first instant of the day: midnight, or where the clock jumps over midnight the end of that jump.
    Instant beginOf(std::int64_t day) const;

    /// How far the clock is ahead of UTC; the part of a minute that clocks before 1900 have is dropped.
    int offsetMinutesAt(Instant instant);

private:
    std::int64_t offsetAt(Instant instant);

    const date::time_zone* m_zone;
    // The clock is this many milliseconds ahead of UTC from the first instant to before the second. Samples
    // come in the order of time, so that one look into the database serves half a year of them.
    std::int64_t m_offset = 0;
    Instant m_from = 0;
    Instant m_before = 0;
    DayPeriod m_period; ///< the one last asked for; contains nothing at first
};

} // namespace monitorservice
