#pragma once

#include "domain/Sample.h"
#include "store/Measurements.h"
#include "store/StoredDocument.h"
#include "store/postgres/PostgresConnection.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace monitorservice {

/// The points of one session that were fetched before they are asked for. Each is given once, since what is
/// asked for is about to change.
class ExpectedPoints
{
public:
    /// What is known of a point.
    struct Fetched
    {
        std::optional<StoredPoint> point; ///< nothing: there is none
    };

    /// A point that is there, and its latest measured day before the first one that is expected.
    struct Found
    {
        std::int64_t point = 0;
        const ExpectedPoint* expected = nullptr; ///< one of those given
        std::optional<DaySummary> before;
    };

    explicit ExpectedPoints(PostgresConnection& connection) : m_connection(connection) {}

    /// Gives those that are there.
    std::vector<Found> fetch(std::int64_t project, const std::string& cell, const std::string& subCategory,
                             const std::vector<ExpectedPoint>& points);
    /// Nothing when it is not known whether there is such a point.
    std::optional<Fetched> take(const std::string& cell, const std::string& subCategory,
                                const std::string& name, const std::string& depth);
    /// How many are known not to be there.
    std::size_t missing() const { return m_missing; }

    /// The point is another one from now on, or gone.
    void forget(std::int64_t point);
    /// Points of this name, at whatever depth, may be there from now on.
    void forgetMissing(const std::string& cell, const std::string& subCategory, const std::string& name);
    void forgetAll();

private:
    /// Cell, sub-category, name and depth.
    using Key = std::tuple<std::string, std::string, std::string, std::string>;
    using Points = std::map<Key, Fetched>;

    void drop(Points::iterator fetched);

    PostgresConnection& m_connection;
    Points m_fetched;
    /// Of those that are there. A point may be expected by several spellings of its depth.
    std::unordered_multimap<std::int64_t, Key> m_keys;
    std::size_t m_missing = 0;
};

} // namespace monitorservice
