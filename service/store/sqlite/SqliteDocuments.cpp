#include "store/sqlite/SqliteDocuments.h"

#include "query/Matcher.h"
#include "query/PatternSearch.h"

#include <simdjson.h>

#include <algorithm>
#include <limits>
#include <variant>

namespace monitorservice {

namespace {

// What a condition becomes in SQL: the rows to look at, and whether each of them is known to match. Otherwise
// patterns in columns tell, or without any the document.
struct Selection
{
    std::string sql;
    std::vector<SqlValue> values;
    bool exact = true;
    std::vector<ColumnPattern> patterns;
};

Selection select(const DocumentQuery& query, const DocumentTable& table)
{
    Selection selection{" FROM " + table.view + " WHERE project = ?", {query.project}, true, {}};
    if (query.parent) {
        selection.sql += " AND " + table.parent + " = ?";
        selection.values.emplace_back(*query.parent);
    }
    if (query.categories) {
        std::string placeholders;
        for (const std::string& category : *query.categories) {
            placeholders += placeholders.empty() ? "?" : ", ?";
            selection.values.emplace_back(category);
        }
        selection.sql += " AND category IN (" + placeholders + ")";
    }
    if (query.where != nullptr) {
        Narrowing narrowing = narrow(*query.where, table.narrowable);
        selection.sql += " AND (" + narrowing.sql + ")";
        selection.values.insert(selection.values.end(), narrowing.values.begin(), narrowing.values.end());
        selection.exact = narrowing.exact;
        selection.patterns = std::move(narrowing.patterns);
    }
    return selection;
}

std::vector<OrderTerm> orderOf(const DocumentQuery& query, const DocumentTable& table)
{
    return query.order ? parseOrder(*query.order, table.sortable) : std::vector<OrderTerm>();
}

SqliteStatement bound(SqliteConnection& connection, const std::string& sql,
                      const std::vector<SqlValue>& values)
{
    SqliteStatement statement = connection.statement(sql);
    for (const SqlValue& value : values) {
        std::visit([&statement](const auto& one) { statement.bindNext(one); }, value);
    }
    return statement;
}

// Tells of one selected row after another whether it matches, by the columns that it names.
class RowMatcher
{
public:
    RowMatcher(const Where& where, const Selection& selection, const DocumentTable& table)
        : m_patterns(selection.patterns), m_matcher(where)
    {
        for (const ColumnPattern& pattern : m_patterns) {
            m_columns += ", " + pattern.sql;
        }
        if (m_patterns.empty()) {
            m_columns += ", " + table.searched;
        }
    }

    // What to select: the identifier, and what the matcher looks at.
    const std::string& columns() const { return m_columns; }

    bool matches(const SqliteStatement& row)
    {
        return m_patterns.empty() ? matchesDocument(row.view(1)) : holdsPatterns(row);
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

    bool matchesDocument(std::string_view document)
    {
        simdjson::dom::element element;
        if (m_parser.parse(document.data(), document.size()).get(element) != simdjson::SUCCESS) {
            throw StoreError(StoreFailure::InputOutput, "a stored document is damaged");
        }
        return m_matcher.matches(element);
    }

    std::vector<ColumnPattern> m_patterns;
    PatternSearch m_search;
    simdjson::dom::parser m_parser;
    Matcher m_matcher;
    std::string m_columns = "id";
};

std::int64_t sqlNumber(std::uint64_t number)
{
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(number, largest));
}

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
        SqliteStatement statement = bound(m_connection, "SELECT count(*)" + selection.sql, selection.values);
        statement.step();
        return static_cast<std::uint64_t>(statement.integer(0));
    }
    RowMatcher matcher(*query.where, selection, m_table);
    SqliteStatement statement =
        bound(m_connection, "SELECT " + matcher.columns() + selection.sql, selection.values);
    std::uint64_t matching = 0;
    while (statement.step()) {
        matching += matcher.matches(statement) ? 1 : 0;
    }
    return matching;
}

void SqliteDocuments::visit(const DocumentQuery& query, const Visitor& visitor) const
{
    const std::string order = orderBy(orderOf(query, m_table), "id");
    Selection selection = select(query, m_table);
    if (selection.exact) {
        selection.values.emplace_back(sqlNumber(query.limit));
        selection.values.emplace_back(sqlNumber(query.skip));
        SqliteStatement statement =
            bound(m_connection, "SELECT document" + selection.sql + " " + order + " LIMIT ? OFFSET ?",
                  selection.values);
        while (statement.step()) {
            visitor(statement.view(0));
        }
        return;
    }
    // The document is looked up for the page alone: what tells the rows apart may stand in an index.
    RowMatcher matcher(*query.where, selection, m_table);
    SqliteStatement statement =
        bound(m_connection, "SELECT " + matcher.columns() + selection.sql + " " + order, selection.values);
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
    visitor(statement.view(0));
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
