#include "store/postgres/PostgresConnection.h"

#include "store/StoreError.h"
#include "support/PostgresDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
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

} // namespace
} // namespace monitorservice
