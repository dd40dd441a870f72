#pragma once

#include "domain/DocumentKind.h"
#include "store/Documents.h"
#include "store/sql/Narrowing.h"
#include "store/sql/Ordering.h"
#include "store/sqlite/SqliteConnection.h"

#include <string>
#include <vector>

namespace monitorservice {

/// A table whose rows are JSON documents: project, id, document, and a column for each member that is
/// queried.
struct DocumentTable
{
    std::string name;
    std::vector<NarrowableField> narrowable;
    std::vector<OrderableField> orderable;
    std::string view = name;           ///< what is read: the table, or a view that adds the category
    std::string searched = "document"; ///< the column that conditions are tried against
    std::string parent = {};           ///< the column with the identifier that DocumentQuery::parent names
};

/// The table of the documents of one kind.
const DocumentTable& documentTable(DocumentKind kind);

class SqliteDocuments final : public Documents
{
public:
    SqliteDocuments(SqliteConnection& connection, const DocumentTable& table)
        : m_connection(connection), m_table(table)
    {
    }

    std::optional<StoredDocument> find(const std::string& id) const override;
    std::uint64_t count(const DocumentQuery& query) const override;
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
