#include "store/postgres/PostgresStore.h"

#include "support/PostgresDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

StoreOptions creating()
{
    StoreOptions options;
    options.createIfMissing = true;
    options.patience = std::chrono::minutes(1);
    return options;
}

// The failure that the action ends with.
template <typename Action>
std::optional<StoreFailure> failureOf(const Action& action)
{
    try {
        action();
    } catch (const StoreError& error) {
        return error.failure();
    }
    return std::nullopt;
}

class PostgresStoreTest : public ::testing::Test
{
protected:
    // As when the server is started anew.
    void endConnections() const
    {
        const std::unique_ptr<PGconn, decltype(&PQfinish)> connection(PQconnectdb(database.url().c_str()),
                                                                      PQfinish);
        // Returns when they are gone.
        const std::unique_ptr<PGresult, decltype(&PQclear)> result(
            PQexec(connection.get(), "SELECT pg_terminate_backend(pid, 60000) FROM pg_stat_activity WHERE "
                                     "datname = current_database() AND pid <> pg_backend_pid()"),
            PQclear);
        EXPECT_GT(PQntuples(result.get()), 0) << PQerrorMessage(connection.get());
    }

    void addCategory(const std::string& name)
    {
        const auto session = store.write();
        session->categories().add(name);
        session->commit();
    }

    // More than come from the database at once.
    void addManyCells()
    {
        const auto session = store.write();
        session->projects().insert({"p", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        for (int i = 0; i < 2000; ++i) {
            const std::string id = "c" + std::to_string(i);
            session->documents(DocumentKind::Cell)
                .insert("p", id,
                        R"({"_id":")" + id +
                            R"(","projectId":"p","name":"Tower","category":"Settlement","createdAt":)"
                            R"("2015-12-21T06:30:00.123Z","createdBy":"Ada","updatedAt":)"
                            R"("2015-12-21T06:30:00.123Z","updatedBy":"Ada"})");
        }
        session->commit();
    }

    PostgresDatabase database;
    PostgresStore store{database.url(), creating()};
};

TEST_F(PostgresStoreTest, ConnectionsThatWereLostWhileTheyWaitedAreReplaced)
{
    {
        const auto one = store.read();
        const auto other = store.read();
        one->categories().list();
    }
    endConnections();
    EXPECT_FALSE(store.read()->categories().contains("Settlement"));
    endConnections();
    addCategory("Settlement");
    EXPECT_TRUE(store.read()->categories().contains("Settlement"));
}

TEST_F(PostgresStoreTest, LostConnectionEndsItsSessionAlone)
{
    {
        const auto session = store.write();
        session->categories().add("Lost");
        endConnections();
        const auto add = [&session] {
            session->categories().add("Settlement");
        };
        EXPECT_EQ(failureOf(add), StoreFailure::Unreachable);
        EXPECT_EQ(failureOf(add), StoreFailure::Unreachable);
    }
    addCategory("Settlement");
    EXPECT_THAT(store.read()->categories().list(), ::testing::ElementsAre("Settlement"));
}

TEST_F(PostgresStoreTest, ConnectionLostBeforeTheCommitIsAFailureOfTheCommit)
{
    {
        const auto session = store.write();
        session->categories().add("Lost");
        endConnections();
        EXPECT_EQ(failureOf([&session] { session->commit(); }), StoreFailure::Unreachable);
    }
    EXPECT_FALSE(store.read()->categories().contains("Lost"));
}

TEST_F(PostgresStoreTest, TurnOfALostConnectionIsFreeForOtherProcesses)
{
    const auto session = store.write();
    endConnections();
    PostgresStore other(database.url(), creating());
    const auto next = other.write();
    next->categories().add("Settlement");
    next->commit();
    EXPECT_EQ(failureOf([&session] { session->categories().list(); }), StoreFailure::Unreachable);
}

TEST_F(PostgresStoreTest, ConnectionLostDuringAVisitEndsTheVisit)
{
    addManyCells();
    const auto session = store.read();
    DocumentQuery query;
    query.project = "p";
    int seen = 0;
    const auto visit = [&] {
        session->documents(DocumentKind::Cell).visit(query, [&](std::string_view /*document*/) {
            if (++seen == 1) {
                endConnections();
            }
        });
    };
    EXPECT_EQ(failureOf(visit), StoreFailure::Unreachable);
    EXPECT_GT(seen, 0);
    EXPECT_LT(seen, 2000);
    EXPECT_EQ(store.read()->documents(DocumentKind::Cell).count(query), 2000U);
}

TEST_F(PostgresStoreTest, SessionThatHasFailedIsNotCommitted)
{
    {
        const auto session = store.write();
        session->categories().add("Settlement");
        EXPECT_EQ(failureOf([&session] {
                      session->grants().add({"g", "none", "p", {}, Right::Read, 1});
                  }),
                  StoreFailure::Conflict);
        EXPECT_EQ(failureOf([&session] { session->commit(); }), StoreFailure::Internal);
    }
    EXPECT_FALSE(store.read()->categories().contains("Settlement"));
}

TEST_F(PostgresStoreTest, TextThatNoDatabaseHoldsIsAConflict)
{
    const std::string name("a\0b", 3);
    const auto session = store.write();
    EXPECT_EQ(failureOf([&] { session->categories().add(name); }), StoreFailure::Conflict);
}

TEST_F(PostgresStoreTest, ServerThatIsNotThereIsNamedWithoutItsPassword)
{
    try {
        PostgresStore("postgresql://ada:secret@/data?host=/nonexistent");
        FAIL();
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::CannotOpen);
        EXPECT_THAT(error.what(), HasSubstr("/data"));
        EXPECT_THAT(error.what(), Not(HasSubstr("secret")));
    }
}

} // namespace
} // namespace monitorservice::test
