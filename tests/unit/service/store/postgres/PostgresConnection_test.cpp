#include "store/postgres/PostgresConnection.h"

#include "store/StoreError.h"
#include "support/PostgresDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

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

class ExpectedStatements : public PostedStatements
{
protected:
    static constexpr const char* select = "SELECT text FROM notes WHERE number = $1";

    ExpectedStatements()
    {
        post(1, "one");
        post(2, "two");
        post(3, std::string("a") + "\x7f" + "3:b");
        connection.run(select, 1); // prepared from now on
        connection.run("SELECT 1");
        connection.takeWaits();
    }

    std::string textOf(std::int64_t number) { return connection.run(select, number).text(0, 0); }
};

TEST_F(ExpectedStatements, AreWaitedForTogether)
{
    for (const std::int64_t number : {1, 2, 3}) {
        connection.expect(select, number);
    }
    EXPECT_EQ(connection.takeWaits(), 0U);
    EXPECT_EQ(textOf(3), "a\x7f"
                         "3:b");
    EXPECT_EQ(textOf(1), "one");
    EXPECT_EQ(textOf(2), "two");
    EXPECT_EQ(connection.takeWaits(), 1U);
    EXPECT_EQ(textOf(2), "two") << "asked once more, as it was given";
    EXPECT_EQ(connection.takeWaits(), 1U);
}

TEST_F(ExpectedStatements, ComeWithWhateverIsWaitedFor)
{
    connection.expect(select, 1);
    EXPECT_EQ(connection.run("SELECT 1").integer(0, 0), 1);
    connection.expect(select, 2);
    connection.settle();
    EXPECT_EQ(connection.takeWaits(), 2U);
    EXPECT_EQ(textOf(1) + textOf(2), "onetwo");
    EXPECT_EQ(connection.takeWaits(), 0U);
}

TEST_F(ExpectedStatements, AreOfTheirValues)
{
    connection.expect(select, 1);
    EXPECT_EQ(textOf(2), "two");
    EXPECT_TRUE(connection.run(select, std::optional<std::int64_t>()).isEmpty());
    const char* const echo = "SELECT $1::text, $2::text";
    connection.expect(echo, "a", "b");
    connection.expect(echo, "ab", "");
    EXPECT_EQ(connection.run(echo, "", "ab").text(0, 0), "");
    EXPECT_EQ(connection.run(echo, "ab", "").text(0, 0), "ab");
    EXPECT_EQ(connection.run(echo, "a", "b").text(0, 0), "a");
}

TEST_F(ExpectedStatements, AreForgottenWhenAnythingIsChanged)
{
    const std::string change = "UPDATE notes SET text = 'other' WHERE number = 1";
    const std::string back = "UPDATE notes SET text = 'one' WHERE number = 1";
    const std::vector<std::function<void()>> changes{
        [&] { connection.post(change); },
        [&] { connection.run(change); },
        [&] { connection.runOnce(change, {}); },
        [&] { connection.execute(change); },
    };
    for (const auto& changeIt : changes) {
        for (const bool hasCome : {false, true}) {
            connection.expect(select, 1);
            if (hasCome) {
                connection.settle();
            }
            changeIt();
            EXPECT_EQ(textOf(1), "other");
            connection.run(back);
        }
    }
}

TEST_F(ExpectedStatements, AreOfOneTransaction)
{
    connection.expect(select, 1);
    connection.commit(std::chrono::minutes(1));
    PostgresConnection(database.url()).execute("UPDATE notes SET text = 'other'");
    for (int end = 0; end < 2; ++end) {
        connection.execute("BEGIN");
        EXPECT_EQ(textOf(1), end == 0 ? "other" : "another");
        connection.expect(select, 1);
        connection.settle();
        end == 0 ? connection.leave() : connection.rollBack();
        PostgresConnection(database.url()).execute("UPDATE notes SET text = 'another'");
    }
    connection.execute("BEGIN");
    EXPECT_EQ(textOf(1), "another");
}

TEST_F(ExpectedStatements, FailWithWhatIsWaitedForNext)
{
    const char* const divide = "SELECT 1 / $1::bigint";
    connection.run(divide, 1);
    connection.expect(select, 1);
    connection.expect(divide, 0);
    connection.expect(select, 2);
    EXPECT_EQ(failureOf([this] { textOf(1); }), StoreFailure::Internal);
    EXPECT_EQ(failureOf([this] { textOf(2); }), StoreFailure::Internal) << "the transaction has failed";
}

TEST_F(ExpectedStatements, MayBeTheWholeTransaction)
{
    connection.commit(std::chrono::minutes(1));
    const char* const begin = "BEGIN ISOLATION LEVEL REPEATABLE READ, READ ONLY";
    connection.run(begin);
    connection.rollBack();
    connection.takeWaits();
    connection.post(begin);
    connection.expect(select, 1);
    connection.settle();
    EXPECT_TRUE(connection.isInWorkingTransaction());
    EXPECT_EQ(textOf(1), "one");
    EXPECT_EQ(connection.takeWaits(), 1U);
    EXPECT_EQ(failureOf([this] { connection.run("DELETE FROM notes"); }), StoreFailure::NotWritable);
}

TEST_F(PostedStatements, OfATransactionThatIsLeftAreGone)
{
    post(1);
    connection.run("SELECT 1");
    connection.takeWaits();
    connection.leave();
    EXPECT_EQ(connection.takeWaits(), 0U);
    EXPECT_EQ(connection.run("SELECT count(*) FROM notes").integer(0, 0), 0);
    connection.execute("BEGIN");
    post(1);
    connection.leave(); // waits, as nobody knows whether it is there
    EXPECT_EQ(connection.run("SELECT count(*) FROM notes").integer(0, 0), 0);
    connection.leave(); // of none
    EXPECT_EQ(connection.run("SELECT count(*) FROM notes").integer(0, 0), 0);
}

TEST_F(PostedStatements, OfALostConnectionThatIsLeftAreToldOfByTheNext)
{
    const std::string process = connection.execute("SELECT pg_backend_pid()").text(0, 0);
    connection.leave();
    PostgresConnection(database.url()).execute("SELECT pg_terminate_backend(" + process + ", 10000)");
    EXPECT_EQ(failureOf([this] { connection.run("SELECT 1"); }), StoreFailure::Unreachable);
    EXPECT_FALSE(connection.isConnected());
}

} // namespace
} // namespace monitorservice
