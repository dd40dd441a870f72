#include "store/postgres/PostgresConnection.h"

#include "store/StoreError.h"
#include "support/PostgresDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace monitorservice {
namespace {

using ::testing::HasSubstr;

TEST(PostgresConnection, TransactionThatHasFailedIsNotCommitted)
{
    const test::PostgresDatabase database;
    PostgresConnection connection(database.url());
    connection.execute("BEGIN");
    EXPECT_THROW(connection.execute("SELECT 1 / 0"), StoreError);
    try {
        connection.commit(std::chrono::minutes(1));
        FAIL();
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::Internal);
    }
}

TEST(PostgresConnection, SilentServerIsGivenUp)
{
    const test::PostgresDatabase database;
    PostgresConnection connection(database.url());
    connection.setPatience(std::chrono::milliseconds(300));
    try {
        connection.run("SELECT pg_sleep(60)");
        FAIL();
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::Unreachable);
        EXPECT_THAT(error.what(), HasSubstr("no answer within 300 ms"));
    }
    EXPECT_FALSE(connection.isConnected());
    try {
        connection.run("SELECT 1");
        FAIL();
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::Unreachable);
        EXPECT_THAT(error.what(), HasSubstr("given up"));
    }
}

// More than any buffer on the way holds, both ways.
TEST(PostgresConnection, LargeValuesAreSentAndReceived)
{
    const test::PostgresDatabase database;
    PostgresConnection connection(database.url());
    const std::string large(20'000'000, 'x');
    EXPECT_EQ(connection.run("SELECT $1::text", large).text(0, 0), large);
}

class PostedStatements : public ::testing::Test
{
protected:
    PostedStatements()
    {
        connection.execute("CREATE TABLE notes (number bigint PRIMARY KEY, text text)");
        connection.execute("BEGIN");
    }

    void post(std::int64_t number, const std::string& text = "")
    {
        connection.post("INSERT INTO notes (number, text) VALUES ($1, $2)", number, text);
    }

    // As another connection sees it.
    std::int64_t committed() const
    {
        return PostgresConnection(database.url()).run("SELECT count(*) FROM notes").integer(0, 0);
    }

    // What waiting fails with.
    template <typename Wait>
    StoreFailure failureOf(Wait&& wait)
    {
        try {
            wait();
        } catch (const StoreError& error) {
            return error.failure();
        }
        ADD_FAILURE() << "has not failed";
        return StoreFailure::Internal;
    }

    test::PostgresDatabase database;
    PostgresConnection connection{database.url()};
};

TEST_F(PostedStatements, AreDoneBeforeWhatIsWaitedFor)
{
    post(1);
    post(2);
    EXPECT_EQ(connection.run("SELECT count(*) FROM notes").integer(0, 0), 2);
    post(3);
    EXPECT_EQ(connection.execute("SELECT count(*) FROM notes").text(0, 0), "3");
    post(4);
    EXPECT_EQ(connection.runOnce("SELECT count(*) FROM notes", {}).integer(0, 0), 4);
    post(5);
    connection.commit(std::chrono::minutes(1));
    EXPECT_EQ(committed(), 5);
}

TEST_F(PostedStatements, FailWithWhatIsWaitedForNext)
{
    post(1);
    post(1);
    post(2);
    EXPECT_EQ(failureOf([this] { connection.run("SELECT 1"); }), StoreFailure::Conflict);
    EXPECT_EQ(failureOf([this] { connection.commit(std::chrono::minutes(1)); }), StoreFailure::Internal);
    connection.rollBack();
    EXPECT_EQ(connection.run("SELECT count(*) FROM notes").integer(0, 0), 0);
}

TEST_F(PostedStatements, AreCommittedTogetherOrNotAtAll)
{
    post(1);
    post(1);
    EXPECT_EQ(failureOf([this] { connection.commit(std::chrono::minutes(1)); }), StoreFailure::Conflict);
    connection.rollBack();
    EXPECT_EQ(committed(), 0);
}

TEST_F(PostedStatements, GoWithTheTransactionWhetherTheyFailOrNot)
{
    for (const std::int64_t second : {2, 1}) {
        post(1);
        post(second);
        connection.rollBack();
        EXPECT_EQ(connection.run("SELECT count(*) FROM notes").integer(0, 0), 0);
        connection.execute("BEGIN");
    }
}

TEST_F(PostedStatements, MayBeManyAndLarge)
{
    const std::string large(100'000, 'x');
    for (std::int64_t number = 0; number < 2500; ++number) {
        post(number, number % 10 == 0 ? large : "");
    }
    connection.commit(std::chrono::minutes(1));
    EXPECT_EQ(committed(), 2500);
}

TEST_F(PostedStatements, TellOfALostConnection)
{
    const std::string process = connection.execute("SELECT pg_backend_pid()").text(0, 0);
    PostgresConnection(database.url()).execute("SELECT pg_terminate_backend(" + process + ", 10000)");
    EXPECT_EQ(failureOf([this] {
                  post(1);
                  connection.commit(std::chrono::minutes(1));
              }),
              StoreFailure::Unreachable);
    EXPECT_FALSE(connection.isConnected());
}

TEST_F(PostedStatements, ThatTakeTooLongAreGivenUp)
{
    connection.setPatience(std::chrono::milliseconds(300));
    connection.post("SELECT pg_sleep(60)");
    EXPECT_EQ(failureOf([this] { connection.run("SELECT 1"); }), StoreFailure::Unreachable);
    EXPECT_FALSE(connection.isConnected());
}

} // namespace
} // namespace monitorservice
