#pragma once

#include "store/postgres/PostgresConnection.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace monitorservice {

/// The rows of a query one after another, however many there are: they are fetched some hundreds at a time,
/// but for few all at once. Several may be open at a time. Within a transaction.
class PostgresCursor
{
public:
    /// The query gives no more than `limit` rows.
    PostgresCursor(PostgresConnection& connection, const std::string& query, const PostgresValues& values,
                   std::uint64_t limit = std::numeric_limits<std::uint64_t>::max());
    PostgresCursor(PostgresConnection& connection, const Sql& query,
                   std::uint64_t limit = std::numeric_limits<std::uint64_t>::max());
    /// Sends for the first rows of what will be such a cursor, as PostgresConnection::expect().
    static void expect(PostgresConnection& connection, const Sql& query,
                       std::uint64_t limit = std::numeric_limits<std::uint64_t>::max());
    /// Closes it, unless the transaction is over or has failed.
    ~PostgresCursor();
    PostgresCursor(const PostgresCursor&) = delete;
    PostgresCursor& operator=(const PostgresCursor&) = delete;

    /// Goes to the next row; false when there is none.
    bool next();

    bool isNull(int column) const { return m_rows->isNull(m_row, column); }
    std::int64_t integer(int column) const { return m_rows->integer(m_row, column); }
    double real(int column) const { return m_rows->real(m_row, column); }
    /// Valid until the next row.
    std::string_view view(int column) const { return m_rows->view(m_row, column); }
    std::string text(int column) const { return m_rows->text(m_row, column); }
    std::optional<std::int64_t> optionalInteger(int column) const
    {
        return m_rows->optionalInteger(m_row, column);
    }

private:
    PostgresConnection& m_connection;
    std::string m_name; ///< empty when all rows were fetched at once
    std::optional<PostgresResult> m_rows;
    int m_row = -1;
    bool m_isAtEnd = false;
};

} // namespace monitorservice
