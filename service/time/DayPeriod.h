#pragma once

#include "time/Instant.h"

#include <cstdint>

namespace monitorservice {

/// A day of a project's time zone: from the first instant to before the second.
struct DayPeriod
{
    std::int64_t day = 0; ///< days since 1970-01-01
    Instant from = 0;
    Instant before = 0;
};

} // namespace monitorservice
