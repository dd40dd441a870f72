#pragma once

#include "domain/Sample.h"
#include "store/sqlite/SqliteConnection.h"

#include <cstdint>
#include <optional>

namespace monitorservice {

/// Selects samples; the point's key follows, then conditions and an order.
constexpr const char* selectSamplesOf =
    "SELECT time, count, offset_minutes, value, time_flag FROM samples WHERE point = ";

/// Takes over a row of that; for one sample after another into the same one.
void readSample(const SqliteStatement& row, Sample& sample);
Sample sampleOf(const SqliteStatement& row);

/// How far a time was written ahead of UTC; NULL when it was written in UTC.
std::optional<int> offsetIn(const SqliteStatement& row, int column);
/// The value of such a column.
std::optional<std::int64_t> offsetColumn(const std::optional<int>& offsetMinutes);

} // namespace monitorservice
