#pragma once

#include "analysis/DeliveryTargets.h"
#include "analysis/PointMerge.h"
#include "store/Store.h"

#include <cstdint>
#include <string>
#include <vector>

namespace monitorservice {

/// A point whose latest sample a delivery has brought.
struct EvaluatedPoint
{
    std::int64_t key = 0;
    std::string name;
    std::string depth;
    double initialValue = 0;
};

/// Compares points of one target with the limits of the groups that list them. When at least one is over a limit, an
/// alarm is raised with a detail for each point name that is: its depth and group with the greatest variation in
/// proportion to the limit. A point measured at several depths has the total variation of each of them besides.
void raiseAlarm(Session& session, const DeliveryTarget& target, const std::vector<EvaluatedPoint>& points,
                const Author& author);

} // namespace monitorservice
