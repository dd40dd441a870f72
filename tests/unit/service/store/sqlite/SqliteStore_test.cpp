#include "store/sqlite/SqliteStore.h"

#include "store/sqlite/SqliteConnection.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>

namespace monitorservice {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;

StoreOptions creating()
{
    StoreOptions options;
    options.createIfMissing = true;
    return options;
}

std::string openingError(const fs::path& file, const StoreOptions& options = {})
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

// That it keeps other services away only another process can tell.
TEST(SqliteStore, ServiceAloneMakesTheLockFile)
{
    const test::TemporaryFolder folder;
    const fs::path file = folder.file("data.db");
    StoreOptions options = creating();
    SqliteStore(file, options);
    EXPECT_FALSE(fs::exists(folder.file("data.db-lock")));
    options.forService = true;
    SqliteStore(file, options);
    EXPECT_TRUE(fs::exists(folder.file("data.db-lock")));
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
