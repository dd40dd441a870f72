#pragma once

#include "store/postgres/PostgresConnection.h"
#include "store/postgres/PostgresCursor.h"
#include "store/segments/SampleSegment.h"
#include "store/sql/PointConditions.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace monitorservice {

/// Appends the samples of a segment. Throws StoreError when it is damaged.
void decodeStored(std::string_view content, std::vector<KeptSample>& samples);

/// The segments of points that overlap a period, point after point as they are given, and of each in the
/// order of their samples.
class SegmentRows
{
public:
    enum class Order
    {
        Rising,
        Falling,  ///< the latest first
        Earliest, ///< that one alone
        Latest    ///< that one alone
    };

    SegmentRows(PostgresConnection& connection, const std::vector<std::int64_t>& points, const Period& period,
                Order order = Order::Rising);

    /// Goes to the next segment; false when there is none.
    bool next() { return m_cursor->next(); }

    /// Index of its point among those given.
    std::size_t place() const { return static_cast<std::size_t>(m_cursor->integer(0)) - 1; }
    std::int64_t day() const { return m_cursor->integer(1); }
    /// Appends its samples, as decodeStored() does.
    void decode(std::vector<KeptSample>& samples) const;
    /// Its last sample, but for the flag; the samples are not decoded for that.
    Sample last() const;

private:
    std::unique_ptr<PostgresCursor> m_cursor;
};

} // namespace monitorservice
