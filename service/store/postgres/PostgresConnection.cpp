#include "store/postgres/PostgresConnection.h"

#include "store/postgres/SocketWait.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <variant>

namespace monitorservice {

namespace {

// Statements that are kept: those of the store itself and many of queries. When there are more, all of them
// are prepared anew, as nothing tells which ones will be used again.
constexpr std::size_t mostPrepared = 500;

// Statements that are sent before those before them are waited for.
constexpr std::size_t mostPosted = 1000;

constexpr int binary = 1;

// libpq's messages have lines, each of them indented but for the first.
std::string inOneLine(const char* message)
{
    std::string text;
    for (const char c : std::string_view(message == nullptr ? "" : message)) {
        const bool isSpace = c == '\n' || c == '\t' || c == ' ';
        if (!isSpace) {
            text += c;
        } else if (!text.empty() && text.back() != ' ') {
            text += ' ';
        }
    }
    if (!text.empty() && text.back() == ' ') {
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

// Tells a statement with its values from all others.
std::string keyOf(std::string_view sql, const PostgresValues& values)
{
    std::string key(sql);
    values.appendTo(key);
    return key;
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

PostgresConnection::PostgresConnection(const std::string& url, std::chrono::milliseconds patience)
    : m_place(placeOf(url)), m_patience(patience)
{
    // What stands before the address is what it may say otherwise: of several hosts the primary is meant, and
    // one that has gone without a word is noticed within half a minute. What stands behind it holds whatever
    // it says.
    constexpr std::array keywords{"target_session_attrs",
                                  "connect_timeout",
                                  "tcp_user_timeout",
                                  "keepalives_idle",
                                  "keepalives_interval",
                                  "keepalives_count",
                                  "dbname",
                                  "client_encoding",
                                  "application_name",
                                  static_cast<const char*>(nullptr)};
    const std::array values{"read-write",
                            "10",
                            "20000",
                            "10",
                            "5",
                            "3",
                            url.c_str(),
                            "UTF8",
                            "monitor-service",
                            static_cast<const char*>(nullptr)};
    constexpr int addressInName = 1;
    m_connection.reset(PQconnectdbParams(keywords.data(), values.data(), addressInName));
    if (!isConnected()) {
        throw lost();
    }
    // So that a server that takes nothing does not hold the sender up for ever.
    PQsetnonblocking(m_connection.get(), 1);
    PQsetNoticeReceiver(m_connection.get(), keepWarning, this);
    // Compiling a statement takes longer than nearly all of them do, and cursors are read to their end.
    execute("SET jit = off; SET cursor_tuple_fraction = 1");
}

PostgresResult PostgresConnection::run(const Sql& sql)
{
    return runPrepared(sql.text(postgresDialect), valuesOf(sql));
}

PostgresResult PostgresConnection::runOnce(const std::string& sql, const PostgresValues& values)
{
    beReady();
    forgetUnlessReading(sql);
    return answer(PQsendQueryParams(m_connection.get(), sql.c_str(), values.count(), nullptr,
                                    values.pointers().data(), values.lengths().data(),
                                    values.formats().data(), binary));
}

PostgresResult PostgresConnection::runPrepared(std::string_view sql, const PostgresValues& values)
{
    beReady();
    if (std::optional<PostgresResult> expected = takeExpected(sql, values)) {
        return std::move(*expected);
    }
    forgetUnlessReading(sql);
    const std::string& name = prepared(sql);
    return answer(PQsendQueryPrepared(m_connection.get(), name.c_str(), values.count(),
                                      values.pointers().data(), values.lengths().data(),
                                      values.formats().data(), binary));
}

void PostgresConnection::postPrepared(std::string_view sql, const PostgresValues& values)
{
    beReady();
    forgetUnlessReading(sql);
    sendLater(sql, values, {});
}

void PostgresConnection::expectPrepared(std::string_view sql, const PostgresValues& values)
{
    beReady();
    sendLater(sql, values, keyOf(sql, values));
}

void PostgresConnection::settle()
{
    beReady();
    if (!m_posted.empty()) {
        PostgresResult answer = answerOfPosted();
        if (!answer.isNothing()) {
            checked(std::move(answer));
        }
    }
}

PostgresResult PostgresConnection::execute(const std::string& sql)
{
    settle();
    forgetExpected();
    return answer(PQsendQuery(m_connection.get(), sql.c_str()));
}

void PostgresConnection::rollBack()
{
    try {
        settle();
    } catch (const StoreError&) {
        if (!isConnected()) {
            throw;
        }
        // It goes with all the others.
    }
    forgetExpected();
    if (PQtransactionStatus(m_connection.get()) != PQTRANS_IDLE) {
        execute("ROLLBACK");
    }
}

void PostgresConnection::leave()
{
    if (!m_posted.empty() || PQtransactionStatus(m_connection.get()) != PQTRANS_INTRANS) {
        rollBack();
        return;
    }
    forgetExpected();
    m_isLeaving = PQsendQuery(m_connection.get(), "ROLLBACK") != 0 && PQflush(m_connection.get()) >= 0;
    if (!m_isLeaving) {
        throw lost();
    }
}

void PostgresConnection::commit(std::chrono::milliseconds patience)
{
    // The server answers a COMMIT of what has failed with ROLLBACK, which is no error to it.
    if (isConnected() && !isInWorkingTransaction()) {
        throw StoreError(StoreFailure::Internal, "a session that has failed cannot be committed");
    }
    const std::chrono::milliseconds usual = std::exchange(m_patience, patience);
    m_warning.clear();
    try {
        runOnce("COMMIT", {});
    } catch (const StoreError& error) {
        if (!m_connection) { // given up
            throw StoreError(StoreFailure::Unacknowledged, error.what());
        }
        throw;
    }
    m_patience = usual;
    if (!m_warning.empty()) {
        throw StoreError(StoreFailure::Unacknowledged, m_place + ": " + m_warning);
    }
}

bool PostgresConnection::isConnected() const
{
    return PQstatus(m_connection.get()) == CONNECTION_OK;
}

bool PostgresConnection::isInWorkingTransaction() const
{
    return !m_posted.empty() || PQtransactionStatus(m_connection.get()) == PQTRANS_INTRANS;
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
    settle(); // what fails would leave a statement that was never prepared
    if (m_prepared.size() >= mostPrepared) {
        execute("DEALLOCATE ALL");
        m_prepared.clear();
    }
    std::string name = "s" + std::to_string(++m_named);
    answer(PQsendPrepare(m_connection.get(), name.c_str(), text.c_str(), 0, nullptr));
    return m_prepared.emplace(std::move(text), std::move(name)).first->second;
}

// Of several statements the last one's, or that of the first one that failed, after which none is run.
PostgresResult PostgresConnection::answer(int isSent)
{
    if (isSent == 0) {
        throw lost();
    }
    if (!m_posted.empty()) {
        return checked(answerOfPosted());
    }
    ++m_waits;
    return checked(lastAnswer());
}

PostgresResult PostgresConnection::lastAnswer()
{
    send();
    PostgresResult last(nullptr);
    for (;;) {
        receive();
        PostgresResult next(PQgetResult(m_connection.get()));
        if (next.isNothing()) {
            return last;
        }
        last = std::move(next);
    }
}

// Of the statement sent last that is not expected, or of the first one that failed, after which none is run
// (https://www.postgresql.org/docs/15/libpq-pipeline-mode.html).
PostgresResult PostgresConnection::answerOfPosted()
{
    std::vector<std::string> keys = std::exchange(m_posted, {});
    ++m_waits;
    if (PQpipelineSync(m_connection.get()) == 0) {
        throw lost();
    }
    send();
    PostgresResult last(nullptr);
    bool hasFailed = false;
    std::size_t place = 0;
    for (;;) {
        receive();
        PostgresResult next(PQgetResult(m_connection.get()));
        if (next.isNothing()) {
            // Between two statements; for ever when the connection is lost.
            if (!isConnected()) {
                throw lost();
            }
            continue;
        }
        if (next.status() == PGRES_PIPELINE_SYNC) {
            break;
        }
        const std::string key = place < keys.size() ? std::move(keys[place]) : std::string();
        ++place;
        if (hasFailed) {
            continue;
        }
        hasFailed = next.status() == PGRES_FATAL_ERROR;
        if (hasFailed || key.empty()) {
            last = std::move(next);
        } else {
            m_expected.insert_or_assign(key, std::move(next));
        }
    }
    PQexitPipelineMode(m_connection.get());
    return last;
}

void PostgresConnection::sendLater(std::string_view sql, const PostgresValues& values, std::string key)
{
    if (m_posted.size() >= mostPosted) {
        settle();
    }
    const std::string& name = prepared(sql);
    const bool isSent =
        (!m_posted.empty() || PQenterPipelineMode(m_connection.get()) != 0) &&
        PQsendQueryPrepared(m_connection.get(), name.c_str(), values.count(), values.pointers().data(),
                            values.lengths().data(), values.formats().data(), binary) != 0;
    if (!isSent) {
        throw lost();
    }
    m_posted.push_back(std::move(key));
}

std::optional<PostgresResult> PostgresConnection::takeExpected(std::string_view sql,
                                                               const PostgresValues& values)
{
    const bool isComing =
        std::any_of(m_posted.begin(), m_posted.end(), [](const std::string& key) { return !key.empty(); });
    if (!isComing && m_expected.empty()) {
        return std::nullopt;
    }
    const std::string key = keyOf(sql, values);
    if (std::find(m_posted.begin(), m_posted.end(), key) != m_posted.end()) {
        settle();
    }
    const auto found = m_expected.find(key);
    if (found == m_expected.end()) {
        return std::nullopt;
    }
    PostgresResult result = std::move(found->second);
    m_expected.erase(found);
    return result;
}

void PostgresConnection::forgetExpected()
{
    m_expected.clear();
    std::fill(m_posted.begin(), m_posted.end(), std::string());
}

void PostgresConnection::forgetUnlessReading(std::string_view sql)
{
    constexpr std::string_view reading = "SELECT ";
    if (sql.substr(0, reading.size()) != reading) {
        forgetExpected();
    }
}

// Most often the answer has long been there.
void PostgresConnection::finishLeaving()
{
    if (std::exchange(m_isLeaving, false)) {
        const PostgresResult end = lastAnswer();
        if (end.status() != PGRES_COMMAND_OK) {
            throw lost();
        }
    }
}

void PostgresConnection::send()
{
    for (;;) {
        const int left = PQflush(m_connection.get());
        if (left <= 0) {
            return; // of a failure the answer tells
        }
        awaitServer(true);
        PQconsumeInput(m_connection.get());
    }
}

void PostgresConnection::receive()
{
    while (PQisBusy(m_connection.get()) != 0) {
        awaitServer(false);
        if (PQconsumeInput(m_connection.get()) == 0) {
            return; // likewise
        }
    }
}

void PostgresConnection::awaitServer(bool alsoToWrite)
{
    if (waitForSocket(PQsocket(m_connection.get()), alsoToWrite, m_patience)) {
        return;
    }
    m_connection.reset();
    throw StoreError(StoreFailure::Unreachable,
                     m_place + ": no answer within " + std::to_string(m_patience.count()) + " ms");
}

PostgresResult PostgresConnection::checked(PostgresResult result) const
{
    const ExecStatusType status = result.status();
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK) {
        return result;
    }
    if (!isConnected()) {
        throw lost();
    }
    throw StoreError(failureOf(result.errorField(PG_DIAG_SQLSTATE)),
                     m_place + ": " + inOneLine(result.errorMessage()));
}

// For the next statement.
void PostgresConnection::beReady()
{
    if (m_isShowing) {
        throw StoreError(StoreFailure::Internal, "a visitor has called into the session that it visits");
    }
    finishLeaving();
}

StoreError PostgresConnection::lost() const
{
    const std::string why =
        m_connection ? inOneLine(PQerrorMessage(m_connection.get())) : "the connection was given up";
    return {StoreFailure::Unreachable, m_place + ": " + why};
}

// Called with everything that the server has to say besides answers; without this libpq writes it to the
// standard error.
void PostgresConnection::keepWarning(void* connection, const PGresult* notice)
{
    const char* const severity = PQresultErrorField(notice, PG_DIAG_SEVERITY_NONLOCALIZED);
    if (severity != nullptr && std::string_view(severity) == "WARNING") {
        static_cast<PostgresConnection*>(connection)->m_warning = inOneLine(PQresultErrorMessage(notice));
    }
}

} // namespace monitorservice
