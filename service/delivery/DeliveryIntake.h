#pragma once

#include "delivery/Delivery.h"
#include "delivery/DeliveryTargets.h"
#include "store/Store.h"

#include <string>

namespace monitorservice {

/// What came of a delivery.
struct IntakeResult
{
    /// JSON array: what names each point delivered and what the service counts of it, in the order of the
    /// delivery.
    std::string points;
    bool changed = false; ///< something was written; otherwise everything was there already
};

/// Takes a delivery into the store: points with their samples and days, the data manage and its history, and
/// alarms. Throws DeliveryRefusal; the session must not be committed then. What was not changed has left no
/// trace.
IntakeResult takeIn(Session& session, const Delivery& delivery, const MayDo& mayDo, const std::string& owner);

} // namespace monitorservice
