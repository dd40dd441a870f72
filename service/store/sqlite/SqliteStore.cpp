#include "store/sqlite/SqliteStore.h"

#include "domain/Identifier.h"
#include "store/sqlite/SqliteAccess.h"
#include "store/sqlite/SqliteDocuments.h"
#include "store/sqlite/SqliteExcesses.h"
#include "store/sqlite/SqliteMeasurements.h"
#include "store/sqlite/SqliteOutbox.h"
#include "store/sqlite/SqliteProjects.h"
#include "store/sqlite/SqliteSchema.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#include <utility>

namespace monitorservice {

namespace {

namespace fs = std::filesystem;

void makePrivateFile(const fs::path& file)
{
    std::error_code error;
    const fs::path folder = fs::absolute(file, error).parent_path();
    if (!fs::is_directory(folder, error)) {
        throw StoreError(StoreFailure::CannotOpen, "does not exist, and neither does its folder");
    }
    if (!std::ofstream(file, std::ios::app)) {
        throw StoreError(StoreFailure::CannotOpen, "cannot be made in its folder: is that writable?");
    }
    // The log beside the file gets the same permissions from SQLite.
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, error);
}

void checkFile(const fs::path& file, bool createIfMissing)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::is_directory(status)) {
        throw StoreError(StoreFailure::CannotOpen, "is a folder");
    }
    if (!fs::exists(status)) {
        if (!createIfMissing) {
            throw StoreError(StoreFailure::CannotOpen, "does not exist");
        }
        makePrivateFile(file);
    }
}

// SQLite says no more than "unable to open database file" when it cannot make its log.
void explainReadOnlyFolder(const fs::path& file)
{
    // Not the log itself: another process might be making it.
    const fs::path probe = file.u8string() + "-probe";
    const bool canBeMade = std::ofstream(probe, std::ios::app).good();
    std::error_code error;
    fs::remove(probe, error);
    if (!canBeMade) {
        throw StoreError(StoreFailure::CannotOpen,
                         "lies in a folder that may only be read, but its log must be beside it");
    }
}

std::unique_ptr<SqliteConnection> openWriter(const fs::path& file, const StoreOptions& options)
{
    checkFile(file, options.createIfMissing);
    auto writer = std::make_unique<SqliteConnection>(file, SqliteConnection::Access::Write, options.patience);
    // SQLite opens what it may not write for reading, without a word.
    if (sqlite3_db_readonly(writer->database().getHandle(), "main") != 0) {
        throw StoreError(StoreFailure::CannotOpen, "may only be read");
    }
    try {
        migrate(*writer, options.patience);
    } catch (const StoreError&) {
        explainReadOnlyFolder(file);
        throw;
    }
    if (!options.mayBeUnfinished && isUnfinishedCopy(*writer)) {
        throw StoreError(StoreFailure::CannotOpen, unfinishedCopy);
    }
    return writer;
}

// One for each of allDocumentKinds, in its order, which is that of their values.
using AllDocuments = std::array<SqliteDocuments, allDocumentKinds.size()>;

template <std::size_t... indexes>
AllDocuments documentsOf(SqliteConnection& connection, std::index_sequence<indexes...> /*all*/)
{
    return {SqliteDocuments(connection, sqliteTable(allDocumentKinds.at(indexes)))...};
}

} // namespace

// What every session has: the tables as seen by one connection within one transaction.
class SqliteSession : public Session
{
public:
    SqliteSession(SqliteConnection& connection, SQLite::TransactionBehavior behavior,
                  const StoreOptions& options, std::vector<Lane> lanes)
        : m_connection(connection), m_now(options.clock()), m_lanes(std::move(lanes)),
          m_documents(documentsOf(connection, std::make_index_sequence<allDocumentKinds.size()>())),
          m_measurements(connection), m_excesses(connection), m_projects(connection),
          m_categories(connection), m_tokens(connection), m_grants(connection),
          m_outbox(connection, m_now, options.channels)
    {
        try {
            m_transaction = std::make_unique<SQLite::Transaction>(connection.database(), behavior);
        } catch (const SQLite::Exception& error) {
            throw storeError(error);
        }
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
            m_identifier = lastOfLanes();
        }
        return *(m_identifier = identifierAfter(*m_identifier, m_now, m_lanes.front()));
    }

    std::string lastIdentifier() const override
    {
        SqliteStatement statement =
            m_connection.statement("SELECT coalesce(max(value), '') FROM last_identifiers");
        statement.step();
        return std::max(statement.text(0), m_identifier.value_or(std::string()));
    }

    void skipIdentifiers(const std::string& last) override
    {
        m_identifier = std::max(lastIdentifier(), last);
    }

    bool isUnfinished() const override { return isUnfinishedCopy(m_connection); }

    void setUnfinished(bool isUnfinished) override
    {
        m_connection.execute(isUnfinished
                                 ? "INSERT OR REPLACE INTO state (key, value) VALUES ('unfinishedCopy', '')"
                                 : "DELETE FROM state WHERE key = 'unfinishedCopy'");
    }

    void commit() override
    {
        m_measurements.finish();
        if (m_identifier) {
            for (const Lane lane : m_lanes) {
                m_connection.statement("INSERT OR REPLACE INTO last_identifiers (lane, value) VALUES (?, ?)")
                    .bind(std::int64_t{lane})
                    .bind(*m_identifier)
                    .run();
            }
        }
        try {
            m_transaction->commit();
        } catch (const SQLite::Exception& error) {
            throw storeError(error);
        }
    }

protected:
    // To be called before the connection goes to somebody else.
    void endTransaction() { m_transaction.reset(); }

private:
    // Those after which what is given in them has to come.
    std::string lastOfLanes() const
    {
        std::string last;
        if (m_lanes.front() == allLanes) {
            return lastIdentifier();
        }
        const auto look = [this, &last](Lane lane) {
            SqliteStatement statement =
                m_connection.statement("SELECT value FROM last_identifiers WHERE lane = ?");
            statement.bind(std::int64_t{lane});
            if (statement.step()) {
                last = std::max(last, statement.text(0));
            }
        };
        look(allLanes);
        std::for_each(m_lanes.begin(), m_lanes.end(), look);
        return last;
    }

    SqliteConnection& m_connection;
    Instant m_now;
    std::vector<Lane> m_lanes;
    std::optional<std::string> m_identifier; // the last one given, once one was asked for
    AllDocuments m_documents;
    SqliteMeasurements m_measurements;
    SqliteExcesses m_excesses;
    SqliteProjects m_projects;
    SqliteCategories m_categories;
    SqliteTokens m_tokens;
    SqliteGrants m_grants;
    SqliteOutbox m_outbox;
    std::unique_ptr<SQLite::Transaction> m_transaction;
};

class SqliteStore::ReadSession final : public SqliteSession
{
public:
    ReadSession(SqliteStore& store, std::unique_ptr<SqliteConnection> reader)
        : SqliteSession(*reader, SQLite::TransactionBehavior::DEFERRED, store.m_options, {allLanes}),
          m_store(store), m_reader(std::move(reader))
    {
    }
    ReadSession(const ReadSession&) = delete;
    ReadSession& operator=(const ReadSession&) = delete;

    ~ReadSession() override
    {
        endTransaction();
        m_store.giveBack(std::move(m_reader));
    }

private:
    SqliteStore& m_store;
    std::unique_ptr<SqliteConnection> m_reader;
};

class SqliteStore::WriteSession final : public SqliteSession
{
public:
    WriteSession(SqliteStore& store, std::vector<Lane> lanes, Turns::Turn turn)
        : SqliteSession(*store.m_writer, SQLite::TransactionBehavior::IMMEDIATE, store.m_options,
                        std::move(lanes)),
          m_turn(std::move(turn))
    {
    }
    WriteSession(const WriteSession&) = delete;
    WriteSession& operator=(const WriteSession&) = delete;

    ~WriteSession() override { endTransaction(); }

private:
    Turns::Turn m_turn;
};

SqliteStore::SqliteStore(fs::path file, StoreOptions options)
    : m_file(std::move(file)), m_options(std::move(options))
{
    if (m_options.forService) {
        m_lock.emplace(m_file);
    }
    try {
        m_writer = openWriter(m_file, m_options);
    } catch (const StoreError& error) {
        const char* const subject = error.failure() == StoreFailure::CannotOpen ? ": it " : ": ";
        throw StoreError(StoreFailure::CannotOpen,
                         "cannot open " + m_file.u8string() + subject + error.what());
    }
}

SqliteStore::~SqliteStore()
{
    m_idleReaders.clear();
    m_writer->database().tryExec("PRAGMA wal_checkpoint(TRUNCATE)");
}

std::unique_ptr<const Session> SqliteStore::read(const Expectations& /*expected*/)
{
    return std::make_unique<ReadSession>(*this, takeReader());
}

// The file has one writer at a time, whatever is claimed.
std::unique_ptr<Session> SqliteStore::write(const Claim& claim, const Expectations& /*expected*/)
{
    std::vector<Lane> lanes = lanesOf(claim);
    Turns::Turn turn = m_writing.take(lanes, m_options.patience);
    if (!turn) {
        throw StoreError(StoreFailure::Busy, "other writes take too long");
    }
    return std::make_unique<WriteSession>(*this, std::move(lanes), std::move(turn));
}

void SqliteStore::checkReady()
{
    read()->categories().list();
}

std::unique_ptr<SqliteConnection> SqliteStore::takeReader()
{
    {
        const std::lock_guard lock(m_poolMutex);
        if (!m_idleReaders.empty()) {
            auto reader = std::move(m_idleReaders.back());
            m_idleReaders.pop_back();
            return reader;
        }
    }
    return std::make_unique<SqliteConnection>(m_file, SqliteConnection::Access::Read, m_options.patience);
}

void SqliteStore::giveBack(std::unique_ptr<SqliteConnection> reader)
{
    const std::lock_guard lock(m_poolMutex);
    m_idleReaders.push_back(std::move(reader));
}

} // namespace monitorservice
