#include "store/sql/Sql.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace monitorservice {

namespace {

std::int64_t sqlNumber(std::uint64_t number)
{
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(number, largest));
}

} // namespace

Sql::Sql(std::string_view text) : m_last(text) {}

Sql Sql::isOneOf(const Sql& column, const std::vector<SqlValue>& values)
{
    if (values.empty()) {
        return "FALSE";
    }
    Sql sql = column;
    const char* separator = " IN (";
    for (const SqlValue& value : values) {
        sql.append(separator).appendValue(value);
        separator = ", ";
    }
    return sql.append(")");
}

Sql Sql::page(std::uint64_t skip, std::uint64_t limit)
{
    return Sql("LIMIT ").appendValue(sqlNumber(limit)).append(" OFFSET ").appendValue(sqlNumber(skip));
}

Sql& Sql::append(const Sql& more)
{
    if (more.m_values.empty()) {
        m_last += more.m_last;
        return *this;
    }
    m_before.push_back(m_last + more.m_before.front());
    m_before.insert(m_before.end(), more.m_before.begin() + 1, more.m_before.end());
    m_values.insert(m_values.end(), more.m_values.begin(), more.m_values.end());
    m_last = more.m_last;
    return *this;
}

Sql& Sql::appendValue(SqlValue value)
{
    m_before.push_back(std::exchange(m_last, {}));
    m_values.push_back(std::move(value));
    return *this;
}

Sql& Sql::andAlso(const Sql& condition)
{
    return isEmpty() ? append(condition) : append(" AND ").append(condition);
}

std::string Sql::text(const Dialect& dialect) const
{
    std::string text;
    for (std::size_t place = 0; place < m_before.size(); ++place) {
        text += m_before[place] + dialect.placeholder(place + 1);
    }
    return text + m_last;
}

bool Sql::operator==(const Sql& other) const
{
    return m_last == other.m_last && m_before == other.m_before && m_values == other.m_values;
}

} // namespace monitorservice
