#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// A path that results can be ordered by.
struct SortableField
{
    std::string path;

    /// SQL: the column. Taken as it is, so never from a request.
    std::string sql;
};

struct OrderTerm
{
    std::string sql;
    bool falling = false;
};

/// Reads the value of an order parameter, `-createdAt,name`: paths, the most significant first, `-` for
/// falling. Throws QueryError with status 400 for a path that is not in `fields`, an empty one, or one given
/// twice.
std::vector<OrderTerm> parseOrder(std::string_view text, const std::vector<SortableField>& fields);

/// `ORDER BY ...` for the terms, with ties broken by rising `identifierColumn`.
std::string orderBy(const std::vector<OrderTerm>& terms, std::string_view identifierColumn);

} // namespace monitorservice
