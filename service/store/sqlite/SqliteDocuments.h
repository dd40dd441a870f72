#pragma once

#include "domain/DocumentKind.h"
#include "store/Documents.h"
#include "store/sql/DocumentTables.h"
#include "store/sql/Reach.h"
#include "store/sqlite/SqliteConnection.h"

#include <string>

namespace monitorservice {

/// The table of the documents of one kind.
const DocumentTable& sqliteTable(DocumentKind kind);

/// The rows of a query's project.
ProjectRows rowsOfProject(const DocumentQuery& query);

class SqliteDocuments final : public Documents
{
public:
    SqliteDocuments(SqliteConnection& connection, const DocumentTable& table)
        : m_connection(connection), m_table(table)
    {
    }

    std::optional<StoredDocument> find(const std::string& id) const override;
    std::uint64_t count(const DocumentQuery& query) const override;
    void expect(const DocumentQuery& /*query*/) const override {} // a file is no faster for knowing
    void visit(const DocumentQuery& query, const Visitor& visitor) const override;

    void insert(const std::string& project, const std::string& id, const std::string& text) override;
    void replace(const std::string& project, const std::string& id, const std::string& text) override;
    void remove(const std::string& project, const std::string& id) override;

private:
    void visitStored(const std::string& id, const Visitor& visitor) const;

    SqliteConnection& m_connection;
    const DocumentTable& m_table;
};

} // namespace monitorservice
