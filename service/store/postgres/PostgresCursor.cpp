#include "store/postgres/PostgresCursor.h"

namespace monitorservice {

namespace {

constexpr int rowsAtOnce = 500;

// A page of documents.
constexpr std::uint64_t few = 1000;

// Most have few rows, whatever their limit. The plan of a cursor is made anew each time, which takes longer
// than to see that.
std::string selectFirst(const std::string& query, std::uint64_t limit)
{
    return limit <= few
               ? query
               : "SELECT * FROM (" + query + ") AS first_rows LIMIT " + std::to_string(rowsAtOnce + 1);
}

} // namespace

PostgresCursor::PostgresCursor(PostgresConnection& connection, const Sql& query, std::uint64_t limit)
    : PostgresCursor(connection, query.text(postgresDialect), valuesOf(query), limit)
{
}

PostgresCursor::PostgresCursor(PostgresConnection& connection, const std::string& query,
                               const PostgresValues& values, std::uint64_t limit)
    : m_connection(connection)
{
    m_rows.emplace(connection.runPrepared(selectFirst(query, limit), values));
    if (limit <= few || m_rows->rows() <= rowsAtOnce) {
        m_isAtEnd = true;
        return;
    }
    m_rows.reset();
    m_name = connection.newCursorName();
    connection.runOnce("DECLARE " + m_name + " NO SCROLL CURSOR FOR " + query, values);
}

void PostgresCursor::expect(PostgresConnection& connection, const Sql& query, std::uint64_t limit)
{
    connection.expectPrepared(selectFirst(query.text(postgresDialect), limit), valuesOf(query));
}

PostgresCursor::~PostgresCursor()
{
    if (!m_name.empty() && m_connection.isInWorkingTransaction()) {
        try {
            m_connection.execute("CLOSE " + m_name);
        } catch (const StoreError&) {
            // The next statement of the session fails as well, and says so.
        }
    }
}

bool PostgresCursor::next()
{
    ++m_row;
    if (m_rows && m_row < m_rows->rows()) {
        return true;
    }
    if (m_isAtEnd) {
        return false;
    }
    m_rows.emplace(m_connection.runOnce("FETCH " + std::to_string(rowsAtOnce) + " FROM " + m_name, {}));
    m_isAtEnd = m_rows->rows() < rowsAtOnce;
    m_row = 0;
    return m_rows->rows() > 0;
}

} // namespace monitorservice
