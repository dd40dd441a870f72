#include "store/postgres/PostgresDocuments.h"

#include "store/postgres/PostgresCursor.h"
#include "store/postgres/StoredColumns.h"

#include <array>

namespace monitorservice {

namespace {

std::array<DocumentTable, allDocumentKinds.size()> allTables()
{
    std::array<DocumentTable, allDocumentKinds.size()> tables;
    for (const DocumentKind kind : allDocumentKinds) {
        DocumentTable table = documentTable(kind, postgresDialect);
        table.view = table.name + "_read"; // here all have one: it names the project
        tables.at(static_cast<std::size_t>(kind)) = table;
    }
    return tables;
}

std::string selectById(const DocumentTable& table)
{
    return "SELECT project, category, document, project_number FROM " + table.view + " WHERE id = $1";
}

// A page of those that are chosen without reading them.
Sql selectPage(const DocumentQuery& query, const DocumentSelection& selection, const Sql& order)
{
    return Sql("SELECT document")
        .append(selection.rows)
        .append(" ")
        .append(order)
        .append(" ")
        .append(Sql::page(query.skip, query.limit));
}

RowMatcher::Row textsOf(const PostgresCursor& row)
{
    return [&row](int column) {
        return row.isNull(column) ? std::nullopt : std::optional(row.view(column));
    };
}

} // namespace

PostgresDocuments::PostgresDocuments(PostgresConnection& connection, ProjectNumbers& projects,
                                     DocumentKind kind)
    : m_connection(connection), m_projects(projects), m_kind(kind), m_table(postgresTable(kind))
{
}

std::optional<StoredDocument> PostgresDocuments::find(const std::string& id) const
{
    const PostgresResult found = m_connection.run(selectById(m_table), id);
    if (found.isEmpty()) {
        return std::nullopt;
    }
    StoredDocument document{id, found.text(0, 0), found.text(0, 1), found.text(0, 2)};
    m_projects.note(document.project, found.integer(0, 3));
    if (m_kind == DocumentKind::Cell) {
        m_projects.noteCell(id, found.integer(0, 3));
    }
    return document;
}

std::uint64_t PostgresDocuments::count(const DocumentQuery& query) const
{
    orderOf(query, m_table, postgresDialect); // read for its check alone
    const DocumentSelection selection = chosenBy(query);
    if (selection.exact) {
        const PostgresResult counted = m_connection.run(Sql("SELECT count(*)").append(selection.rows));
        return static_cast<std::uint64_t>(counted.integer(0, 0));
    }
    RowMatcher matcher(*query.where, selection, m_table);
    PostgresCursor cursor(m_connection, Sql("SELECT " + matcher.columns()).append(selection.rows));
    const RowMatcher::Row row = textsOf(cursor);
    std::uint64_t matching = 0;
    while (cursor.next()) {
        matching += matcher.matches(row) ? 1 : 0;
    }
    return matching;
}

void PostgresDocuments::expect(const DocumentQuery& query) const
{
    const Sql order = orderOf(query, m_table, postgresDialect);
    const DocumentSelection selection = chosenBy(query);
    if (selection.exact) {
        PostgresCursor::expect(m_connection, selectPage(query, selection, order), query.limit);
    }
}

void PostgresDocuments::visit(const DocumentQuery& query, const Visitor& visitor) const
{
    const Sql order = orderOf(query, m_table, postgresDialect);
    const DocumentSelection selection = chosenBy(query);
    if (selection.exact) {
        PostgresCursor cursor(m_connection, selectPage(query, selection, order), query.limit);
        while (cursor.next()) {
            m_connection.show(visitor, cursor.view(0));
        }
        return;
    }
    // The document is looked up for the page alone: what tells the rows apart may stand in an index.
    RowMatcher matcher(*query.where, selection, m_table);
    PostgresCursor cursor(
        m_connection, Sql("SELECT " + matcher.columns()).append(selection.rows).append(" ").append(order));
    const RowMatcher::Row row = textsOf(cursor);
    std::uint64_t toSkip = query.skip;
    std::uint64_t toGive = query.limit;
    while (toGive > 0 && cursor.next()) {
        if (!matcher.matches(row)) {
            continue;
        }
        if (toSkip > 0) {
            --toSkip;
            continue;
        }
        visitStored(cursor.text(0), visitor);
        --toGive;
    }
}

DocumentSelection PostgresDocuments::chosenBy(const DocumentQuery& query) const
{
    return selectDocuments(query, rowsOfProject(query, m_projects), m_table, postgresDialect);
}

void PostgresDocuments::visitStored(const std::string& id, const Visitor& visitor) const
{
    const PostgresResult found =
        m_connection.run("SELECT document FROM " + m_table.name + " WHERE id = $1", id);
    if (found.isEmpty()) {
        throw StoreError(StoreFailure::InputOutput, "an index names a document that is not there");
    }
    m_connection.show(visitor, found.view(0, 0));
}

void PostgresDocuments::insert(const std::string& project, const std::string& id, const std::string& text)
{
    PostgresValues values;
    // The audit trail tells of projects that may be gone; of all others there must be one.
    values.add(m_kind == DocumentKind::Change ? m_projects.give(project) : m_projects.of(project));
    values.add(id);
    values.add(text);
    std::string columns = "project_number, id, document";
    std::string places = "$1, $2, $3";
    const std::vector<StoredColumn>& stored = storedColumns(m_kind);
    for (const StoredColumn& column : stored) {
        columns += ", " + column.name;
    }
    addColumns(values, stored, text);
    for (int place = 4; place <= values.count(); ++place) {
        places += ", $" + std::to_string(place);
    }
    m_connection.postPrepared("INSERT INTO " + m_table.name + " (" + columns + ") VALUES (" + places + ")",
                              values);
}

void PostgresDocuments::replace(const std::string& project, const std::string& id, const std::string& text)
{
    PostgresValues values;
    values.add(m_projects.of(project));
    values.add(id);
    values.add(text);
    std::string columns = "document = $3";
    int place = 3;
    const std::vector<StoredColumn>& stored = storedColumns(m_kind);
    for (const StoredColumn& column : stored) {
        columns += ", " + column.name + " = $" + std::to_string(++place);
    }
    addColumns(values, stored, text);
    m_connection.postPrepared(
        "UPDATE " + m_table.name + " SET " + columns + " WHERE project_number = $1 AND id = $2", values);
}

void PostgresDocuments::remove(const std::string& project, const std::string& id)
{
    m_connection.post("DELETE FROM " + m_table.name + " WHERE project_number = $1 AND id = $2",
                      m_projects.of(project), id);
}

void expectDocument(PostgresConnection& connection, DocumentKind kind, const std::string& id)
{
    connection.expect(selectById(postgresTable(kind)), id);
}

const DocumentTable& postgresTable(DocumentKind kind)
{
    static const auto tables = allTables();
    return tables.at(static_cast<std::size_t>(kind));
}

ProjectRows rowsOfProject(const DocumentQuery& query, ProjectNumbers& projects)
{
    return {"project_number", query.everyProject ? 0 : projects.of(query.project)};
}

} // namespace monitorservice
