#include "store/sql/DocumentSelection.h"

#include "json/JsonText.h"

#include <algorithm>
#include <utility>

namespace monitorservice {

namespace {

// One value however many they are: databases have a limit of values, and keep each text of a statement.
std::string jsonArrayOf(const std::vector<std::string>& identifiers)
{
    JsonArrayWriter array;
    for (const std::string& identifier : identifiers) {
        array.text(identifier);
    }
    return array.finish();
}

} // namespace

DocumentSelection selectDocuments(const DocumentQuery& query, const ProjectRows& project,
                                  const DocumentTable& table, const Dialect& dialect)
{
    DocumentSelection selection;
    selection.rows = Sql(" FROM " + table.view + " WHERE ").append(reachOf(query, project, table.view));
    if (query.parent) {
        selection.rows.append(" AND " + table.parent + " = ").appendValue(*query.parent);
    }
    if (query.identifiers) {
        selection.rows.append(" AND id IN (SELECT ")
            .append(dialect.textsOfJson)
            .append("(")
            .appendValue(jsonArrayOf(*query.identifiers))
            .append("))");
    }
    if (query.where != nullptr) {
        Narrowing narrowing = narrow(*query.where, table.narrowable, dialect);
        selection.rows.append(" AND (").append(narrowing.condition).append(")");
        selection.exact = narrowing.exact;
        selection.patterns = std::move(narrowing.patterns);
    }
    return selection;
}

Sql orderOf(const DocumentQuery& query, const DocumentTable& table, const Dialect& dialect)
{
    return orderBy(query.order, table.orderable, "id", dialect);
}

RowMatcher::RowMatcher(const Where& where, const DocumentSelection& selection, const DocumentTable& table)
    : m_patterns(selection.patterns), m_matcher(where)
{
    for (const ColumnPattern& pattern : m_patterns) {
        m_columns += ", " + pattern.column;
    }
    if (m_patterns.empty()) {
        m_columns += ", " + table.searched;
    }
}

bool RowMatcher::matches(const Row& row)
{
    return m_patterns.empty() ? m_matcher.matches(row(1).value_or(std::string_view())) : holdsPatterns(row);
}

bool RowMatcher::holdsPatterns(const Row& row)
{
    int column = 0;
    return std::all_of(m_patterns.begin(), m_patterns.end(), [&](const ColumnPattern& one) {
        ++column;
        const std::optional<std::string_view> text = row(column);
        return text && m_search.finds(*one.pattern, *text);
    });
}

} // namespace monitorservice
