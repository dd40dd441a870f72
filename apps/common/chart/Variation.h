#pragma once

/// Variations of a reading as people decide by them: docs/alarms.md.
namespace variation {

/// How far a value is from the reference of its point.
constexpr double total(double value, double reference)
{
    return value - reference;
}

/// How far it went from the last value of the previous measured day in a day, `days` days later.
constexpr double daily(double value, double previous, int days)
{
    return (value - previous) / days;
}

} // namespace variation
