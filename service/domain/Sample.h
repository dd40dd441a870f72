#pragma once

#include "time/Instant.h"

#include <cstdint>
#include <optional>
#include <string>

namespace monitorservice {

/// One reading of a point; the point, the time and the count identify it.
struct Sample
{
    Instant time = 0;
    std::int32_t count = 0;
    std::optional<int> offsetMinutes; ///< of the time as it was written; nothing: it ended in "Z"
    double value = 0;
    std::string timeFlag;
};

/// A sample, and the number of the delivery that has inserted it.
struct KeptSample
{
    Sample sample;
    std::int64_t delivery = 0;
};

/// The last sample of a day, and how many the day has.
struct DaySummary
{
    std::int64_t day = 0; ///< days since 1970-01-01 in the project's time zone
    Instant time = 0;
    std::int32_t count = 0;
    std::optional<int> offsetMinutes;
    double value = 0;
    std::int64_t samples = 0;
};

} // namespace monitorservice
