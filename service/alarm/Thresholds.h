#pragma once

#include "domain/LimitSide.h"

#include <cstdint>
#include <optional>

namespace monitorservice {

/// How a group limits the daily variation.
enum class DayVariationKind
{
    Unit = 0,   ///< in the unit of the values
    Percent = 1 ///< in percent of the reference's amount
};

/// The limits of a group; 0 is no limit.
struct Limits
{
    DayVariationKind dayKind = DayVariationKind::Unit;
    double day = 0;
    double total = 0;
    LimitSide daySide = LimitSide::Both;
    LimitSide totalSide = LimitSide::Both;
};

/// What the variations of a reading follow from.
struct JudgedValue
{
    /// The last value of the day that was measured before that of the reading.
    struct PreviousDay
    {
        double value = 0;
        std::int64_t daysBefore = 1; ///< calendar days between the two
    };

    double reference = 0; ///< the point's initial value, or its earliest reading when it has none
    double value = 0;
    std::optional<PreviousDay> previous;
};

/// The variations of a reading, and by how much they pass their limits: 0 when they do not.
struct Variation
{
    double total = 0; ///< value - reference; this and the others have at most 12 significant digits
    /// (value - previous value) / days between, as the group counts it; nothing when there is no day before,
    /// or when the reference is 0 and percent are asked for.
    std::optional<double> daily;
    double totalExcess = 0;
    double dailyExcess = 0; ///< as the group counts it
};

/// Whether the reading passes a limit: the amount of a variation is greater than its limit by more than 1e-9
/// of the larger of limit and value. What binary fractions add to 100.3 - 100 is not beyond 0.3.
bool isOverLimit(const JudgedValue& judged, const Limits& limits);

/// Limits are passed as isOverLimit() says. Every result is finite: what no double can hold is the largest
/// one.
Variation variationOf(const JudgedValue& judged, const Limits& limits);

/// An amount of the daily variation in the unit of the values, whichever way the group counts it.
double inUnitOfValues(double daily, DayVariationKind kind, double reference);

} // namespace monitorservice
