#pragma once

#include "store/sql/Dialect.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace monitorservice {

using SqlValue = std::variant<std::int64_t, double, std::string>;

/// A piece of SQL together with the values bound in it. Pieces are put together in any order: placeholders
/// are written last, where each stands then.
///
/// The text is taken as it is, so never from a request; whatever is from a request is a value.
class Sql
{
public:
    Sql() = default;
    Sql(std::string_view text); // a text is a piece of SQL without values
    Sql(const char* text) : Sql(std::string_view(text)) {}
    Sql(const std::string& text) : Sql(std::string_view(text)) {}

    /// `column IN (…)`; FALSE when there are no values.
    static Sql isOneOf(const Sql& column, const std::vector<SqlValue>& values);
    /// `LIMIT … OFFSET …`; numbers beyond those of SQL mean the largest one.
    static Sql page(std::uint64_t skip, std::uint64_t limit);

    Sql& append(const Sql& more);
    Sql& appendValue(SqlValue value);
    /// Appends ` AND ` and the condition; the condition alone where nothing stands yet.
    Sql& andAlso(const Sql& condition);

    bool isEmpty() const { return m_values.empty() && m_last.empty(); }

    std::string text(const Dialect& dialect) const;
    /// In the order of the placeholders.
    const std::vector<SqlValue>& values() const { return m_values; }

    bool operator==(const Sql& other) const;
    bool operator!=(const Sql& other) const { return !(*this == other); }

private:
    std::vector<std::string> m_before; ///< the text before each value
    std::vector<SqlValue> m_values;
    std::string m_last; ///< the text after the last one
};

} // namespace monitorservice
