#include "store/sqlite/SqliteStore.h"

#include "domain/Identifier.h"
#include "store/sqlite/SqliteConnection.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <fstream>
#include <future>
#include <set>
#include <thread>

namespace monitorservice {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;

SqliteStoreOptions creating()
{
    SqliteStoreOptions options;
    options.createIfMissing = true;
    return options;
}

SqliteStoreOptions impatient()
{
    SqliteStoreOptions options = creating();
    options.busyTimeout = std::chrono::milliseconds(20);
    return options;
}

std::string openingError(const fs::path& file, const SqliteStoreOptions& options = {})
{
    try {
        const SqliteStore store(file, options);
        return "opened";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::CannotOpen);
        return error.what();
    }
}

void write(const fs::path& file, const std::string& content)
{
    std::ofstream(file, std::ios::binary) << content;
}

void execute(const fs::path& file, const char* sql)
{
    SQLite::Database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec(sql);
}

TEST(SqliteStore, NewFileIsMadeForItsOwnerAlone)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("data.db");
    {
        SqliteStore store(file, creating());
        EXPECT_TRUE(store.read()->projects().list().empty());
    }
    const fs::perms others = fs::perms::group_all | fs::perms::others_all;
    EXPECT_EQ(fs::status(file).permissions() & others, fs::perms::none);
}

TEST(SqliteStore, EmptyFileIsAsGoodAsNone)
{
    const test::TemporaryFolder folder;
    write(folder.file("data.db"), "");
    SqliteStore store(folder.file("data.db"));
    EXPECT_TRUE(store.read()->projects().list().empty());
}

TEST(SqliteStore, MissingFileIsNotMadeUnlessAsked)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("data.db");
    EXPECT_THAT(openingError(file), AllOf(HasSubstr(file.string()), HasSubstr("does not exist")));
    EXPECT_FALSE(fs::exists(file));
}

TEST(SqliteStore, MissingFolderIsNamed)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("none") / "data.db";
    EXPECT_THAT(openingError(file, creating()), AllOf(HasSubstr(file.string()), HasSubstr("folder")));
}

TEST(SqliteStore, FolderIsNoFile)
{
    const test::TemporaryFolder folder;
    EXPECT_THAT(openingError(folder.path(), creating()), HasSubstr("is a folder"));
}

TEST(SqliteStore, FileThatIsNotADatabaseIsLeftAsItIs)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("notes.txt");
    const std::string content(5000, 'x');
    write(file, content);
    EXPECT_THAT(openingError(file), AllOf(HasSubstr(file.string()), HasSubstr("not a database")));
    std::ifstream again(file, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(again), {}), content);
}

TEST(SqliteStore, DatabaseOfAnotherApplicationIsLeftAsItIs)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("other.db");
    execute(file, "CREATE TABLE cells (a)");
    EXPECT_THAT(openingError(file), HasSubstr("another application"));
    execute(file, "DROP TABLE cells; PRAGMA application_id = 7");
    EXPECT_THAT(openingError(file), HasSubstr("another application"));
}

TEST(SqliteStore, LaterVersionIsRefused)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("data.db");
    SqliteStore(file, creating());
    execute(file, "PRAGMA user_version = 99");
    EXPECT_THAT(openingError(file), AllOf(HasSubstr("99"), HasSubstr("later monitor-service")));
}

TEST(SqliteStore, OpenedAtOnceByManyIsMadeOnce)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("data.db");
    std::vector<std::future<void>> openings;
    openings.reserve(8);
    for (int i = 0; i < 8; ++i) {
        openings.push_back(std::async(std::launch::async, [&file] {
            SqliteStore store(file, creating());
            const auto session = store.write();
            const std::string id = session->newIdentifier();
            session->projects().insert({id, "Pit", "UTC", 0});
            session->commit();
        }));
    }
    for (auto& opening : openings) {
        EXPECT_NO_THROW(opening.get());
    }
    EXPECT_EQ(SqliteStore(file).read()->projects().list().size(), 8U);
}

TEST(SqliteStore, WhatIsNotCommittedIsUndone)
{
    const test::TemporaryFolder folder;
    SqliteStore store(folder.file("data.db"), creating());
    {
        const auto session = store.write();
        session->categories().add("Settlement");
        EXPECT_TRUE(session->categories().contains("Settlement"));
    }
    EXPECT_FALSE(store.read()->categories().contains("Settlement"));
}

TEST(SqliteStore, ReaderSeesOneMomentAndNeverWhatIsNotCommitted)
{
    const test::TemporaryFolder folder;
    SqliteStore store(folder.file("data.db"), creating());
    const auto before = store.read();
    EXPECT_FALSE(before->categories().contains("Settlement"));
    const auto writing = store.write();
    writing->categories().add("Settlement");
    EXPECT_FALSE(store.read()->categories().contains("Settlement"));
    writing->commit();
    EXPECT_TRUE(store.read()->categories().contains("Settlement"));
    EXPECT_FALSE(before->categories().contains("Settlement"));
}

TEST(SqliteStore, AnotherProcessSeesWhatWasCommitted)
{
    const test::TemporaryFolder folder;
    SqliteStore service(folder.file("data.db"), creating());
    SqliteStore administrator(folder.file("data.db"));
    EXPECT_FALSE(service.read()->categories().contains("Settlement"));
    const auto session = administrator.write();
    session->categories().add("Settlement");
    session->commit();
    EXPECT_TRUE(service.read()->categories().contains("Settlement"));
}

TEST(SqliteStore, SecondWriterWaitsThenGivesUp)
{
    const test::TemporaryFolder folder;
    SqliteStore store(folder.file("data.db"), impatient());
    SqliteStore other(folder.file("data.db"), impatient());
    const auto session = store.write();
    // One waits for its own process's lock, the other for the file's.
    const auto failureOf = [](SqliteStore& waiting) {
        return std::async(std::launch::async,
                          [&waiting] {
                              try {
                                  waiting.write();
                              } catch (const StoreError& error) {
                                  return error.failure();
                              }
                              return StoreFailure::Internal;
                          })
            .get();
    };
    EXPECT_EQ(failureOf(store), StoreFailure::Busy);
    EXPECT_EQ(failureOf(other), StoreFailure::Busy);
}

TEST(SqliteStore, WritingGoesOnAfterAFailure)
{
    const test::TemporaryFolder folder;
    SqliteStore store(folder.file("data.db"), creating());
    {
        const auto session = store.write();
        EXPECT_THROW(session->documents(DocumentKind::Cell).insert("none", "c1", "not JSON"), StoreError);
    }
    const auto session = store.write();
    session->categories().add("Settlement");
    session->commit();
    EXPECT_TRUE(store.read()->categories().contains("Settlement"));
}

TEST(SqliteStore, IdentifiersRiseOverReopeningAndAClockThatGoesBack)
{
    const test::TemporaryFolder folder;
    std::string previous;
    for (const Instant now : {1000, 1000, 500, 2000, 0}) {
        SqliteStoreOptions options = creating();
        options.clock = [now] {
            return now;
        };
        SqliteStore store(folder.file("data.db"), options);
        for (int i = 0; i < 3; ++i) {
            const auto session = store.write();
            const std::string one = session->newIdentifier();
            const std::string two = session->newIdentifier();
            session->commit();
            EXPECT_TRUE(isIdentifier(one));
            EXPECT_LT(previous, one);
            EXPECT_LT(one, two);
            previous = two;
        }
    }
}

TEST(SqliteStore, IdentifiersOfSeveralWritersDiffer)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("data.db");
    SqliteStore(file, creating());
    std::vector<std::future<std::vector<std::string>>> writers;
    writers.reserve(3);
    for (int writer = 0; writer < 3; ++writer) {
        writers.push_back(std::async(std::launch::async, [&file] {
            SqliteStore store(file);
            std::vector<std::string> ids;
            ids.reserve(30);
            for (int i = 0; i < 30; ++i) {
                const auto session = store.write();
                ids.push_back(session->newIdentifier());
                session->commit();
            }
            return ids;
        }));
    }
    std::set<std::string> all;
    for (auto& writer : writers) {
        const std::vector<std::string> ids = writer.get();
        EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
        all.insert(ids.begin(), ids.end());
    }
    EXPECT_EQ(all.size(), 90U);
}

TEST(SqliteStore, ReadersWorkBesideEachOther)
{
    const test::TemporaryFolder folder;
    SqliteStore store(folder.file("data.db"), creating());
    std::vector<std::unique_ptr<const Session>> sessions;
    sessions.reserve(20);
    for (int i = 0; i < 20; ++i) {
        sessions.push_back(store.read());
        EXPECT_TRUE(sessions.back()->projects().list().empty());
    }
}

TEST(SqliteStore, LogIsEmptiedWhenItCloses)
{
    const test::TemporaryFolder folder;
    {
        SqliteStore store(folder.file("data.db"), creating());
        const auto session = store.write();
        session->categories().add("Settlement");
        session->commit();
    }
    EXPECT_FALSE(fs::exists(folder.file("data.db-wal")));
}

TEST(SqliteStore, ErrorsOfSqliteAreToldApart)
{
    const auto failure = [](int code) {
        return storeError(SQLite::Exception("text", code)).failure();
    };
    EXPECT_EQ(failure(SQLITE_BUSY), StoreFailure::Busy);
    EXPECT_EQ(failure(SQLITE_BUSY_RECOVERY), StoreFailure::Busy);
    EXPECT_EQ(failure(SQLITE_FULL), StoreFailure::Full);
    EXPECT_EQ(failure(SQLITE_IOERR_SHMSIZE), StoreFailure::Full);
    EXPECT_EQ(failure(SQLITE_IOERR), StoreFailure::InputOutput);
    EXPECT_EQ(failure(SQLITE_IOERR_READ), StoreFailure::InputOutput);
    EXPECT_EQ(failure(SQLITE_IOERR_FSYNC), StoreFailure::NotWritable);
    EXPECT_EQ(failure(SQLITE_IOERR_WRITE), StoreFailure::NotWritable);
    EXPECT_EQ(failure(SQLITE_READONLY), StoreFailure::NotWritable);
    EXPECT_EQ(failure(SQLITE_CORRUPT), StoreFailure::InputOutput);
    EXPECT_EQ(failure(SQLITE_CONSTRAINT_UNIQUE), StoreFailure::Conflict);
    EXPECT_EQ(failure(SQLITE_MISUSE), StoreFailure::Internal);
}

} // namespace
} // namespace monitorservice
