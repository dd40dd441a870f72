#include "store/postgres/PostgresStore.h"

#include "domain/Identifier.h"
#include "store/postgres/LaneLocks.h"
#include "store/postgres/PostgresAccess.h"
#include "store/postgres/PostgresDocuments.h"
#include "store/postgres/PostgresExcesses.h"
#include "store/postgres/PostgresMeasurements.h"
#include "store/postgres/PostgresOutbox.h"
#include "store/postgres/PostgresProjects.h"
#include "store/postgres/PostgresSamples.h"
#include "store/postgres/PostgresSchema.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

namespace monitorservice {

namespace {

// Connections that wait for the next session.
constexpr std::size_t mostIdle = 12;

// At once; more of one process would rather wait for each other than be faster.
constexpr std::size_t mostWriters = 4;

constexpr const char* readOnly = "the database is read-only";
constexpr const char* otherVersion = "the database has been brought to another version";

// One for each of allDocumentKinds, in its order, which is that of their values.
using AllDocuments = std::array<PostgresDocuments, allDocumentKinds.size()>;

template <std::size_t... indexes>
AllDocuments documentsOf(PostgresConnection& connection, ProjectNumbers& projects,
                         std::index_sequence<indexes...> /*all*/)
{
    return {PostgresDocuments(connection, projects, allDocumentKinds.at(indexes))...};
}

constexpr const char* selectLast = "SELECT coalesce(max(value), '') FROM last_identifiers";

// What is to be known of a transaction that has its locks: nothing on a server that takes no writes.
PostgresResult askAfterTurn(PostgresConnection& connection, const std::vector<Lane>& lanes)
{
    const auto statement = [](const std::string& last) {
        return "SELECT pg_current_xact_id()::text, left(pg_walfile_name(pg_current_wal_lsn()), 8), (" + last +
               "), value FROM monitor_state WHERE key = 'version' AND "
               "NOT current_setting('transaction_read_only')::boolean";
    };
    static const std::string ofAll = statement(selectLast);
    static const std::string ofSome = statement(std::string(selectLast) + " WHERE lane = ANY ($1::bigint[])");
    if (lanes.front() == allLanes) {
        return connection.run(ofAll);
    }
    // What is given in these lanes has to come after what was given in that of all, too.
    PostgresArray before(PostgresArray::Type::Integer);
    before.add(std::int64_t{allLanes});
    for (const Lane lane : lanes) {
        before.add(std::int64_t{lane});
    }
    return connection.run(ofSome, before);
}

// What no column can hold is refused where it is looked up.
bool canBeHeld(const std::string& identifier)
{
    return identifier.find('\0') == std::string::npos;
}

void expect(PostgresConnection& connection, const Expectations& expected)
{
    if (!expected.secretHash.empty()) {
        expectBearer(connection, expected.secretHash);
    }
    for (const auto& [kind, id] : expected.documents) {
        if (canBeHeld(id)) {
            expectDocument(connection, kind, id);
        }
    }
    for (const std::string& project : expected.projects) {
        if (canBeHeld(project)) {
            expectProject(connection, project);
        }
    }
}

StoreError cannotOpen(const std::string& url, const StoreError& error)
{
    const char* const subject = error.failure() == StoreFailure::CannotOpen ? ": it " : ": ";
    const std::string place = placeOf(url);
    std::string what = error.what();
    if (what.rfind(place, 0) == 0) {
        return {StoreFailure::CannotOpen, "cannot open " + what};
    }
    return {StoreFailure::CannotOpen, "cannot open " + place + subject + what};
}

} // namespace

// What every session has: the tables as seen by one connection within one transaction.
class PostgresSession : public Session
{
public:
    PostgresSession(PostgresConnection& connection, const StoreOptions& options)
        : m_connection(connection), m_now(options.clock()), m_numbers(connection), m_samples(connection),
          m_documents(
              documentsOf(connection, m_numbers, std::make_index_sequence<allDocumentKinds.size()>())),
          m_measurements(connection, m_numbers, m_samples), m_excesses(connection, m_numbers, m_samples),
          m_projects(connection, m_numbers), m_categories(connection), m_tokens(connection),
          m_grants(connection), m_outbox(connection, m_now, options.channels)
    {
    }

    const Documents& documents(DocumentKind kind) const override
    {
        return m_documents.at(static_cast<std::size_t>(kind));
    }
    const Measurements& measurements() const override { return m_measurements; }
    const Excesses& excesses() const override { return m_excesses; }
    const Projects& projects() const override { return m_projects; }
    const Categories& categories() const override { return m_categories; }
    const Tokens& tokens() const override { return m_tokens; }
    const Grants& grants() const override { return m_grants; }
    const Outbox& outbox() const override { return m_outbox; }

    Documents& documents(DocumentKind kind) override
    {
        return m_documents.at(static_cast<std::size_t>(kind));
    }
    Measurements& measurements() override { return m_measurements; }
    Excesses& excesses() override { return m_excesses; }
    Projects& projects() override { return m_projects; }
    Categories& categories() override { return m_categories; }
    Tokens& tokens() override { return m_tokens; }
    Grants& grants() override { return m_grants; }
    Outbox& outbox() override { return m_outbox; }

    Instant now() const override { return m_now; }

    // Overridden by those that can keep it.
    std::string newIdentifier() override
    {
        throw StoreError(StoreFailure::Internal, "a session that reads gives no identifiers");
    }

    std::string lastIdentifier() const override { return m_connection.run(selectLast).text(0, 0); }

    void skipIdentifiers(const std::string& /*last*/) override
    {
        throw StoreError(StoreFailure::Internal, "a session that reads gives no identifiers");
    }

    bool isUnfinished() const override { return isUnfinishedCopy(m_connection); }

    void setUnfinished(bool isUnfinished) override
    {
        m_connection.post(isUnfinished
                              ? "INSERT INTO monitor_state (key, value) VALUES ('unfinishedCopy', '') "
                                "ON CONFLICT DO NOTHING"
                              : "DELETE FROM monitor_state WHERE key = 'unfinishedCopy'");
    }

    void commit() override
    {
        throw StoreError(StoreFailure::Internal, "a session that reads is not committed");
    }

protected:
    // What is still to be sent to the database.
    void writeRest() { m_samples.flush(); }

private:
    PostgresConnection& m_connection;
    Instant m_now;
    ProjectNumbers m_numbers;
    PostgresSamples m_samples;
    AllDocuments m_documents;
    PostgresMeasurements m_measurements;
    PostgresExcesses m_excesses;
    PostgresProjects m_projects;
    PostgresCategories m_categories;
    PostgresTokens m_tokens;
    PostgresGrants m_grants;
    PostgresOutbox m_outbox;
};

class PostgresStore::ReadSession final : public PostgresSession
{
public:
    ReadSession(PostgresStore& store, std::unique_ptr<PostgresConnection> reader)
        : PostgresSession(*reader, store.m_options), m_store(store), m_reader(std::move(reader))
    {
    }
    ReadSession(const ReadSession&) = delete;
    ReadSession& operator=(const ReadSession&) = delete;
    ~ReadSession() override { m_store.giveBack(std::move(m_reader)); }

private:
    PostgresStore& m_store;
    std::unique_ptr<PostgresConnection> m_reader;
};

// A transaction that has the turn to write in its lanes among all processes.
struct PostgresStore::Turn
{
    std::vector<Lane> lanes;
    std::unique_ptr<PostgresConnection> connection;
    std::string transaction;    // its number
    std::string timeline;       // of the server: another one after a standby has taken the primary's place
    std::string lastIdentifier; // of the lanes
};

class PostgresStore::WriteSession final : public PostgresSession
{
public:
    WriteSession(PostgresStore& store, Turns::Turn inProcess, Turn turn)
        : PostgresSession(*turn.connection, store.m_options), m_store(store),
          m_inProcess(std::move(inProcess)), m_turn(std::move(turn)), m_identifier(m_turn.lastIdentifier)
    {
    }
    WriteSession(const WriteSession&) = delete;
    WriteSession& operator=(const WriteSession&) = delete;
    ~WriteSession() override { m_store.giveBack(std::move(m_turn.connection)); }

    std::string newIdentifier() override
    {
        return m_identifier = identifierAfter(m_identifier, now(), m_turn.lanes.front());
    }

    std::string lastIdentifier() const override
    {
        return std::max(PostgresSession::lastIdentifier(), m_identifier);
    }

    void skipIdentifiers(const std::string& last) override
    {
        m_identifier = std::max(lastIdentifier(), last);
    }

    void commit() override
    {
        writeRest();
        writeLastIdentifier();
        try {
            m_turn.connection->commit(m_store.m_options.patience);
        } catch (const StoreError& error) {
            if (error.failure() != StoreFailure::Unreachable || !m_store.wasCommitted(m_turn)) {
                throw;
            }
        }
    }

private:
    void writeLastIdentifier()
    {
        if (m_identifier == m_turn.lastIdentifier) {
            return;
        }
        for (const Lane lane : m_turn.lanes) {
            m_turn.connection->post("INSERT INTO last_identifiers (lane, value) VALUES ($1, $2) "
                                    "ON CONFLICT (lane) DO UPDATE SET value = excluded.value",
                                    std::int64_t{lane}, m_identifier);
        }
    }

    PostgresStore& m_store;
    Turns::Turn m_inProcess; // the turn among the threads of this process
    Turn m_turn;
    std::string m_identifier; // the last one given
};

PostgresStore::PostgresStore(std::string url, StoreOptions options)
    : m_url(std::move(url)), m_options(std::move(options)), m_writing(mostWriters)
{
    try {
        auto connection = connect();
        if (!m_options.createIfMissing && !isSetUp(*connection)) {
            throw StoreError(StoreFailure::CannotOpen, "holds no data of a monitor-service");
        }
        migrate(*connection);
        if (!m_options.mayBeUnfinished && isUnfinishedCopy(*connection)) {
            throw StoreError(StoreFailure::CannotOpen, unfinishedCopy);
        }
        m_idle.push_back(std::move(connection));
    } catch (const StoreError& error) {
        throw cannotOpen(m_url, error);
    }
}

PostgresStore::~PostgresStore() = default;

std::unique_ptr<const Session> PostgresStore::read(const Expectations& expected)
{
    return std::make_unique<ReadSession>(*this, begin([&expected](PostgresConnection& connection) {
        connection.post("BEGIN ISOLATION LEVEL REPEATABLE READ, READ ONLY");
        expect(connection, expected);
        connection.settle();
    }));
}

std::unique_ptr<Session> PostgresStore::write(const Claim& claim, const Expectations& expected)
{
    const auto deadline = std::chrono::steady_clock::now() + m_options.patience;
    std::vector<Lane> lanes = lanesOf(claim);
    Turns::Turn inProcess = m_writing.take(lanes, m_options.patience);
    if (!inProcess) {
        throw StoreError(StoreFailure::Busy, "other writes take too long");
    }
    return std::make_unique<WriteSession>(*this, std::move(inProcess),
                                          takeTurn(std::move(lanes), deadline, expected));
}

void PostgresStore::checkReady()
{
    giveBack(begin([](PostgresConnection& connection) {
        if (connection.run("SELECT pg_is_in_recovery() OR current_setting('transaction_read_only')::boolean")
                .boolean(0, 0)) {
            throw StoreError(StoreFailure::NotWritable, readOnly);
        }
        if (!isUpToDate(connection)) {
            throw StoreError(StoreFailure::CannotOpen, otherVersion);
        }
        if (isUnfinishedCopy(connection)) {
            throw StoreError(StoreFailure::CannotOpen, std::string("the database ") + unfinishedCopy);
        }
    }));
}

// Each statement sees what was committed when it begins: those after the locks all that the holders of them
// have written.
PostgresStore::Turn PostgresStore::takeTurn(std::vector<Lane> lanes,
                                            std::chrono::steady_clock::time_point deadline,
                                            const Expectations& expected)
{
    Turn turn;
    turn.lanes = std::move(lanes);
    turn.connection = begin([&turn, deadline, &expected](PostgresConnection& connection) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        connection.post("BEGIN ISOLATION LEVEL READ COMMITTED");
        connection.post("SELECT set_config('lock_timeout', $1, true)",
                        std::to_string(std::max<std::int64_t>(left.count(), 1)));
        lockLanes(connection, turn.lanes);
        expect(connection, expected);
        const PostgresResult taken = askAfterTurn(connection, turn.lanes);
        if (taken.isEmpty()) {
            throw StoreError(StoreFailure::NotWritable, readOnly);
        }
        if (taken.text(0, 3) != std::to_string(knownVersion())) {
            throw StoreError(StoreFailure::NotWritable, otherVersion);
        }
        turn.transaction = taken.text(0, 0);
        turn.timeline = taken.text(0, 1);
        turn.lastIdentifier = taken.text(0, 2);
    });
    return turn;
}

// Asked when the connection was lost in a commit, of the same server as soon as it is back. True when the
// changes are there as if the commit had been answered; false when nothing was written;
// StoreFailure::Unacknowledged when that is not to be known.
bool PostgresStore::wasCommitted(const Turn& turn)
{
    const auto deadline = std::chrono::steady_clock::now() + m_options.patience;
    std::string why;
    for (std::chrono::milliseconds pause(20); std::chrono::steady_clock::now() < deadline; pause *= 2) {
        try {
            // Having the turn, it knows that the lost transaction has come to its end.
            const Turn next = takeTurn(turn.lanes, deadline, {});
            // Numbers of transactions are given anew by a server that was a standby.
            if (next.timeline != turn.timeline) {
                why = "another server has taken over";
                break;
            }
            const std::optional<std::string> status =
                next.connection->run("SELECT pg_xact_status($1::text::xid8)", turn.transaction)
                    .optionalText(0, 0);
            if (status == "committed") {
                // Acknowledged with this commit, which comes after it.
                next.connection->commit(m_options.patience);
                return true;
            }
            if (status == "aborted") {
                return false;
            }
            why = "the server does not know the transaction any more";
            break;
        } catch (const StoreError& error) {
            why = error.what();
            if (error.failure() != StoreFailure::Unreachable) {
                break;
            }
            std::this_thread::sleep_for(std::min<std::chrono::milliseconds>(pause, std::chrono::seconds(1)));
        }
    }
    throw StoreError(StoreFailure::Unacknowledged,
                     "a commit was not confirmed, the connection being lost: " + why);
}

bool PostgresStore::exists(const std::string& url)
{
    try {
        PostgresConnection connection(url);
        return isSetUp(connection);
    } catch (const StoreError& error) {
        throw cannotOpen(url, error);
    }
}

std::uint64_t PostgresStore::takeWaits()
{
    const std::lock_guard lock(m_poolMutex);
    return std::exchange(m_waits, 0);
}

std::string PostgresStore::nameOf(const std::string& url)
{
    return placeOf(url);
}

// A connection in which a transaction has begun. One that waited may have been lost meanwhile, or lead to a
// server that has become a standby: then those that wait likewise are of no use, and a new one is tried.
template <typename Begin>
std::unique_ptr<PostgresConnection> PostgresStore::begin(const Begin& begin)
{
    if (auto idle = takeIdle()) {
        try {
            begin(*idle);
            return idle;
        } catch (const StoreError& error) {
            if (error.failure() != StoreFailure::Unreachable &&
                error.failure() != StoreFailure::NotWritable) {
                throw;
            }
        }
        forgetIdle();
    }
    auto connection = connect();
    begin(*connection);
    return connection;
}

// Each server that takes over begins a new timeline, numbered in 8 hexadecimal digits. One that comes back
// with an earlier one knows nothing of what was written since, and what it takes in would be lost.
std::unique_ptr<PostgresConnection> PostgresStore::connect()
{
    auto connection = std::make_unique<PostgresConnection>(m_url);
    const PostgresResult found = connection->run(
        "SELECT left(pg_walfile_name(pg_current_wal_lsn()), 8) WHERE NOT pg_is_in_recovery()");
    if (!found.isEmpty()) {
        const std::string timeline = found.text(0, 0);
        const std::lock_guard lock(m_poolMutex);
        if (timeline < m_timeline) {
            throw StoreError(StoreFailure::Unreachable,
                             placeOf(m_url) + ": the server has timeline " + timeline +
                                 ", after another one had " + m_timeline +
                                 ": it was the primary before that one, and must not be used");
        }
        m_timeline = timeline;
    }
    return connection;
}

std::unique_ptr<PostgresConnection> PostgresStore::takeIdle()
{
    const std::lock_guard lock(m_poolMutex);
    if (m_idle.empty()) {
        return nullptr;
    }
    auto connection = std::move(m_idle.back());
    m_idle.pop_back();
    return connection;
}

void PostgresStore::forgetIdle()
{
    const std::lock_guard lock(m_poolMutex);
    m_idle.clear();
}

void PostgresStore::giveBack(std::unique_ptr<PostgresConnection> connection)
{
    try {
        if (connection->isConnected()) {
            connection->leave();
        }
    } catch (const StoreError&) {
        return;
    }
    if (!connection->isConnected()) {
        return;
    }
    const std::lock_guard lock(m_poolMutex);
    m_waits += connection->takeWaits();
    if (m_idle.size() < mostIdle) {
        m_idle.push_back(std::move(connection));
    }
}

} // namespace monitorservice
