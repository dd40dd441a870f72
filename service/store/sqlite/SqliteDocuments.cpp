#include "store/sqlite/SqliteDocuments.h"

#include "store/StoreError.h"
#include "store/sql/DocumentSelection.h"

#include <array>

namespace monitorservice {

namespace {

std::array<DocumentTable, allDocumentKinds.size()> allTables()
{
    std::array<DocumentTable, allDocumentKinds.size()> tables;
    for (const DocumentKind kind : allDocumentKinds) {
        tables.at(static_cast<std::size_t>(kind)) = documentTable(kind, sqliteDialect);
    }
    return tables;
}

RowMatcher::Row textsOf(const SqliteStatement& row)
{
    return [&row](int column) {
        return row.isNull(column) ? std::nullopt : std::optional(row.view(column));
    };
}

} // namespace

const DocumentTable& sqliteTable(DocumentKind kind)
{
    static const auto tables = allTables();
    return tables.at(static_cast<std::size_t>(kind));
}

ProjectRows rowsOfProject(const DocumentQuery& query)
{
    return {"project", query.project};
}

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
    orderOf(query, m_table, sqliteDialect); // read for its check alone
    const DocumentSelection selection = selectDocuments(query, rowsOfProject(query), m_table, sqliteDialect);
    if (selection.exact) {
        SqliteStatement statement = m_connection.bound(Sql("SELECT count(*)").append(selection.rows));
        statement.step();
        return static_cast<std::uint64_t>(statement.integer(0));
    }
    RowMatcher matcher(*query.where, selection, m_table);
    SqliteStatement statement = m_connection.bound(Sql("SELECT " + matcher.columns()).append(selection.rows));
    const RowMatcher::Row row = textsOf(statement);
    std::uint64_t matching = 0;
    while (statement.step()) {
        matching += matcher.matches(row) ? 1 : 0;
    }
    return matching;
}

void SqliteDocuments::visit(const DocumentQuery& query, const Visitor& visitor) const
{
    const Sql order = orderOf(query, m_table, sqliteDialect);
    const DocumentSelection selection = selectDocuments(query, rowsOfProject(query), m_table, sqliteDialect);
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
    const RowMatcher::Row row = textsOf(statement);
    std::uint64_t toSkip = query.skip;
    std::uint64_t toGive = query.limit;
    while (toGive > 0 && statement.step()) {
        if (!matcher.matches(row)) {
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
