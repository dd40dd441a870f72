#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace monitorservice {

/// What became of what was held when something of it was taken away.
struct Withdrawal
{
    std::int64_t removed = 0;        ///< samples
    std::int64_t restored = 0;       ///< samples that have the value of before again
    std::int64_t removedPoints = 0;  ///< point locations
    std::vector<std::string> alarms; ///< identifiers of those that changed or went
};

} // namespace monitorservice
