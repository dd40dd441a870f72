#pragma once

#include <cstdint>
#include <string>

namespace monitorservice {

/// A document as the service answers it, and what access to it is decided by.
struct StoredDocument
{
    std::string id;
    std::string project;
    std::string category;
    std::string text; ///< one JSON object
};

/// A point location as the samples know it.
struct StoredPoint
{
    std::int64_t key = 0; ///< what its samples are found by; never leaves the service
    std::string id;
    std::string document; ///< one JSON object, without the samples
};

/// A point location with the numbers of deliveries.
struct DeliveredTo
{
    StoredPoint point;
    std::int64_t made = 0;    ///< of the one that has made it
    std::int64_t changed = 0; ///< of the latest one that has changed it
};

} // namespace monitorservice
