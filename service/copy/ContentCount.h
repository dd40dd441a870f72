#pragma once

#include "domain/DocumentKind.h"

#include <cstdint>
#include <string>

namespace monitorservice {

/// How much of what there is.
struct ContentCount
{
    std::uint64_t projects = 0;
    std::uint64_t monitorings = 0;
    std::uint64_t points = 0;
    std::uint64_t samples = 0;
    std::uint64_t deliveries = 0;
    std::uint64_t alarms = 0;
    std::uint64_t entries = 0; ///< of the audit trail
    std::uint64_t tokens = 0;

    ContentCount& operator+=(const ContentCount& other);
    /// Counts a document, if documents of its kind are counted.
    void add(DocumentKind kind);
};

/// Such as "1 monitoring, 200 points, 1000000 samples"; what there is none of is left out.
std::string toText(const ContentCount& count);

} // namespace monitorservice
