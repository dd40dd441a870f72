#include "store/postgres/SegmentRows.h"

#include "store/postgres/PostgresArray.h"
#include "store/postgres/ProjectNumbers.h"

#include <algorithm>
#include <limits>

namespace monitorservice {

namespace {

constexpr std::int64_t farAway = std::numeric_limits<std::int32_t>::max() - 1;

constexpr std::uint64_t anyNumber = std::numeric_limits<std::uint64_t>::max();

// Days that any day of the period may have as its number.
std::int64_t firstDayOf(const Period& period)
{
    return std::max(utcDayOf(period.from), -farAway) - 1;
}

std::int64_t lastDayOf(const Period& period)
{
    return std::min(utcDayOf(period.before), farAway) + 1;
}

std::string orderOf(SegmentRows::Order order)
{
    switch (order) {
    case SegmentRows::Order::Rising:
        return "s.day, s.part";
    case SegmentRows::Order::Falling:
        return "s.day DESC, s.part DESC";
    case SegmentRows::Order::Earliest:
        return "s.day, s.part LIMIT 1";
    case SegmentRows::Order::Latest:
        return "s.day DESC, s.part DESC LIMIT 1";
    }
    return {};
}

} // namespace

void decodeStored(std::string_view content, std::vector<KeptSample>& samples)
{
    try {
        decodeSegment(content, samples);
    } catch (const SegmentError& error) {
        throw StoreError(StoreFailure::InputOutput, error.what());
    }
}

SegmentRows::SegmentRows(PostgresConnection& connection, const std::vector<std::int64_t>& points,
                         const Period& period, Order order)
{
    PostgresArray projects(PostgresArray::Type::Integer);
    PostgresArray numbers(PostgresArray::Type::Integer);
    for (const std::int64_t point : points) {
        projects.add(projectNumberOf(point));
        numbers.add(point);
    }
    PostgresValues values;
    values.add(projects);
    values.add(numbers);
    values.add(period.from);
    values.add(period.before);
    values.add(firstDayOf(period));
    values.add(lastDayOf(period));
    const std::string inner = orderOf(order);
    const bool falls = order == Order::Falling;
    m_cursor = std::make_unique<PostgresCursor>(
        connection,
        "SELECT k.place, s.day, s.last_time, s.last_count, s.last_offset_minutes, s.last_value, s.content "
        "FROM unnest($1::bigint[], $2::bigint[]) WITH ORDINALITY AS k (project, point, place) "
        "CROSS JOIN LATERAL (SELECT * FROM sample_segments AS s WHERE s.project_number = k.project AND "
        "s.point = k.point AND s.day BETWEEN $5::bigint AND $6::bigint AND s.last_time >= $3 AND "
        "s.first_time < $4 ORDER BY " +
            inner + ") AS s ORDER BY k.place, " + (falls ? "s.day DESC, s.part DESC" : "s.day, s.part"),
        values, order == Order::Latest || order == Order::Earliest ? points.size() : anyNumber);
}

void SegmentRows::decode(std::vector<KeptSample>& samples) const
{
    decodeStored(m_cursor->view(6), samples);
}

Sample SegmentRows::last() const
{
    Sample sample;
    sample.time = m_cursor->integer(2);
    sample.count = static_cast<std::int32_t>(m_cursor->integer(3));
    if (!m_cursor->isNull(4)) {
        sample.offsetMinutes = static_cast<int>(m_cursor->integer(4));
    }
    sample.value = m_cursor->real(5);
    return sample;
}

} // namespace monitorservice
