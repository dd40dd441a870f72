#include "store/StoreError.h"
#include "store/postgres/PostgresConnection.h"
#include "store/postgres/PostgresStore.h"
#include "support/CommitProxy.h"
#include "support/PostgresDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>
#include <string>
#include <thread>

namespace monitorservice {
namespace {

using std::chrono::milliseconds;
using test::CommitProxy;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr milliseconds longPatience = std::chrono::minutes(1);
constexpr milliseconds shortPatience(300);

StoreOptions creating(milliseconds patience)
{
    StoreOptions options;
    options.createIfMissing = true;
    options.patience = patience;
    return options;
}

// How the commit of a new category ends.
struct Outcome
{
    std::optional<StoreFailure> failure;
    std::string message;
};

Outcome add(PostgresStore& store, const std::string& category)
{
    try {
        const auto session = store.write();
        session->categories().add(category);
        session->commit();
    } catch (const StoreError& error) {
        return {error.failure(), error.what()};
    }
    return {};
}

std::vector<std::string> categories(PostgresStore& store)
{
    return store.read()->categories().list();
}

class PostgresCommit : public ::testing::Test
{
protected:
    test::PostgresDatabase database;
    CommitProxy proxy{database.url()};
};

TEST_F(PostgresCommit, WhoseAnswerIsLostIsAskedFor)
{
    PostgresStore store(proxy.url(), creating(longPatience));
    proxy.setFate(CommitProxy::Fate::Unanswered);
    EXPECT_EQ(add(store, "Settlement").failure, std::nullopt);
    EXPECT_THAT(categories(store), ElementsAre("Settlement"));
    EXPECT_EQ(add(store, "Strain").failure, std::nullopt);
}

TEST_F(PostgresCommit, ThatDoesNotReachTheServerHasWrittenNothing)
{
    PostgresStore store(proxy.url(), creating(longPatience));
    proxy.setFate(CommitProxy::Fate::Lost);
    EXPECT_EQ(add(store, "Settlement").failure, StoreFailure::Unreachable);
    EXPECT_THAT(categories(store), IsEmpty());
    EXPECT_EQ(add(store, "Strain").failure, std::nullopt);
}

TEST_F(PostgresCommit, IsUnacknowledgedWhenTheServerCannotBeAsked)
{
    PostgresStore store(proxy.url(), creating(shortPatience));
    const auto session = store.write();
    session->categories().add("Settlement");
    proxy.setFate(CommitProxy::Fate::Unanswered);
    proxy.refuse(true);
    try {
        session->commit();
        FAIL();
    } catch (const StoreError& error) {
        EXPECT_EQ(error.failure(), StoreFailure::Unacknowledged) << error.what();
    }
    proxy.refuse(false);
    EXPECT_THAT(categories(store), ElementsAre("Settlement"));
}

TEST_F(PostgresCommit, IsNotWaitedForWithoutEnd)
{
    PostgresStore store(proxy.url(), creating(shortPatience));
    proxy.setFate(CommitProxy::Fate::Swallowed);
    const Outcome outcome = add(store, "Settlement");
    EXPECT_EQ(outcome.failure, StoreFailure::Unacknowledged);
    EXPECT_THAT(outcome.message, HasSubstr("no answer within 300 ms"));
    EXPECT_THAT(categories(store), IsEmpty());
    PostgresStore patient(database.url(), creating(longPatience));
    EXPECT_EQ(add(patient, "Strain").failure, std::nullopt);
}

// The server of the tests waits for a standby that does not exist, where a database asks for that.
class PostgresCommitWithStandby : public ::testing::Test
{
protected:
    PostgresCommitWithStandby()
    {
        PostgresStore(database.url(), creating(longPatience));
        other.execute("DO $$ BEGIN EXECUTE 'ALTER DATABASE ' || current_database() || "
                      "' SET synchronous_commit = on'; END $$");
    }

    // Until a commit waits for the standby.
    void awaitWait()
    {
        while (!other
                    .run("SELECT EXISTS (SELECT 1 FROM pg_stat_activity WHERE "
                         "datname = current_database() AND wait_event = 'SyncRep')")
                    .boolean(0, 0)) {
            std::this_thread::sleep_for(milliseconds(1));
        }
    }
    void cancelWait()
    {
        other.execute("SELECT pg_cancel_backend(pid) FROM pg_stat_activity WHERE "
                      "datname = current_database() AND wait_event = 'SyncRep'");
    }

    test::PostgresDatabase database;
    PostgresConnection other{database.url()};
};

TEST_F(PostgresCommitWithStandby, IsUnacknowledgedWhileTheStandbyIsGone)
{
    PostgresStore store(database.url(), creating(shortPatience));
    EXPECT_EQ(add(store, "Settlement").failure, StoreFailure::Unacknowledged);
    awaitWait();                                                 // the commit is not taken back
    EXPECT_EQ(add(store, "Strain").failure, StoreFailure::Busy); // and has the turn
    EXPECT_THAT(categories(store), IsEmpty());
}

TEST_F(PostgresCommitWithStandby, IsUnacknowledgedWhenTheServerIsToldNotToWait)
{
    PostgresStore store(database.url(), creating(longPatience));
    auto adding = std::async(std::launch::async, [&store] { return add(store, "Settlement"); });
    awaitWait();
    cancelWait();
    const Outcome outcome = adding.get();
    EXPECT_EQ(outcome.failure, StoreFailure::Unacknowledged);
    EXPECT_THAT(outcome.message, HasSubstr("canceling wait for synchronous replication"));
    EXPECT_THAT(categories(store), ElementsAre("Settlement"));
}

} // namespace
} // namespace monitorservice
