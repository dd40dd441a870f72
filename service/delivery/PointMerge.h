#pragma once

#include "delivery/Delivery.h"
#include "delivery/DeliveryTargets.h"
#include "domain/PointLocation.h"
#include "domain/Stamp.h"
#include "store/Store.h"
#include "time/DayRange.h"

#include <cstdint>
#include <optional>
#include <string>

namespace monitorservice {

/// What came of one delivered point.
struct MergedPoint
{
    std::int64_t key = 0;
    PointLocation location;
    std::optional<Instant> lastTime; ///< of its latest sample; nothing when it has none
    std::int64_t inserted = 0;       ///< samples that it did not have
    bool changed = false;            ///< anything is different from before
    /// From the first to the last day on which samples were added behind those held before, or the day of the
    /// latest sample when that was corrected; nothing when only older samples came.
    std::optional<DayRange> newDays;
};

/// Brings a delivered point into the store: creates it when it is new, takes over its description, adds the
/// samples that it does not have and corrects those that it has with another value or flag, and keeps its
/// days. A repeated delivery changes nothing. Throws DeliveryRefusal when links that are there would change
/// and the sender may not edit.
MergedPoint mergePoint(Session& session, const DeliveryTarget& target, const Delivery& delivery,
                       const DeliveredPoint& point, const Author& author);

} // namespace monitorservice
