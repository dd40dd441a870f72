#pragma once

#include "domain/Sample.h"
#include "store/Measurements.h"
#include "store/sqlite/SqliteConnection.h"

#include <cstdint>
#include <optional>

namespace monitorservice {

/// What is kept of each day, in step with the samples. What changes in one day of a point is gathered until
/// another day changes, days are read or write() is called: that must be done before others read days or
/// remove points, and before the end of the transaction. Every member may throw StoreError.
class DayRollup
{
public:
    explicit DayRollup(SqliteConnection& connection) : m_connection(connection) {}

    /// The sample was not there before.
    void inserted(std::int64_t point, const DayPeriod& day, const Sample& sample);
    /// The sample has another value than before.
    void replaced(std::int64_t point, const DayPeriod& day, const Sample& sample);
    /// A sample of the day is gone.
    void removed(std::int64_t point, const DayPeriod& day);

    void write();

    void visit(std::int64_t point, std::int64_t first, std::int64_t last,
               const Measurements::DayVisitor& visitor);
    std::optional<DaySummary> latestBefore(std::int64_t point, std::int64_t day);
    std::optional<DaySummary> earliestAfter(std::int64_t point, std::int64_t day);

private:
    // What has changed in one day of a point.
    struct Change
    {
        std::int64_t point;
        DayPeriod day;
        DaySummary inserted;                ///< how many, and the last of them
        std::optional<DaySummary> replaced; ///< the last of them
        bool hasRemoved;
    };

    Change& changeOf(std::int64_t point, const DayPeriod& day);
    void add(std::int64_t point, const DaySummary& inserted);
    void correct(std::int64_t point, const DaySummary& replaced);
    void recount(std::int64_t point, const DayPeriod& day);

    SqliteConnection& m_connection;
    std::optional<Change> m_change;
};

} // namespace monitorservice
