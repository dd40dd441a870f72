#include "store/postgres/PostgresStore.h"

#include "domain/Identifier.h"
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
#include <utility>

namespace monitorservice {

namespace {

// Connections that wait for the next session.
constexpr std::size_t mostIdle = 12;

// One for each of allDocumentKinds, in its order, which is that of their values.
using AllDocuments = std::array<PostgresDocuments, allDocumentKinds.size()>;

template <std::size_t... indexes>
AllDocuments documentsOf(PostgresConnection& connection, ProjectNumbers& projects,
                         std::index_sequence<indexes...> /*all*/)
{
    return {PostgresDocuments(connection, projects, allDocumentKinds.at(indexes))...};
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

    std::string newIdentifier() override
    {
        if (!m_identifier) {
            m_identifier =
                m_connection.run("SELECT value FROM monitor_state WHERE key = 'lastIdentifier'").text(0, 0);
        }
        m_identifier = identifierAfter(*m_identifier, m_now);
        return *m_identifier;
    }

    void commit() override
    {
        m_samples.flush();
        if (m_identifier) {
            m_connection.run("UPDATE monitor_state SET value = $1 WHERE key = 'lastIdentifier'",
                             *m_identifier);
        }
        // The server answers a COMMIT of what has failed with ROLLBACK, which is no error to it.
        if (!m_connection.isInWorkingTransaction()) {
            throw StoreError(StoreFailure::Internal, "a session that has failed cannot be committed");
        }
        m_connection.execute("COMMIT");
    }

private:
    PostgresConnection& m_connection;
    Instant m_now;
    std::optional<std::string> m_identifier; // the last one given, once one was asked for
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

} // namespace

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

class PostgresStore::WriteSession final : public PostgresSession
{
public:
    WriteSession(PostgresStore& store, std::unique_lock<FairMutex> turn,
                 std::unique_ptr<PostgresConnection> writer)
        : PostgresSession(*writer, store.m_options), m_store(store), m_turn(std::move(turn)),
          m_writer(std::move(writer))
    {
    }
    WriteSession(const WriteSession&) = delete;
    WriteSession& operator=(const WriteSession&) = delete;
    ~WriteSession() override { m_store.giveBack(std::move(m_writer)); }

private:
    PostgresStore& m_store;
    std::unique_lock<FairMutex> m_turn;
    std::unique_ptr<PostgresConnection> m_writer;
};

PostgresStore::PostgresStore(std::string url, StoreOptions options)
    : m_url(std::move(url)), m_options(std::move(options))
{
    try {
        auto connection = std::make_unique<PostgresConnection>(m_url);
        if (!m_options.createIfMissing && !isSetUp(*connection)) {
            throw StoreError(StoreFailure::CannotOpen, "holds no data of a monitor-service");
        }
        migrate(*connection);
        m_idle.push_back(std::move(connection));
    } catch (const StoreError& error) {
        throw cannotOpen(m_url, error);
    }
}

PostgresStore::~PostgresStore() = default;

std::unique_ptr<const Session> PostgresStore::read()
{
    return std::make_unique<ReadSession>(*this, begin([](PostgresConnection& connection) {
        connection.execute("BEGIN ISOLATION LEVEL REPEATABLE READ, READ ONLY");
    }));
}

std::unique_ptr<Session> PostgresStore::write()
{
    const auto deadline = std::chrono::steady_clock::now() + m_options.patience;
    std::unique_lock turn(m_writing, m_options.patience);
    if (!turn.owns_lock()) {
        throw StoreError(StoreFailure::Busy, "other writes take too long");
    }
    // The turn among all processes: whoever holds the row.
    const auto takeTurn = [deadline](PostgresConnection& connection) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        connection.execute("BEGIN ISOLATION LEVEL READ COMMITTED, READ WRITE; SET LOCAL lock_timeout = " +
                           std::to_string(std::max<std::int64_t>(left.count(), 1)) +
                           "; SELECT FROM monitor_state WHERE key = 'turn' FOR UPDATE");
    };
    return std::make_unique<WriteSession>(*this, std::move(turn), begin(takeTurn));
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

std::string PostgresStore::nameOf(const std::string& url)
{
    return placeOf(url);
}

// A connection in which a transaction has begun. One that waited may have been lost meanwhile: then a new one
// is tried.
template <typename Begin>
std::unique_ptr<PostgresConnection> PostgresStore::begin(const Begin& begin)
{
    while (auto idle = takeIdle()) {
        try {
            begin(*idle);
            return idle;
        } catch (const StoreError& error) {
            if (error.failure() != StoreFailure::Unreachable) {
                throw;
            }
        }
    }
    auto connection = std::make_unique<PostgresConnection>(m_url);
    begin(*connection);
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

void PostgresStore::giveBack(std::unique_ptr<PostgresConnection> connection)
{
    try {
        if (connection->isConnected() && connection->isInTransaction()) {
            connection->execute("ROLLBACK");
        }
    } catch (const StoreError&) {
        return;
    }
    if (!connection->isConnected()) {
        return;
    }
    const std::lock_guard lock(m_poolMutex);
    if (m_idle.size() < mostIdle) {
        m_idle.push_back(std::move(connection));
    }
}

} // namespace monitorservice
