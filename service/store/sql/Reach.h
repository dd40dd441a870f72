#pragma once

#include "store/DocumentQuery.h"
#include "store/sql/Sql.h"

#include <string>

namespace monitorservice {

/// Which rows a query may reach at all, whatever its condition: those of its project, or of every one, and
/// its categories, in the columns "project" and "category" of the table or view called `rows`.
Sql reachOf(const DocumentQuery& query, const std::string& rows);

} // namespace monitorservice
