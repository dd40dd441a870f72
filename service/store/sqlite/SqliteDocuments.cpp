#include "store/sqlite/SqliteDocuments.h"

#include "json/JsonText.h"
#include "query/PatternSearch.h"
#include "store/StoreError.h"
#include "store/sql/Reach.h"
#include "store/sqlite/TextMatcher.h"

#include <algorithm>

namespace monitorservice {

namespace {

// What a condition becomes in SQL: the rows to look at, and whether each of them is known to match. Otherwise
// patterns in columns tell, or without any the document.
struct Selection
{
    Sql rows; // FROM and WHERE
    bool exact = true;
    std::vector<ColumnPattern> patterns;
};

// One value however many they are: SQLite has a limit of values, and keeps each text of a statement.
std::string jsonArrayOf(const std::vector<std::string>& identifiers)
{
    JsonArrayWriter array;
    for (const std::string& identifier : identifiers) {
        array.text(identifier);
    }
    return array.finish();
}

Selection select(const DocumentQuery& query, const DocumentTable& table)
{
    Selection selection;
    selection.rows = Sql(" FROM " + table.view + " WHERE ").append(reachOf(query, table.view));
    if (query.parent) {
        selection.rows.append(" AND " + table.parent + " = ").appendValue(*query.parent);
    }
    if (query.identifiers) {
        selection.rows.append(" AND id IN (SELECT value FROM json_each(")
            .appendValue(jsonArrayOf(*query.identifiers))
            .append("))");
    }
    if (query.where != nullptr) {
        Narrowing narrowing = narrow(*query.where, table.narrowable, sqliteDialect);
        selection.rows.append(" AND (").append(narrowing.condition).append(")");
        selection.exact = narrowing.exact;
        selection.patterns = std::move(narrowing.patterns);
    }
    return selection;
}

Sql orderOf(const DocumentQuery& query, const DocumentTable& table)
{
    return orderBy(query.order, table.orderable, "id", sqliteDialect);
}

// Tells of one selected row after another whether it matches, by the columns that it names.
class RowMatcher
{
public:
    RowMatcher(const Where& where, const Selection& selection, const DocumentTable& table)
        : m_patterns(selection.patterns), m_matcher(where)
    {
        for (const ColumnPattern& pattern : m_patterns) {
            m_columns += ", " + pattern.column;
        }
        if (m_patterns.empty()) {
            m_columns += ", " + table.searched;
        }
    }

    // What to select: the identifier, and what the matcher looks at.
    const std::string& columns() const { return m_columns; }

    bool matches(const SqliteStatement& row)
    {
        return m_patterns.empty() ? m_matcher.matches(row.view(1)) : holdsPatterns(row);
    }

private:
    bool holdsPatterns(const SqliteStatement& row)
    {
        int column = 0;
        return std::all_of(m_patterns.begin(), m_patterns.end(), [&](const ColumnPattern& one) {
            ++column;
            return !row.isNull(column) && m_search.finds(*one.pattern, row.view(column));
        });
    }

    std::vector<ColumnPattern> m_patterns;
    PatternSearch m_search;
    TextMatcher m_matcher;
    std::string m_columns = "id";
};

} // namespace

std::optional<StoredDocument> SqliteDocuments::find(const std::string& id) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT project, category, document FROM " + m_table.view + " WHERE id = ?");
    statement.bind(id);
    if (!statement.step()) {
        return std::nullopt;
    }
    return StoredDocument{id, statement.text(0), statement.text(1), statement.text(2)};
}

std::uint64_t SqliteDocuments::count(const DocumentQuery& query) const
{
    orderOf(query, m_table); // read for its check alone
    const Selection selection = select(query, m_table);
    if (selection.exact) {
        SqliteStatement statement = m_connection.bound(Sql("SELECT count(*)").append(selection.rows));
        statement.step();
        return static_cast<std::uint64_t>(statement.integer(0));
    }
    RowMatcher matcher(*query.where, selection, m_table);
    SqliteStatement statement = m_connection.bound(Sql("SELECT " + matcher.columns()).append(selection.rows));
    std::uint64_t matching = 0;
    while (statement.step()) {
        matching += matcher.matches(statement) ? 1 : 0;
    }
    return matching;
}

void SqliteDocuments::visit(const DocumentQuery& query, const Visitor& visitor) const
{
    const Sql order = orderOf(query, m_table);
    const Selection selection = select(query, m_table);
    if (selection.exact) {
        SqliteStatement statement = m_connection.bound(Sql("SELECT document")
                                                           .append(selection.rows)
                                                           .append(" ")
                                                           .append(order)
                                                           .append(" ")
                                                           .append(Sql::page(query.skip, query.limit)));
        while (statement.step()) {
            m_connection.show(visitor, statement.view(0));
        }
        return;
    }
    // The document is looked up for the page alone: what tells the rows apart may stand in an index.
    RowMatcher matcher(*query.where, selection, m_table);
    SqliteStatement statement = m_connection.bound(
        Sql("SELECT " + matcher.columns()).append(selection.rows).append(" ").append(order));
    std::uint64_t toSkip = query.skip;
    std::uint64_t toGive = query.limit;
    while (toGive > 0 && statement.step()) {
        if (!matcher.matches(statement)) {
            continue;
        }
        if (toSkip > 0) {
            --toSkip;
            continue;
        }
        visitStored(statement.text(0), visitor);
        --toGive;
    }
}

void SqliteDocuments::visitStored(const std::string& id, const Visitor& visitor) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT document FROM " + m_table.name + " WHERE id = ?");
    statement.bind(id);
    if (!statement.step()) {
        throw StoreError(StoreFailure::InputOutput, "an index names a document that is not there");
    }
    m_connection.show(visitor, statement.view(0));
}

void SqliteDocuments::insert(const std::string& project, const std::string& id, const std::string& text)
{
    m_connection.statement("INSERT INTO " + m_table.name + " (project, id, document) VALUES (?, ?, ?)")
        .bind(project, id, text)
        .run();
}

void SqliteDocuments::replace(const std::string& project, const std::string& id, const std::string& text)
{
    m_connection.statement("UPDATE " + m_table.name + " SET document = ? WHERE project = ? AND id = ?")
        .bind(text, project, id)
        .run();
}

void SqliteDocuments::remove(const std::string& project, const std::string& id)
{
    m_connection.statement("DELETE FROM " + m_table.name + " WHERE project = ? AND id = ?")
        .bind(project, id)
        .run();
}

} // namespace monitorservice
