#include "store/SqliteSchema.h"

#include <array>
#include <string>
#include <thread>

namespace monitorservice {

namespace {

// "RKMD": tells the service's files from those of other applications (https://www.sqlite.org/pragma.html#pragma_application_id).
constexpr std::int64_t applicationId = 0x524b4d44;

// Documents hold times as isoText() writes them. julianday() would round, so seconds and milliseconds are read apart.
// A document's own members are the source of every column that is queried: the two cannot come to differ.
constexpr const char* firstVersion = R"sql(
CREATE TABLE state (
    key TEXT PRIMARY KEY,
    value TEXT NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE projects (
    id TEXT PRIMARY KEY,
    name TEXT NOT NULL,
    time_zone TEXT NOT NULL,
    created_at INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE categories (
    position INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE
) STRICT;

CREATE TABLE sub_categories (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    name TEXT NOT NULL AS (json_extract(document, '$.name')) STORED,
    category TEXT NOT NULL AS (json_extract(document, '$.category')) STORED REFERENCES categories (name),
    alias TEXT NOT NULL AS (json_extract(document, '$.alias')) STORED,
    PRIMARY KEY (project, id),
    UNIQUE (project, category, name)
) STRICT;

CREATE TABLE cells (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    name TEXT NOT NULL AS (json_extract(document, '$.name')) STORED,
    category TEXT NOT NULL AS (json_extract(document, '$.category')) STORED REFERENCES categories (name),
    created_at INTEGER NOT NULL AS (
        CAST(strftime('%s', json_extract(document, '$.createdAt')) AS INTEGER) * 1000
        + CAST(substr(json_extract(document, '$.createdAt'), 21, 3) AS INTEGER)) STORED,
    created_by TEXT NOT NULL AS (json_extract(document, '$.createdBy')) STORED,
    updated_at INTEGER NOT NULL AS (
        CAST(strftime('%s', json_extract(document, '$.updatedAt')) AS INTEGER) * 1000
        + CAST(substr(json_extract(document, '$.updatedAt'), 21, 3) AS INTEGER)) STORED,
    updated_by TEXT NOT NULL AS (json_extract(document, '$.updatedBy')) STORED,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX cells_by_name ON cells (project, name, id);
CREATE INDEX cells_by_creation ON cells (project, created_at, id);

CREATE TABLE tokens (
    id TEXT PRIMARY KEY,
    owner TEXT NOT NULL,
    name TEXT NOT NULL,
    secret_sha256 BLOB NOT NULL UNIQUE,
    created_at INTEGER NOT NULL,
    expires_at INTEGER,
    revoked_at INTEGER
) STRICT, WITHOUT ROWID;

CREATE TABLE grants (
    id TEXT PRIMARY KEY,
    token TEXT NOT NULL REFERENCES tokens (id),
    project TEXT NOT NULL REFERENCES projects (id),
    category TEXT REFERENCES categories (name),
    rights INTEGER NOT NULL,
    created_at INTEGER NOT NULL
) STRICT, WITHOUT ROWID;
-- A unique index holds two NULLs to be different, so "every category" is written as something that no category is.
CREATE UNIQUE INDEX grants_by_token ON grants (token, project, ifnull(category, x''));
)sql";

// The step at index n leads from version n to version n + 1. Steps that were released are never changed.
constexpr std::array migrations{firstVersion};

void checkOwnership(SqliteConnection& connection)
{
    const std::int64_t owner = connection.integer("PRAGMA application_id");
    const bool empty = connection.integer("SELECT count(*) FROM sqlite_schema") == 0;
    if (owner != applicationId && !(owner == 0 && empty)) {
        throw StoreError(StoreFailure::CannotOpen, "is a database of another application");
    }
    const std::int64_t version = connection.integer("PRAGMA user_version");
    if (version > static_cast<std::int64_t>(migrations.size())) {
        throw StoreError(StoreFailure::CannotOpen, "has data of version " + std::to_string(version) +
                                                       ", written by a later monitor-service; " +
                                                       "this one knows versions up to " +
                                                       std::to_string(migrations.size()));
    }
}

// The change to the write-ahead log does not wait for other connections by itself.
void useWriteAheadLog(SqliteConnection& connection, std::chrono::milliseconds busyTimeout)
{
    const auto deadline = std::chrono::steady_clock::now() + busyTimeout;
    for (;;) {
        try {
            SqliteStatement statement = connection.statement("PRAGMA journal_mode = WAL");
            if (statement.step() && statement.text(0) == "wal") {
                return;
            }
            throw StoreError(StoreFailure::CannotOpen,
                             "lies on a file system without shared memory, such as a network drive");
        } catch (const StoreError& error) {
            if (error.failure() != StoreFailure::Busy || std::chrono::steady_clock::now() >= deadline) {
                throw;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

void migrate(SqliteConnection& connection, std::chrono::milliseconds busyTimeout)
{
    checkOwnership(connection);
    useWriteAheadLog(connection, busyTimeout);
    try {
        SQLite::Transaction transaction(connection.database(), SQLite::TransactionBehavior::IMMEDIATE);
        // Once more, now that nobody else can write: another process may have been faster.
        checkOwnership(connection);
        for (auto version = static_cast<std::size_t>(connection.integer("PRAGMA user_version"));
             version < migrations.size(); ++version) {
            connection.execute(migrations.at(version));
        }
        connection.execute("PRAGMA application_id = " + std::to_string(applicationId));
        connection.execute("PRAGMA user_version = " + std::to_string(migrations.size()));
        transaction.commit();
    } catch (const SQLite::Exception& error) {
        throw storeError(error);
    }
}

} // namespace monitorservice
