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

double totalVariation(const JudgedValue& judged)
{
    return finite(judged.value - judged.reference);
}

// In the unit of the values; there must be a day before.
double dailyVariation(const JudgedValue& judged)
{
    return finite(judged.value - judged.previous->value) / static_cast<double>(judged.previous->daysBefore);
}

bool hasDaily(const JudgedValue& judged, const Limits& limits)
{
    return judged.previous && (limits.dayKind != DayVariationKind::Percent || judged.reference != 0);
}

bool isTotalOver(const JudgedValue& judged, const Limits& limits)
{
    return limits.total > 0 &&
           passes(amountOf(totalVariation(judged), limits.totalSide), limits.total, judged.value);
}

// Compared in the unit of the values, where both ways to count have the same tolerance.
bool isDailyOver(const JudgedValue& judged, const Limits& limits)
{
    return limits.day > 0 && hasDaily(judged, limits) &&
           passes(amountOf(dailyVariation(judged), limits.daySide),
                  inUnitOfValues(limits.day, limits.dayKind, judged.reference), judged.value);
}

} // namespace

double inUnitOfValues(double daily, DayVariationKind kind, double reference)
{
    return kind == DayVariationKind::Percent ? finite(daily / 100 * std::abs(reference)) : daily;
}

bool isOverLimit(const JudgedValue& judged, const Limits& limits)
{
    return isTotalOver(judged, limits) || isDailyOver(judged, limits);
}

Variation variationOf(const JudgedValue& judged, const Limits& limits)
{
    Variation variation;
    const double value = std::abs(judged.value);
    const double total = totalVariation(judged);
    variation.total = roundedDifference(total, std::max(value, std::abs(judged.reference)));
    if (isTotalOver(judged, limits)) {
        const double amount = amountOf(total, limits.totalSide);
        variation.totalExcess = roundedDifference(amount - limits.total, std::max(amount, value));
    }
    if (!hasDaily(judged, limits)) {
        return variation;
    }
    const double before = judged.previous->value;
    const double perDay =
        roundedDifference(finite(judged.value - before), std::max(value, std::abs(before))) /
        static_cast<double>(judged.previous->daysBefore);
    const bool isPercent = limits.dayKind == DayVariationKind::Percent;
    variation.daily = rounded(isPercent ? finite(perDay / std::abs(judged.reference) * 100) : perDay);
    if (isDailyOver(judged, limits)) {
        const double amount = amountOf(*variation.daily, limits.daySide);
        variation.dailyExcess = roundedDifference(amount - limits.day, std::max(amount, limits.day));
    }
    return variation;
}

} // namespace monitorservice
