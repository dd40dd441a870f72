#include "store/sqlite/SqliteConnection.h"

#include <sqlite3.h>

#include <limits>
#include <utility>
#include <variant>

namespace monitorservice {

namespace {

// Conditions give statements of many forms; beyond this number the cache starts anew.
constexpr std::size_t largestStatementCache = 200;

// Failures of input and output that leave what is held to be read
// (https://www.sqlite.org/rescode.html#extended_result_code_list).
bool isFailedWrite(int extendedCode)
{
    return extendedCode == SQLITE_IOERR_WRITE || extendedCode == SQLITE_IOERR_FSYNC ||
           extendedCode == SQLITE_IOERR_DIR_FSYNC || extendedCode == SQLITE_IOERR_TRUNCATE ||
           extendedCode == SQLITE_IOERR_DELETE;
}

StoreFailure failureOf(int extendedCode)
{
    if (extendedCode == SQLITE_IOERR_SHMSIZE) {
        // The index of the log cannot grow.
        return StoreFailure::Full;
    }
    switch (extendedCode & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StoreFailure::Busy;
    case SQLITE_FULL:
        return StoreFailure::Full;
    case SQLITE_READONLY:
        return StoreFailure::NotWritable;
    case SQLITE_IOERR:
        return isFailedWrite(extendedCode) ? StoreFailure::NotWritable : StoreFailure::InputOutput;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_PROTOCOL:
    case SQLITE_CANTOPEN:
        return StoreFailure::InputOutput;
    case SQLITE_CONSTRAINT:
        return StoreFailure::Conflict;
    default:
        return StoreFailure::Internal;
    }
}

template <typename Action>
auto translated(Action&& action)
{
    try {
        return action();
    } catch (const SQLite::Exception& error) {
        throw storeError(error);
    }
}

SQLite::Database open(const std::filesystem::path& file, SqliteConnection::Access access,
                      std::chrono::milliseconds patience)
{
    const int mode =
        access == SqliteConnection::Access::Write ? SQLite::OPEN_READWRITE : SQLite::OPEN_READONLY;
    // Otherwise every allocation takes a lock of the whole process, to keep statistics that nobody reads.
    // Refused, without harm, once SQLite is in use.
    static const int withoutStatistics = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    static_cast<void>(withoutStatistics);
    return translated([&] {
        return SQLite::Database(file.u8string(), mode | SQLite::OPEN_NOMUTEX,
                                static_cast<int>(patience.count()));
    });
}

} // namespace

StoreError storeError(const SQLite::Exception& error)
{
    // Negative when the error did not come from a database, but from what was asked of it.
    const int extendedCode =
        error.getExtendedErrorCode() >= 0 ? error.getExtendedErrorCode() : error.getErrorCode();
    // "disk I/O error" alone does not say what the disk was asked for.
    const bool isVague = (extendedCode & 0xff) == SQLITE_IOERR;
    const std::string code = isVague ? " (SQLite result code " + std::to_string(extendedCode) + ")" : "";
    return {failureOf(extendedCode), error.what() + code};
}

SqliteStatement::SqliteStatement(SqliteConnection& connection, std::unique_ptr<SQLite::Statement> statement)
    : m_connection(&connection), m_statement(std::move(statement))
{
}

SqliteStatement::~SqliteStatement()
{
    if (m_statement != nullptr) {
        m_connection->keep(std::move(m_statement));
    }
}

void SqliteStatement::bindNext(std::int64_t value)
{
    translated([&] { m_statement->bind(++m_bound, value); });
}

void SqliteStatement::bindNext(double value)
{
    translated([&] { m_statement->bind(++m_bound, value); });
}

void SqliteStatement::bindNext(const std::string& value)
{
    translated([&] { m_statement->bind(++m_bound, value); });
}

void SqliteStatement::bindNext(const std::optional<std::int64_t>& value)
{
    translated([&] { value ? m_statement->bind(++m_bound, *value) : m_statement->bind(++m_bound); });
}

void SqliteStatement::bindNext(const std::optional<std::string>& value)
{
    translated([&] { value ? m_statement->bind(++m_bound, *value) : m_statement->bind(++m_bound); });
}

void SqliteStatement::bindBlob(std::string_view bytes)
{
    translated([&] { m_statement->bind(++m_bound, bytes.data(), static_cast<int>(bytes.size())); });
}

bool SqliteStatement::step()
{
    return translated([&] { return m_statement->executeStep(); });
}

int SqliteStatement::run()
{
    return translated([&] { return m_statement->exec(); });
}

bool SqliteStatement::isNull(int column) const
{
    return m_statement->isColumnNull(column);
}

std::int64_t SqliteStatement::integer(int column) const
{
    return m_statement->getColumn(column).getInt64();
}

double SqliteStatement::real(int column) const
{
    return m_statement->getColumn(column).getDouble();
}

std::string SqliteStatement::text(int column) const
{
    return std::string(view(column));
}

std::string_view SqliteStatement::view(int column) const
{
    const SQLite::Column value = m_statement->getColumn(column);
    const char* const text = value.getText();
    return {text, static_cast<std::size_t>(value.getBytes())};
}

std::optional<std::int64_t> SqliteStatement::optionalInteger(int column) const
{
    return isNull(column) ? std::nullopt : std::optional(integer(column));
}

std::optional<std::string> SqliteStatement::optionalText(int column) const
{
    return isNull(column) ? std::nullopt : std::optional(text(column));
}

SqliteConnection::SqliteConnection(const std::filesystem::path& file, Access access,
                                   std::chrono::milliseconds patience)
    : m_database(open(file, access, patience))
{
    execute("PRAGMA foreign_keys = ON");
    // With the write-ahead log, FULL is what makes a commit survive a loss of power.
    execute("PRAGMA synchronous = FULL");
    if (access == Access::Write) {
        // A delivery to many points changes many pages; those that do not fit are written before their last
        // change.
        execute("PRAGMA cache_size = -32000");
    }
}

SqliteStatement SqliteConnection::statement(std::string_view sql)
{
    if (m_isShowing) {
        throw StoreError(StoreFailure::Internal, "a visitor called into the session that it visits");
    }
    if (auto idle = m_idle.extract(sql)) {
        return {*this, std::move(idle.mapped())};
    }
    return translated([&] {
        return SqliteStatement(*this, std::make_unique<SQLite::Statement>(m_database, std::string(sql)));
    });
}

SqliteStatement SqliteConnection::bound(const Sql& sql)
{
    SqliteStatement bound = statement(sql.text(sqliteDialect));
    for (const SqlValue& value : sql.values()) {
        std::visit([&bound](const auto& one) { bound.bindNext(one); }, value);
    }
    return bound;
}

void SqliteConnection::keep(std::unique_ptr<SQLite::Statement> statement)
{
    if (m_idle.size() >= largestStatementCache) {
        m_idle.clear();
    }
    // The error that tryReset repeats was reported by the step that met it.
    statement->tryReset();
    statement->clearBindings();
    // Of two with the same text the first stays, as its text is the key.
    m_idle.try_emplace(statement->getQuery(), std::move(statement));
}

void SqliteConnection::execute(const std::string& sql)
{
    translated([&] { m_database.exec(sql); });
}

std::int64_t SqliteConnection::integer(const std::string& sql)
{
    return translated([&] { return m_database.execAndGet(sql).getInt64(); });
}

} // namespace monitorservice
