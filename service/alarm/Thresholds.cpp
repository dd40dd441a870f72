#include "alarm/Thresholds.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace monitorservice {

namespace {

double finite(double value)
{
    constexpr double largest = std::numeric_limits<double>::max();
    return std::clamp(value, -largest, largest);
}

std::optional<double> dayVariation(const PointReading& reading, DayVariationKind kind)
{
    if (!reading.previous || (kind == DayVariationKind::Percent && reading.initial == 0)) {
        return std::nullopt;
    }
    const double perDay =
        finite(reading.latest - reading.previous->value) / static_cast<double>(reading.previous->daysBefore);
    if (kind == DayVariationKind::Unit) {
        return perDay;
    }
    return finite(perDay / std::abs(reading.initial) * 100);
}

double beyond(double variation, double limit)
{
    return limit > 0 ? std::max(std::abs(variation) - limit, 0.0) : 0.0;
}

double proportion(double variation, double limit)
{
    return limit > 0 ? finite(std::abs(variation) / limit) : 0.0;
}

} // namespace

Variation variationOf(const PointReading& reading, const Limits& limits)
{
    Variation variation;
    variation.total = finite(reading.latest - reading.initial);
    variation.day = dayVariation(reading, limits.dayKind);
    variation.totalBeyond = beyond(variation.total, limits.total);
    variation.dayBeyond = beyond(variation.day.value_or(0), limits.day);
    variation.severity = std::max(proportion(variation.total, limits.total),
                                  proportion(variation.day.value_or(0), limits.day));
    return variation;
}

} // namespace monitorservice
