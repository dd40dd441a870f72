#pragma once

#include "query/PatternSearch.h"
#include "store/DocumentQuery.h"
#include "store/sql/DocumentTables.h"
#include "store/sql/Reach.h"
#include "store/sql/Sql.h"
#include "store/sql/TextMatcher.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What a query becomes in SQL: the rows to look at, and whether each of them is known to match. Otherwise
/// patterns in columns tell, or without any the document.
struct DocumentSelection
{
    Sql rows; ///< FROM and WHERE
    bool exact = true;
    std::vector<ColumnPattern> patterns;
};

DocumentSelection selectDocuments(const DocumentQuery& query, const ProjectRows& project,
                                  const DocumentTable& table, const Dialect& dialect);

/// ORDER BY.
Sql orderOf(const DocumentQuery& query, const DocumentTable& table, const Dialect& dialect);

/// Tells of one selected row after another whether it matches, by the columns that it names.
class RowMatcher
{
public:
    /// Gives the text in a column, counted from 0; nothing for NULL.
    using Row = std::function<std::optional<std::string_view>(int column)>;

    RowMatcher(const Where& where, const DocumentSelection& selection, const DocumentTable& table);

    /// What to select: the identifier, and what the matcher looks at.
    const std::string& columns() const { return m_columns; }

    bool matches(const Row& row);

private:
    bool holdsPatterns(const Row& row);

    std::vector<ColumnPattern> m_patterns;
    PatternSearch m_search;
    TextMatcher m_matcher;
    std::string m_columns = "id";
};

} // namespace monitorservice
