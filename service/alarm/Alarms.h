#pragma once

#include "domain/MonitoredQuantity.h"
#include "domain/Stamp.h"
#include "store/Store.h"
#include "time/DayRange.h"

#include <cstdint>
#include <string>
#include <vector>

namespace monitorservice {

/// A point that a delivery has brought new samples of.
struct EvaluatedPoint
{
    std::int64_t key = 0;
    std::string name;
    std::string depth;
    double initialValue = 0;
    DayRange newDays;
};

/// Compares each new day of the points of one quantity with the limits of the groups that list them, so that
/// nothing between the ends of a delivery of many days is missed. When at least one point is over a limit, an
/// alarm is raised with a detail for each point name that is: its day, depth and group with the greatest
/// variation in proportion to the limit. A point measured at several depths has the total variation of each
/// of them at that time besides.
void raiseAlarm(Session& session, const MonitoredQuantity& quantity,
                const std::vector<EvaluatedPoint>& points, const Author& author);

} // namespace monitorservice
