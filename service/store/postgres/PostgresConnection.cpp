#include "store/postgres/PostgresConnection.h"

#include <array>
#include <cstdint>
#include <utility>
#include <variant>

namespace monitorservice {

namespace {

// Statements that are kept: those of the store itself and many of queries. When there are more, all of them
// are prepared anew, as nothing tells which ones will be used again.
constexpr std::size_t mostPrepared = 500;

constexpr int binary = 1;

std::string trimmed(const char* message)
{
    std::string text = message == nullptr ? "" : message;
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

bool isOneOf(std::string_view state, std::initializer_list<std::string_view> states)
{
    for (const std::string_view one : states) {
        if (state == one) {
            return true;
        }
    }
    return false;
}

// What an error means (https://www.postgresql.org/docs/15/errcodes-appendix.html).
StoreFailure failureOf(std::string_view state)
{
    const std::string_view kind = state.substr(0, 2);
    // Unique, foreign key, check; deadlocks and waits that were given up.
    if (isOneOf(state, {"23505", "23503", "23514"})) {
        return StoreFailure::Conflict;
    }
    if (isOneOf(state, {"55P03", "40P01", "40001", "57014"})) {
        return StoreFailure::Busy;
    }
    if (state == "53100") {
        return StoreFailure::Full;
    }
    // Read-only: a standby, or a primary that has become one.
    if (state == "25006") {
        return StoreFailure::NotWritable;
    }
    if (kind == "08" || kind == "53" || isOneOf(state, {"57P01", "57P02", "57P03"})) {
        return StoreFailure::Unreachable;
    }
    return kind == "58" || kind == "XX" ? StoreFailure::InputOutput : StoreFailure::Internal;
}

struct FreeOptions
{
    void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};

} // namespace

PostgresValues valuesOf(const Sql& sql)
{
    PostgresValues values;
    for (const SqlValue& value : sql.values()) {
        std::visit([&values](const auto& one) { values.add(one); }, value);
    }
    return values;
}

std::string placeOf(const std::string& url)
{
    char* message = nullptr;
    const std::unique_ptr<PQconninfoOption, FreeOptions> options(PQconninfoParse(url.c_str(), &message));
    PQfreemem(message); // may quote the password
    std::string host;
    std::string port;
    std::string database;
    for (const PQconninfoOption* one = options.get(); one != nullptr && one->keyword != nullptr; ++one) {
        const std::string_view keyword = one->keyword;
        const std::string value = one->val == nullptr ? "" : one->val;
        if (keyword == "host") {
            host = value;
        } else if (keyword == "port") {
            port = value;
        } else if (keyword == "dbname") {
            database = value;
        }
    }
    return "postgresql://" + host + (port.empty() ? "" : ":" + port) + "/" + database;
}

PostgresConnection::PostgresConnection(const std::string& url) : m_place(placeOf(url))
{
    // What stands behind the address takes the place of what it says.
    constexpr std::array keywords{"dbname", "client_encoding", "application_name", "connect_timeout",
                                  static_cast<const char*>(nullptr)};
    const std::array values{url.c_str(), "UTF8", "monitor-service", "10", static_cast<const char*>(nullptr)};
    constexpr int addressInName = 1;
    m_connection.reset(PQconnectdbParams(keywords.data(), values.data(), addressInName));
    if (!isConnected()) {
        throw lost();
    }
    // Compiling a statement takes longer than nearly all of them do, and cursors are read to their end.
    execute("SET jit = off; SET cursor_tuple_fraction = 1");
    // Otherwise messages of the database would be written to the standard error.
    PQsetNoticeProcessor(
        m_connection.get(), [](void*, const char*) {}, nullptr);
}

PostgresResult PostgresConnection::run(const Sql& sql)
{
    return runPrepared(sql.text(postgresDialect), valuesOf(sql));
}

PostgresResult PostgresConnection::runOnce(const std::string& sql, const PostgresValues& values)
{
    refuseWhileShowing();
    return checked(PQexecParams(m_connection.get(), sql.c_str(), values.count(), nullptr,
                                values.pointers().data(), values.lengths().data(), values.formats().data(),
                                binary));
}

PostgresResult PostgresConnection::runPrepared(std::string_view sql, const PostgresValues& values)
{
    refuseWhileShowing();
    const std::string& name = prepared(sql);
    return checked(PQexecPrepared(m_connection.get(), name.c_str(), values.count(), values.pointers().data(),
                                  values.lengths().data(), values.formats().data(), binary));
}

void PostgresConnection::execute(const std::string& sql)
{
    refuseWhileShowing();
    checked(PQexec(m_connection.get(), sql.c_str()));
}

bool PostgresConnection::isConnected() const
{
    return PQstatus(m_connection.get()) == CONNECTION_OK;
}

bool PostgresConnection::isInTransaction() const
{
    return PQtransactionStatus(m_connection.get()) != PQTRANS_IDLE;
}

bool PostgresConnection::isInWorkingTransaction() const
{
    return PQtransactionStatus(m_connection.get()) == PQTRANS_INTRANS;
}

int PostgresConnection::serverVersion() const
{
    return PQserverVersion(m_connection.get());
}

std::string PostgresConnection::parameter(const char* name) const
{
    const char* const value = PQparameterStatus(m_connection.get(), name);
    return value == nullptr ? "" : value;
}

const std::string& PostgresConnection::prepared(std::string_view sql)
{
    std::string text(sql);
    const auto found = m_prepared.find(text);
    if (found != m_prepared.end()) {
        return found->second;
    }
    if (m_prepared.size() >= mostPrepared) {
        checked(PQexec(m_connection.get(), "DEALLOCATE ALL"));
        m_prepared.clear();
    }
    std::string name = "s" + std::to_string(++m_named);
    checked(PQprepare(m_connection.get(), name.c_str(), text.c_str(), 0, nullptr));
    return m_prepared.emplace(std::move(text), std::move(name)).first->second;
}

PostgresResult PostgresConnection::checked(PGresult* result) const
{
    PostgresResult owned(result);
    const ExecStatusType status = PQresultStatus(result);
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK) {
        return owned;
    }
    if (!isConnected()) {
        throw lost();
    }
    const char* const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    throw StoreError(failureOf(state == nullptr ? "" : state),
                     m_place + ": " + trimmed(PQresultErrorMessage(result)));
}

void PostgresConnection::refuseWhileShowing() const
{
    if (m_isShowing) {
        throw StoreError(StoreFailure::Internal, "a visitor has called into the session that it visits");
    }
}

StoreError PostgresConnection::lost() const
{
    return {StoreFailure::Unreachable, m_place + ": " + trimmed(PQerrorMessage(m_connection.get()))};
}

} // namespace monitorservice
