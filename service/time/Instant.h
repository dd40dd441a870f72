#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace monitorservice {

/// A point in time: milliseconds since 1970-01-01T00:00:00Z, leap seconds not counted.
using Instant = std::int64_t;

/// Where the present comes from; tests give their own.
using Clock = std::function<Instant()>;

/// The system's clock.
Instant systemNow();

/// ISO 8601 with milliseconds and "Z": 2015-12-21T06:30:00.000Z. Texts of the years 0 to 9999 sort like their
/// instants.
std::string isoText(Instant instant);

/// The same instant as a clock shows it that is so many minutes ahead of UTC: 2015-12-20T22:30:00.000-08:00.
/// Without an offset, as above.
std::string isoText(Instant instant, std::optional<int> offsetMinutes);

/// Appends that text.
void appendIsoText(std::string& out, Instant instant, std::optional<int> offsetMinutes);

} // namespace monitorservice
