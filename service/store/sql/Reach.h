#pragma once

#include "store/DocumentQuery.h"
#include "store/sql/Sql.h"

#include <string>

namespace monitorservice {

/// The rows of a query's project: those with this value in the column.
struct ProjectRows
{
    std::string column;
    SqlValue value;
};

/// Which rows a query may reach at all, whatever its condition: those of its project, or of every one, and
/// its categories, in the column "category" of the table or view called `rows`.
Sql reachOf(const DocumentQuery& query, const ProjectRows& project, const std::string& rows);

} // namespace monitorservice
