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

/// A point location that a delivery may have changed.
struct DeliveredTo
{
    StoredPoint point;
    bool isMade = false; ///< the delivery has made it
};

} // namespace monitorservice
