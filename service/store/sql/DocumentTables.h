#pragma once

#include "domain/DocumentKind.h"
#include "store/sql/Dialect.h"
#include "store/sql/Narrowing.h"
#include "store/sql/Ordering.h"

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
DocumentTable documentTable(DocumentKind kind, const Dialect& dialect);

} // namespace monitorservice
