#pragma once

#include "query/Where.h"
#include "time/Instant.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// The members of a sample that conditions on points choose samples by.
constexpr const char* samplePathTime = "time";
constexpr const char* samplePathFlag = "data.timeFlag";

/// From the first instant to before the second.
struct Period
{
    Instant from = std::numeric_limits<Instant>::min();
    Instant before = std::numeric_limits<Instant>::max();
};

/// The conditions of a query on points: those on each sample, and those on the point.
struct PointConditions
{
    Where ofSamples;
    Where ofPoints; ///< in the members as points are stored
};

PointConditions pointConditions(const Where* where);

/// The period that the conditions on samples describe: all of them are on "time", from or before a whole
/// millisecond.
std::optional<Period> periodOf(const Where& ofSamples);

/// A period in which all samples lie that the conditions may choose.
Period periodAround(const Where& ofSamples);

/// What the conditions on a sample are asked of: its members stand where their paths lead.
std::string sampleDocument(Instant time, const std::optional<int>& offsetMinutes, std::string_view timeFlag);

/// Whether a condition is on the member or on something within it.
bool leadsInto(const Where& where, std::string_view member);

/// The day of UTC; that of a time zone with the same number begins and ends less than a day away from it.
std::int64_t utcDayOf(Instant instant);

} // namespace monitorservice
