#pragma once

#include <cstdint>

namespace monitorservice {

/// Days of a time zone as LocalDays numbers them, the first and the last one.
struct DayRange
{
    std::int64_t first = 0;
    std::int64_t last = 0;
};

} // namespace monitorservice
