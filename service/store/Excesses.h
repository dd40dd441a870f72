#pragma once

#include "store/StoreInterface.h"
#include "time/Instant.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace monitorservice {

/// A reading that is beyond a limit; with its point, the time and the count identify it.
struct ReadingInExcess
{
    Instant time = 0;
    std::int32_t count = 0;
    std::string alarm; ///< in which it stands: that of the day on which it was found
};

/// Which readings of the point locations are beyond a limit. Every member may throw StoreError. A visitor
/// must not call into the session, as with Documents::Visitor.
class Excesses : public StoreInterface
{
public:
    using Visitor = std::function<void(const ReadingInExcess& reading)>;

    /// Those of a point from the first instant to before the second, in the order of time and count.
    virtual void visit(std::int64_t point, Instant from, Instant before, const Visitor& visitor) const = 0;
    /// Those of a point that stand in the alarm, in the same order.
    virtual void visitOfAlarm(std::int64_t point, const std::string& alarm, const Visitor& visitor) const = 0;
    /// The identifiers, rising, of a project's alarms in which the latest reading of a point location stands:
    /// that with the greatest count of those at its latest time.
    virtual std::vector<std::string> openAlarms(const std::string& project) const = 0;
    /// StoreFailure::Conflict when the reading stands in an alarm already, and when there is no such alarm.
    virtual void insert(std::int64_t point, const ReadingInExcess& reading) = 0;
    /// Nothing is changed when the reading stands in no alarm.
    virtual void remove(std::int64_t point, Instant time, std::int32_t count) = 0;
};

} // namespace monitorservice
