#pragma once

#include "domain/MonitoredQuantity.h"
#include "domain/Stamp.h"
#include "store/Store.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace monitorservice {

/// What one delivery brought of one quantity.
struct DeliveryShare
{
    std::size_t rows = 0;            ///< samples delivered
    std::int64_t inserted = 0;       ///< samples that were not held before
    std::int64_t corrected = 0;      ///< samples that were held with another value or flag
    std::string fileId;              ///< may be empty
    bool changed = false;            ///< anything is different from before
    std::optional<Instant> lastTime; ///< of the latest sample of the points delivered
    std::string lastDate;            ///< the same as text; empty when there is none
};

/// Notes a delivery that has changed something: in the data manage of the quantity, which is made when there
/// is none, and by one more entry of its history.
void recordDelivery(Session& session, const MonitoredQuantity& quantity, const DeliveryShare& share,
                    const Author& author);

} // namespace monitorservice
