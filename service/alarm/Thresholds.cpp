#include "alarm/Thresholds.h"

#include "alarm/DecimalText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace monitorservice {

namespace {

constexpr double tolerance = 1e-9;

double finite(double value)
{
    constexpr double largest = std::numeric_limits<double>::max();
    return std::clamp(value, -largest, largest);
}

// The part of a variation that a limit is for.
double amountOf(double variation, LimitSide side)
{
    switch (side) {
    case LimitSide::Rising:
        return std::max(variation, 0.0);
    case LimitSide::Falling:
        return std::max(-variation, 0.0);
    case LimitSide::Both:
        break;
    }
    return std::abs(variation);
}

bool passes(double amount, double limit, double value)
{
    return amount - limit > tolerance * std::max(limit, std::abs(value));
}

double totalExcess(double total, const JudgedValue& judged, const Limits& limits)
{
    const double amount = amountOf(total, limits.totalSide);
    const bool isOver = limits.total > 0 && passes(amount, limits.total, judged.value);
    return isOver ? roundedDifference(amount - limits.total, std::max(amount, std::abs(judged.value))) : 0;
}

// Compared in the unit of the values, where both ways to count have the same tolerance.
double dailyExcess(double perDay, double daily, const JudgedValue& judged, const Limits& limits)
{
    const double limit = inUnitOfValues(limits.day, limits.dayKind, judged.reference);
    const bool isOver = limits.day > 0 && passes(amountOf(perDay, limits.daySide), limit, judged.value);
    const double amount = amountOf(daily, limits.daySide);
    return isOver ? roundedDifference(amount - limits.day, std::max(amount, limits.day)) : 0;
}

} // namespace

double inUnitOfValues(double daily, DayVariationKind kind, double reference)
{
    return kind == DayVariationKind::Percent ? finite(daily / 100 * std::abs(reference)) : daily;
}

Variation variationOf(const JudgedValue& judged, const Limits& limits)
{
    Variation variation;
    const double total = finite(judged.value - judged.reference);
    variation.total = roundedDifference(total, std::max(std::abs(judged.value), std::abs(judged.reference)));
    variation.totalExcess = totalExcess(total, judged, limits);
    const bool isPercent = limits.dayKind == DayVariationKind::Percent;
    if (!judged.previous || (isPercent && judged.reference == 0)) {
        return variation;
    }
    const double before = judged.previous->value;
    const double perDay =
        roundedDifference(finite(judged.value - before), std::max(std::abs(judged.value), std::abs(before))) /
        static_cast<double>(judged.previous->daysBefore);
    variation.daily = rounded(isPercent ? finite(perDay / std::abs(judged.reference) * 100) : perDay);
    variation.dailyExcess = dailyExcess(perDay, *variation.daily, judged, limits);
    return variation;
}

} // namespace monitorservice
