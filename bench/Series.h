#pragma once

#include "store/Store.h"

#include <simdjson.h>

#include <cstdint>
#include <string>

namespace monitorservice::bench {

/// Samples at regular times from 2015-01-01T00:00:00Z on, flagged "A" and "B" in turn. Any program can tell
/// any of them.
struct Series
{
    static constexpr Instant begin = 1420070400000;

    Instant interval;
    int count;

    Sample at(int number) const;
    /// The number of the last sample before the instant.
    int lastBefore(Instant instant) const;
};

/// Inserts a point with the samples of a series, in days of Vienna's time.
void insertPoint(Session& session, const std::string& cell, const std::string& subCategory,
                 const std::string& name, const Series& series);

/// Whether the JSON array of samples is that of `count` samples from number `first` on.
bool holdsSamples(simdjson::dom::array data, const Series& series, int first, int count);

/// The condition `"time":{"$gte":…,"$lt":…}`, without braces around it.
std::string periodText(const std::string& from, const std::string& before);

} // namespace monitorservice::bench
