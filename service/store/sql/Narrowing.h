#pragma once

#include "query/Where.h"
#include "store/sql/Sql.h"

#include <memory>
#include <string>
#include <vector>

namespace monitorservice {

/// What the column of a NarrowableField holds.
enum class FieldKind
{
    /// The text at the path. NULL when the member is missing or null.
    Text,

    /// The milliseconds (Timestamp::milliseconds) of the timestamp at the path, an integer. NULL when the
    /// member is missing or null.
    Time,
};

/// A path that SQL can answer for. In every document it reaches at most one value, and that is a text without
/// U+0000 (for Time: a full timestamp) or null.
struct NarrowableField
{
    std::string path;
    std::string column;
    FieldKind kind = FieldKind::Text;
};

/// A pattern and the column whose text it is to be found in.
struct ColumnPattern
{
    std::string column;
    std::shared_ptr<const Pattern> pattern;
};

/// A condition for an SQL WHERE that selects every row whose document matches, and perhaps more.
struct Narrowing
{
    /// TRUE when there is nothing to narrow by.
    Sql condition = "TRUE";

    /// The condition selects exactly the rows that match: counting and paging can be left to SQL. Otherwise
    /// the matcher must see each row, unless there are patterns.
    bool exact = true;

    /// Not exact, but what is left are patterns on columns of texts: of the selected rows those match in
    /// whose columns all of these are found; NULL has none. Empty when other conditions are left, too.
    std::vector<ColumnPattern> patterns;
};

Narrowing narrow(const Where& where, const std::vector<NarrowableField>& fields, const Dialect& dialect);

} // namespace monitorservice
