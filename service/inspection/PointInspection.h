#pragma once

#include "domain/Sample.h"
#include "store/Session.h"
#include "time/LocalDays.h"

#include <string>
#include <vector>

namespace monitorservice {

/// What is held of one point location.
struct InspectedPoint
{
    std::vector<KeptSample> samples; ///< in the order of time and count
    std::size_t days = 0;            ///< those that have samples
    /// What contradicts the samples, in words: their order, each day's last sample and number, the earliest
    /// and the latest one, the deliveries that inserted them, the samples of the latest of these (which
    /// taking it back relies on), and what the point's document counts. Empty when nothing does.
    std::vector<std::string> flaws;
};

/// Reads all samples of a point; `calendar` is that of its project. Throws StoreError when they cannot be
/// read, and DamagedDocument when the point's document cannot.
InspectedPoint inspectPoint(const Session& session, const DeliveredTo& point, LocalDays& calendar);

} // namespace monitorservice
