#include "store/postgres/ExpectedPoints.h"

#include "domain/Depth.h"
#include "store/postgres/PostgresArray.h"
#include "store/postgres/StoredColumns.h"
#include "store/postgres/StoredDays.h"

#include <algorithm>
#include <iterator>

namespace monitorservice {

namespace {

// With a row per point that an expected one may be, as PostgresMeasurements::findPoint() looks for it. OFFSET
// keeps the server from joining the points another way than by looking each of them up: without statistics it
// would take all of the monitoring's for a few.
constexpr const char* selectExpected =
    "SELECT e.place, p.point, p.id, p.document, p.depth, b.* "
    "FROM unnest($4::text[], $5::text[], $6::double precision[], $7::bigint[]) WITH ORDINALITY "
    "AS e (name, depth, depth_number, first_day, place) "
    "CROSS JOIN LATERAL (SELECT project_number, point, id, document, depth FROM point_locations "
    "WHERE project_number = $1 AND cell = $2 AND sub_category = $3 AND name = e.name AND "
    "(depth = e.depth OR (e.depth <> '' AND depth_number = e.depth_number)) OFFSET 0) AS p "
    "LEFT JOIN LATERAL (";

bool isHeldAsItIs(const std::string& text)
{
    return text.find('\0') == std::string::npos;
}

std::optional<std::int64_t> firstDayOf(const ExpectedPoint& point)
{
    return point.days.empty() ? std::nullopt : std::optional(point.days.front().day);
}

} // namespace

std::vector<ExpectedPoints::Found> ExpectedPoints::fetch(std::int64_t project, const std::string& cell,
                                                         const std::string& subCategory,
                                                         const std::vector<ExpectedPoint>& points)
{
    PostgresArray names(PostgresArray::Type::Text);
    PostgresArray depths(PostgresArray::Type::Text);
    PostgresArray numbers(PostgresArray::Type::Real);
    PostgresArray days(PostgresArray::Type::Integer);
    std::vector<const ExpectedPoint*> asked;
    std::vector<std::string> settled;
    for (const ExpectedPoint& point : points) {
        // What no column can hold is refused where it is looked for.
        if (!isHeldAsItIs(point.name) || !isHeldAsItIs(point.depth)) {
            continue;
        }
        asked.push_back(&point);
        settled.push_back(settledDepth(point.depth));
        names.add(point.name);
        depths.add(point.depth);
        numbers.add(numberAtBeginOf(settled.back()));
        days.add(firstDayOf(point));
    }
    static const std::string sql =
        selectExpected + selectLatestDayBefore("p", "e.first_day") + ") AS b ON true";
    const PostgresResult rows =
        m_connection.run(sql, project, cell, subCategory, names, depths, numbers, days);

    std::vector<int> rowOf(asked.size(), -1);
    for (int row = 0; row < rows.rows(); ++row) {
        const auto place = static_cast<std::size_t>(rows.integer(row, 0)) - 1;
        const std::string_view depth = rows.view(row, 4);
        const bool isSame = depth == asked[place]->depth;
        if (isSame || (rowOf[place] < 0 && settledDepth(depth) == settled[place])) {
            rowOf[place] = row;
        }
    }
    std::vector<Found> found;
    for (std::size_t place = 0; place < asked.size(); ++place) {
        const Key key{cell, subCategory, asked[place]->name, asked[place]->depth};
        if (const auto known = m_fetched.find(key); known != m_fetched.end()) {
            drop(known);
        }
        const int row = rowOf[place];
        if (row < 0) {
            m_fetched[key] = {};
            ++m_missing;
            continue;
        }
        const std::int64_t point = rows.integer(row, 1);
        m_fetched[key] = {StoredPoint{point, rows.text(row, 2), rows.text(row, 3)}};
        m_keys.emplace(point, key);
        const bool hasBefore = !rows.isNull(row, 5);
        found.push_back(
            {point, asked[place], hasBefore ? std::optional(storedDay(rows, row, 5)) : std::nullopt});
    }
    return found;
}

std::optional<ExpectedPoints::Fetched> ExpectedPoints::take(const std::string& cell,
                                                            const std::string& subCategory,
                                                            const std::string& name, const std::string& depth)
{
    if (m_fetched.empty()) {
        return std::nullopt;
    }
    const auto fetched = m_fetched.find({cell, subCategory, name, depth});
    if (fetched == m_fetched.end()) {
        return std::nullopt;
    }
    Fetched taken = fetched->second;
    drop(fetched);
    return taken;
}

void ExpectedPoints::forget(std::int64_t point)
{
    for (auto key = m_keys.find(point); key != m_keys.end(); key = m_keys.find(point)) {
        drop(m_fetched.find(key->second));
    }
}

void ExpectedPoints::forgetMissing(const std::string& cell, const std::string& subCategory,
                                   const std::string& name)
{
    for (auto one = m_fetched.lower_bound({cell, subCategory, name, ""}); one != m_fetched.end();) {
        const auto& [itsCell, itsSubCategory, itsName, depth] = one->first;
        if (std::tie(itsCell, itsSubCategory, itsName) != std::tie(cell, subCategory, name)) {
            break;
        }
        const auto next = std::next(one);
        if (!one->second.point) {
            drop(one);
        }
        one = next;
    }
}

void ExpectedPoints::forgetAll()
{
    m_fetched.clear();
    m_keys.clear();
    m_missing = 0;
}

void ExpectedPoints::drop(Points::iterator fetched)
{
    if (!fetched->second.point) {
        --m_missing;
    } else {
        const auto [begin, end] = m_keys.equal_range(fetched->second.point->key);
        m_keys.erase(std::find_if(begin, end, [&](const auto& one) { return one.second == fetched->first; }));
    }
    m_fetched.erase(fetched);
}

} // namespace monitorservice
