#include "store/sqlite/SqliteCopy.h"

#include "store/StoreError.h"
#include "store/sqlite/NewFile.h"
#include "store/sqlite/ServiceLock.h"
#include "store/sqlite/SqliteConnection.h"
#include "store/sqlite/SqliteSchema.h"

#include <SQLiteCpp/Backup.h>
#include <sqlite3.h>

#include <chrono>
#include <string>
#include <system_error>

namespace monitorservice {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds patienceOfCopies{5};

[[noreturn]] void refuseSource(const fs::path& file, const std::string& why)
{
    throw StoreError(StoreFailure::CannotOpen, "cannot copy " + file.u8string() + ": " + why);
}

void requireFile(const fs::path& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        refuseSource(file, "it does not exist");
    }
    if (fs::is_directory(status)) {
        refuseSource(file, "it is a folder");
    }
}

void requireOurs(SqliteConnection& connection)
{
    try {
        requireKnown(connection);
    } catch (const StoreError& error) {
        const char* const subject = error.failure() == StoreFailure::CannotOpen ? "it " : "";
        throw StoreError(error.failure(), subject + std::string(error.what()));
    }
}

void requireIntact(SqliteConnection& connection)
{
    SqliteStatement check = connection.statement("PRAGMA integrity_check(1)");
    if (!check.step() || check.text(0) != "ok") {
        throw StoreError(StoreFailure::InputOutput, "it is damaged: " + check.text(0));
    }
    SqliteStatement dangling = connection.statement("PRAGMA foreign_key_check");
    if (dangling.step()) {
        throw StoreError(StoreFailure::InputOutput,
                         "it is damaged: in " + dangling.text(0) + " something refers to what is not there");
    }
}

// In one step, so that it is of one moment: the pages that others change meanwhile go to the log.
void copyPages(SqliteConnection& from, SqliteConnection& to)
{
    try {
        SQLite::Backup backup(to.database(), "main", from.database(), "main");
        if (backup.executeStep(-1) != SQLITE_DONE) {
            throw StoreError(StoreFailure::Busy, "others keep it busy");
        }
    } catch (const SQLite::Exception& error) {
        throw storeError(error);
    }
}

void copyTo(const fs::path& name, SqliteConnection& from)
{
    NewFile file(name);
    {
        SqliteConnection copy(file.unpublished(), SqliteConnection::Access::Write, patienceOfCopies);
        copyPages(from, copy);
        // It needs no log beside it then, and can be read where nothing can be written.
        copy.execute("PRAGMA journal_mode = DELETE");
        requireIntact(copy);
    }
    file.publish();
}

// A log that is found beside a data file is taken for its own, whatever it is of.
void requireNoLogOf(const fs::path& dataFile)
{
    std::error_code error;
    for (const char* const end : {"-wal", "-journal"}) {
        const fs::path log = dataFile.u8string() + end;
        if (fs::exists(fs::symlink_status(log, error))) {
            throw StoreError(StoreFailure::CannotOpen,
                             log.u8string() + " is of data that were here before; move it away first");
        }
    }
}

} // namespace

void backUpDatabase(const fs::path& dataFile, const fs::path& copy)
{
    requireFile(dataFile);
    try {
        // The last one that closes the file for writing tidies its log away.
        SqliteConnection from(dataFile, SqliteConnection::Access::Write, patienceOfCopies);
        requireOurs(from);
        copyTo(copy, from);
    } catch (const StoreError& error) {
        throw StoreError(error.failure(), "cannot back up " + dataFile.u8string() + ": " + error.what());
    }
}

void restoreDatabase(const fs::path& copy, const fs::path& dataFile)
{
    requireFile(copy);
    try {
        SqliteConnection from(copy, SqliteConnection::Access::Read, patienceOfCopies);
        requireOurs(from);
        requireIntact(from);
        const ServiceLock lock(dataFile);
        requireNoLogOf(dataFile);
        copyTo(dataFile, from);
    } catch (const StoreError& error) {
        throw StoreError(error.failure(), "cannot restore " + copy.u8string() + ": " + error.what());
    }
}

} // namespace monitorservice
