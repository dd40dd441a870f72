#pragma once

#include "store/Documents.h"
#include "store/postgres/PostgresConnection.h"
#include "store/postgres/ProjectNumbers.h"
#include "store/sql/DocumentSelection.h"
#include "store/sql/DocumentTables.h"
#include "store/sql/Reach.h"

#include <string>

namespace monitorservice {

class PostgresDocuments final : public Documents
{
public:
    PostgresDocuments(PostgresConnection& connection, ProjectNumbers& projects, DocumentKind kind);

    std::optional<StoredDocument> find(const std::string& id) const override;
    std::uint64_t count(const DocumentQuery& query) const override;
    void expect(const DocumentQuery& query) const override;
    void visit(const DocumentQuery& query, const Visitor& visitor) const override;

    void insert(const std::string& project, const std::string& id, const std::string& text) override;
    void replace(const std::string& project, const std::string& id, const std::string& text) override;
    void remove(const std::string& project, const std::string& id) override;

private:
    DocumentSelection chosenBy(const DocumentQuery& query) const;
    void visitStored(const std::string& id, const Visitor& visitor) const;

    PostgresConnection& m_connection;
    ProjectNumbers& m_projects;
    DocumentKind m_kind;
    const DocumentTable& m_table;
};

/// Sends for what find() of this kind will give, as PostgresConnection::expect().
void expectDocument(PostgresConnection& connection, DocumentKind kind, const std::string& id);

/// The table of the documents of one kind.
const DocumentTable& postgresTable(DocumentKind kind);

/// The rows of a query's project.
ProjectRows rowsOfProject(const DocumentQuery& query, ProjectNumbers& projects);

} // namespace monitorservice
