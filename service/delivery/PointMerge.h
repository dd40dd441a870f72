#pragma once

#include "alarm/Excess.h"
#include "delivery/Delivery.h"
#include "delivery/DeliveryRecord.h"
#include "delivery/DeliveryTargets.h"
#include "domain/PointLocation.h"
#include "domain/Stamp.h"
#include "store/Store.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace monitorservice {

/// What came of one delivered point.
struct MergedPoint
{
    std::int64_t key = 0;
    PointLocation location;
    std::optional<Instant> lastTime; ///< of its latest sample; nothing when it has none
    std::int64_t inserted = 0;       ///< samples that it did not have
    std::int64_t corrected = 0;      ///< samples that it had with another value or flag
    bool isNew = false;
    bool changed = false; ///< anything is different from before
    bool initialValueChanged = false;
    bool isAppended = true;               ///< no sample is corrected, none inserted before one that was held
    std::vector<Reading> changedReadings; ///< inserted or corrected, in order, if they were asked for
};

/// What all points of a delivery into one target have in common.
struct Merging
{
    const DeliveryTarget& target;
    const Delivery& delivery;
    const DeliveryMark& mark;
    const Author& author;
};

/// Brings a delivered point into the store: creates it when it is new, takes over its description, adds the
/// samples that it does not have and corrects those that it has with another value or flag, and keeps the
/// audit trail. A repeated delivery changes nothing. Throws DeliveryRefusal when what is there would change -
/// a sample, the initial value behind samples, links - and the sender may not edit.
MergedPoint mergePoint(Session& session, const Merging& merging, const DeliveredPoint& point,
                       bool withReadings);

} // namespace monitorservice
