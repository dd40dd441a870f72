#pragma once

#include <cstdint>
#include <optional>

namespace monitorservice {

/// How a group limits the daily variation.
enum class DayVariationKind
{
    Unit = 0,   ///< in the unit of the values
    Percent = 1 ///< in percent of the initial value's amount
};

/// The limits of a group; 0 is no limit.
struct Limits
{
    DayVariationKind dayKind = DayVariationKind::Unit;
    double day = 0;
    double total = 0;
};

/// What the variations of a point follow from.
struct PointReading
{
    /// The last value of the day that was measured before the latest one.
    struct PreviousDay
    {
        double value = 0;
        std::int64_t daysBefore = 1; ///< calendar days between the two
    };

    double initial = 0;
    double latest = 0;
    std::optional<PreviousDay> previous;
};

/// The variations of a point, and by how much they go beyond their limits: 0 when they do not.
struct Variation
{
    double total = 0; ///< latest value - initial value
    std::optional<double>
        day; ///< (latest value - previous value) / days between, as the group counts it; nothing when
             ///< there is no day before, or when the initial value is 0 and percent are asked for
    double totalBeyond = 0;
    double dayBeyond = 0;
    /// The greatest of the variations in proportion to its limit; above 1 when one is over. Tells which of
    /// several depths or groups is the worst.
    double severity = 0;

    bool isOver() const { return totalBeyond > 0 || dayBeyond > 0; }
};

/// Every result is finite: what no double can hold is the largest one.
Variation variationOf(const PointReading& reading, const Limits& limits);

} // namespace monitorservice
