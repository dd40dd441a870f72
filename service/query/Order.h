#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// One path that results are ordered by.
struct OrderTerm
{
    std::string path;
    bool descending = false;
};

/// Reads the value of an order parameter, `-createdAt,name`: paths, the most significant first, `-` for
/// descending. Throws QueryError with status 400 for a path that is empty or given twice.
std::vector<OrderTerm> parseOrder(std::string_view text);

/// Throw QueryError with status 400: results cannot be ordered by the path; the term orders by what an
/// earlier one orders by already.
[[noreturn]] void refuseOrder(std::string_view path);
[[noreturn]] void refuseRepeatedOrder(const OrderTerm& term);

} // namespace monitorservice
