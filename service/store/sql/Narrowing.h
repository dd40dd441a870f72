#pragma once

#include "query/Where.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace monitorservice {

/// What the column of a NarrowableField holds. Compared in SQLite's BINARY collation.
enum class FieldKind
{
    /// The text at the path. NULL when the member is missing or null.
    Text,

    /// The milliseconds (Timestamp::milliseconds) of the timestamp at the path, an integer. NULL when the
    /// member
    /// is missing or null.
    Time,

    /// Not a column but a condition with `{}` where the list of wanted texts belongs, true when the path
    /// reaches
    /// one of them, such as `EXISTS (SELECT 1 FROM json_each(document, '$.alarmTo') WHERE value IN ({}))`. It
    /// may be
    /// true too often, never too seldom.
    TextSet,
};

/// A path that SQL can answer for.
struct NarrowableField
{
    std::string path;

    /// SQL: the column (or for TextSet the condition). Taken as it is, so never from a request.
    std::string sql;

    FieldKind kind = FieldKind::Text;

    /// What the store promises of the documents.
    ///
    /// True: in every document the path reaches at most one value, and that is a text without U+0000 (for
    /// Time: a full timestamp) or null. Only then can narrowing be exact, and only then may the path have
    /// dots. A CHECK constraint can keep this promise: `CHECK (typeof(name) <> 'blob')`.
    ///
    /// False: where the document holds something else (a number, a list, a text with U+0000, for Time any
    /// other text), the column holds the empty blob `x''`, and such rows are always selected.
    /// generatedTextColumn() writes such a column.
    bool uniform = false;
};

using SqlValue = std::variant<std::int64_t, double, std::string>;

/// A pattern and the column whose text it is to be found in.
struct ColumnPattern
{
    std::string sql; ///< SQL: the column
    std::shared_ptr<const Pattern> pattern;
};

/// A condition for an SQL WHERE that selects every row whose document matches, and perhaps more.
struct Narrowing
{
    /// With a `?` for each of the values, in order; "1" when there is nothing to narrow by.
    std::string sql = "1";

    std::vector<SqlValue> values;

    /// The condition selects exactly the rows that match: counting and paging can be left to SQL. Otherwise
    /// the matcher must see each row, unless there are patterns.
    bool exact = true;

    /// Not exact, but what is left are patterns on uniform columns of texts: of the selected rows those match
    /// in whose columns all of these are found; NULL has none. Empty when other conditions are left, too.
    std::vector<ColumnPattern> patterns;
};

Narrowing narrow(const Where& where, const std::vector<NarrowableField>& fields);

/// The SQL expression of a generated column that keeps the promise of FieldKind::Text, not uniform, for the
/// top-level member `member` of the JSON text column `documentColumn`, whatever the documents hold.
std::string generatedTextColumn(std::string_view documentColumn, std::string_view member);

} // namespace monitorservice
