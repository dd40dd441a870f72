#pragma once

#include "query/Order.h"
#include "store/sql/Sql.h"

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What rows are ordered by.
enum class SortedAs
{
    Text,  ///< byte by byte
    Number ///< NULL before all numbers
};

/// A path that results can be ordered by.
struct OrderableField
{
    std::string path;
    Sql value;
    SortedAs sortedAs = SortedAs::Text;
};

/// `ORDER BY …` for the terms, with ties broken by ascending `identifier`, a column of texts. Throws
/// QueryError with status 400 for a path that is not among the fields, and for a second one with the value of
/// another.
Sql orderBy(const std::vector<OrderTerm>& terms, const std::vector<OrderableField>& fields,
            std::string_view identifier, const Dialect& dialect);

} // namespace monitorservice
