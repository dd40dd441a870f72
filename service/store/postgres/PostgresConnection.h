#pragma once

#include "store/StoreError.h"
#include "store/postgres/PostgresResult.h"
#include "store/postgres/PostgresValues.h"
#include "store/sql/Sql.h"

#include <libpq-fe.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace monitorservice {

constexpr Dialect postgresDialect{
    true, {}, "depth_number", "json_array_elements_text", false, true,
};

/// One connection to a database, for one thread at a time. Every member throws StoreError: with
/// StoreFailure::Unreachable when the connection is lost or nothing comes from the server for longer than the
/// patience, after which it is of no use any more.
class PostgresConnection
{
public:
    /// Connects to "postgresql://…". Throws StoreError with StoreFailure::Unreachable; the message names the
    /// server and the database, and no password.
    explicit PostgresConnection(const std::string& url,
                                std::chrono::milliseconds patience = std::chrono::minutes(2));
    PostgresConnection(const PostgresConnection&) = delete;
    PostgresConnection& operator=(const PostgresConnection&) = delete;
    ~PostgresConnection() = default;

    /// From now on.
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }

    /// Runs a statement, prepared once and kept for the next use, with values for $1, $2, …
    template <typename... Values>
    PostgresResult run(std::string_view sql, const Values&... values)
    {
        PostgresValues bound;
        (bound.add(values), ...);
        return runPrepared(sql, bound);
    }
    /// The same of a piece of SQL with its values.
    PostgresResult run(const Sql& sql);
    PostgresResult runPrepared(std::string_view sql, const PostgresValues& values);

    /// The same without keeping it, for what is hardly asked again.
    PostgresResult runOnce(const std::string& sql, const PostgresValues& values);

    /// Sends a statement of which nothing is to be known, and does not wait for it: several of them take the
    /// time of one. That it has failed is told by what is waited for next, as if that had failed; commit() at
    /// the latest.
    template <typename... Values>
    void post(std::string_view sql, const Values&... values)
    {
        PostgresValues bound;
        (bound.add(values), ...);
        postPrepared(sql, bound);
    }
    void postPrepared(std::string_view sql, const PostgresValues& values);

    /// Sends a statement that is likely to be run soon, and does not wait for it: run() with the same values
    /// gives what was found now, once, unless something was changed in the meantime. Of a statement that
    /// fails what is waited for next tells, as of one that is posted.
    template <typename... Values>
    void expect(std::string_view sql, const Values&... values)
    {
        PostgresValues bound;
        (bound.add(values), ...);
        expectPrepared(sql, bound);
    }
    void expectPrepared(std::string_view sql, const PostgresValues& values);

    /// Waits for all that was sent.
    void settle();

    /// Runs statements that take nothing, separated by semicolons. What the last one gives comes as text, not
    /// in binary.
    PostgresResult execute(const std::string& sql);

    /// Ends the transaction, if there is one, without its changes.
    void rollBack();
    /// The same, without waiting for the end: that the connection was lost is told by what is run next.
    void leave();
    /// Ends the transaction. StoreFailure::Unreachable when the connection is lost meanwhile, so that the
    /// changes may be there or not. StoreFailure::Unacknowledged when nothing comes within that time, as when
    /// the server waits for a standby that is gone, or when the server says that it has stopped waiting for
    /// one: they are there, but may be lost with this server. A commit is never cancelled.
    void commit(std::chrono::milliseconds patience);

    /// Calls a visitor. Statements are refused until it returns, as every store may refuse them then.
    template <typename Visitor, typename... Found>
    auto show(const Visitor& visitor, const Found&... found)
    {
        const Showing showing(*this);
        return visitor(found...);
    }

    /// Whether it can be used; false once it was lost.
    bool isConnected() const;
    /// How often the server was waited for since this was asked.
    std::uint64_t takeWaits() { return std::exchange(m_waits, 0); }
    /// Whether a transaction is under way in which nothing has failed, as far as is known.
    bool isInWorkingTransaction() const;
    /// One that no other cursor of the connection has.
    std::string newCursorName() { return "c" + std::to_string(++m_cursors); }
    int serverVersion() const;
    /// A parameter that the server tells of itself, such as "server_encoding".
    std::string parameter(const char* name) const;

private:
    class Showing
    {
    public:
        explicit Showing(PostgresConnection& connection) : m_connection(connection)
        {
            m_connection.m_isShowing = true;
        }
        ~Showing() { m_connection.m_isShowing = false; }
        Showing(const Showing&) = delete;
        Showing& operator=(const Showing&) = delete;

    private:
        PostgresConnection& m_connection;
    };

    struct Finish
    {
        void operator()(PGconn* connection) const { PQfinish(connection); }
    };

    const std::string& prepared(std::string_view sql);
    PostgresResult answer(int isSent);
    void sendLater(std::string_view sql, const PostgresValues& values, std::string key);
    PostgresResult lastAnswer();
    PostgresResult answerOfPosted();
    std::optional<PostgresResult> takeExpected(std::string_view sql, const PostgresValues& values);
    void forgetExpected();
    void forgetUnlessReading(std::string_view sql);
    void finishLeaving();
    void beReady();
    void send();
    void receive();
    void awaitServer(bool alsoToWrite);
    PostgresResult checked(PostgresResult result) const;
    StoreError lost() const;
    static void keepWarning(void* connection, const PGresult* notice);

    std::string m_place; ///< the server and the database, for messages
    std::unique_ptr<PGconn, Finish> m_connection;
    std::chrono::milliseconds m_patience;
    std::string m_warning; ///< the last one of the server
    /// Statements not waited for: while there are, libpq is in pipeline mode. Each with its key when what it
    /// gives is expected.
    std::vector<std::string> m_posted;
    std::unordered_map<std::string, PostgresResult> m_expected; ///< what was given, by key
    bool m_isLeaving = false;                                   ///< the end of a transaction is under way
    bool m_isShowing = false;
    std::uint64_t m_waits = 0;
    std::unordered_map<std::string, std::string> m_prepared; ///< names by texts
    std::size_t m_named = 0;                                 ///< names given so far
    std::size_t m_cursors = 0;                               ///< likewise
};

/// The values of a piece of SQL.
PostgresValues valuesOf(const Sql& sql);

/// The server and the database that a URL names, without a password, for messages.
std::string placeOf(const std::string& url);

} // namespace monitorservice
