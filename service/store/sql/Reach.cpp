#include "store/sql/Reach.h"

namespace monitorservice {

Sql reachOf(const DocumentQuery& query, const ProjectRows& project, const std::string& rows)
{
    Sql reach = "TRUE";
    if (!query.everyProject) {
        reach = Sql(rows + "." + project.column + " = ").appendValue(project.value);
    }
    if (query.categories) {
        reach.andAlso(Sql::isOneOf(rows + ".category", {query.categories->begin(), query.categories->end()}));
    }
    return reach;
}

} // namespace monitorservice
