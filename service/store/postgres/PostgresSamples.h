#pragma once

#include "domain/Sample.h"
#include "store/postgres/PostgresConnection.h"
#include "store/segments/SampleSegment.h"
#include "time/DayPeriod.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace monitorservice {

/// Samples of a point that are about to be changed.
struct ExpectedSamples
{
    std::int64_t point = 0;
    const std::vector<DayPeriod>* days = nullptr; ///< ascending
    std::optional<DaySummary> before;             ///< the latest day before the first of them
};

/// The samples that one session changes. A day is read when it is first needed, changed here, and written
/// with all the others by flush(), which has to come before the database is asked for samples.
class PostgresSamples
{
public:
    explicit PostgresSamples(PostgresConnection& connection) : m_connection(connection) {}

    /// Reads days at once; of points each of which is named once.
    void expect(const std::vector<ExpectedSamples>& points);
    /// The latest day before this one that has samples, when that is known without asking the database; null
    /// otherwise. Valid until something is changed.
    const std::optional<DaySummary>* latestDayBefore(std::int64_t point, std::int64_t day) const;

    /// As Measurements has them.
    bool insert(std::int64_t point, const DayPeriod& day, const Sample& sample, std::int64_t delivery);
    void replace(std::int64_t point, const DayPeriod& day, const Sample& sample);
    void remove(std::int64_t point, const DayPeriod& day, Instant time, std::int32_t count);
    std::optional<Sample> find(std::int64_t point, Instant time, std::int32_t count);

    /// The point has no samples yet, so none need to be read.
    void noteNew(std::int64_t point) { m_newPoints.insert(point); }
    /// Writes what was changed.
    void flush();
    /// Drops what was changed and not written, of a point or of all: it goes anyway.
    void forget(std::int64_t point);
    void forgetAll();

private:
    static constexpr std::size_t unchanged = std::numeric_limits<std::size_t>::max();

    struct Day
    {
        DayPeriod period;
        std::vector<KeptSample> samples;      ///< by time and count
        std::size_t partsHeld = 0;            ///< in the database
        std::size_t firstChanged = unchanged; ///< of the samples: those before are written already
    };
    using Key = std::pair<std::int64_t, std::int64_t>; ///< point and day
    using Days = std::map<Key, Day>;

    // The latest day before another one.
    struct Before
    {
        std::int64_t day = 0;
        std::optional<DaySummary> latest;
    };

    Day& dayOf(std::int64_t point, const DayPeriod& period);
    void noteChange(const Key& key, Day& day, std::size_t place);

    PostgresConnection& m_connection;
    Days m_days;
    Days::iterator m_latest = m_days.end(); ///< the one asked for last
    std::set<Key> m_changed;                ///< of m_days
    std::set<std::int64_t> m_newPoints;
    std::unordered_map<std::int64_t, Before> m_before;
    std::size_t m_held = 0; ///< samples in m_days
};

} // namespace monitorservice
