#include "store/sql/Reach.h"

namespace monitorservice {

Sql reachOf(const DocumentQuery& query, const std::string& rows)
{
    Sql reach = "TRUE";
    if (!query.everyProject) {
        reach = Sql(rows + ".project = ").appendValue(query.project);
    }
    if (query.categories) {
        reach.andAlso(Sql::isOneOf(rows + ".category", {query.categories->begin(), query.categories->end()}));
    }
    return reach;
}

} // namespace monitorservice
