#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace monitorservice {

/// An instant, exact however many fractional digits its text has.
struct Timestamp
{
    /// Milliseconds since 1970-01-01T00:00:00Z, rounded towards the past.
    std::int64_t milliseconds = 0;

    /// The fractional digits after the third, without trailing zeros; a view into the parsed text.
    std::string_view finerDigits;

    /// How far the text is ahead of UTC; nothing when it ends in "Z". The instant does not depend on it.
    std::optional<int> offsetMinutes;
};

/// Reads `YYYY-MM-DDThh:mm:ss[.fraction](Z|±hh:mm|±hhmm)`, the ISO 8601 form that names one instant.
///
/// Strict: the date must exist in the (proleptic) Gregorian calendar, years 0000 to 9999, seconds end at 59,
/// the fraction has one or more digits, the offset is at most 14:00 either way, and nothing stands before or
/// after. Everything else, local times and dates alone included, is nullopt.
std::optional<Timestamp> parseTimestamp(std::string_view text);

/// Negative when `left` is before `right`, 0 when they are the same instant, positive when it is after.
int compare(const Timestamp& left, const Timestamp& right);

} // namespace monitorservice
