#include "DeliveryRun.h"
#include "DurabilityTest.h"
#include "StoreRun.h"
#include "support/CommitProxy.h"
#include "support/PostgresDatabase.h"
#include "support/PostgresServer.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

namespace monitorservice::test {
namespace {

class DatabaseFailure : public DurabilityTest
{
protected:
    // In the middle of something that the clients do.
    void waitForWork(const DeliveryRun& run)
    {
        run.waitForAnswers(random(1, 8));
        std::this_thread::sleep_for(std::chrono::microseconds(random(0, 20'000)));
    }
};

TEST_F(DatabaseFailure, KilledServiceLosesNothingThatWasAnswered)
{
    const PostgresDatabase database;
    useSite(makeSite(database.url(), clientCount));
    const int cycles = repetitions(15);
    for (int i = 0; i < cycles && !HasFailure(); ++i) {
        DataService service(database.url());
        {
            const DeliveryRun run(clients, service.port(), site->token);
            waitForWork(run);
            service.process().signal(SIGKILL);
            EXPECT_EQ(service.process().wait(), -SIGKILL);
        }
        holdsWhatItMust(database.url());
    }
    EXPECT_GT(tally().answered, static_cast<std::size_t>(cycles) * 2);
    EXPECT_EQ(tally().refused, 0U);
    print("kill -9 of the service, " + std::to_string(cycles) + " times", tally());
}

// What one of them claims, the other waits for.
TEST_F(DatabaseFailure, TwoServicesOfWhichOneIsKilledLoseNothingThatWasAnswered)
{
    const PostgresDatabase database;
    useSite(makeSite(database.url(), clientCount));
    const int cycles = repetitions(10);
    for (int i = 0; i < cycles && !HasFailure(); ++i) {
        DataService killed(database.url());
        const DataService other(database.url());
        {
            const DeliveryRun run(clients, {killed.port(), other.port()}, site->token);
            waitForWork(run);
            killed.process().signal(SIGKILL);
            EXPECT_EQ(killed.process().wait(), -SIGKILL);
            run.waitForAnswers(run.answered() + random(2, 8));
        }
        holdsWhatItMust(database.url());
    }
    EXPECT_GT(tally().answered, static_cast<std::size_t>(cycles) * 4);
    EXPECT_EQ(tally().refused, 0U);
    print("kill -9 of one of two services, " + std::to_string(cycles) + " times", tally());
}

// The service stays, and goes on as soon as the server is back.
TEST_F(DatabaseFailure, KilledServerLosesNothingThatWasAnswered)
{
    PostgresServer server;
    const std::string url = server.url("postgres");
    useSite(makeSite(url, clientCount));
    const DataService service(url);
    const int cycles = repetitions(10);
    for (int i = 0; i < cycles && !HasFailure(); ++i) {
        {
            const DeliveryRun run(clients, service.port(), site->token);
            waitForWork(run);
            server.kill();
            std::this_thread::sleep_for(std::chrono::milliseconds(random(0, 200)));
            server.start();
        }
        holdsWhatItMust(url);
    }
    EXPECT_GT(tally().answered, static_cast<std::size_t>(cycles) * 2);
    print("kill -9 of the server, " + std::to_string(cycles) + " times", tally());
}

// Whether a commit that is not answered has taken place is asked of the server: what it did not get is
// refused, what it did get is answered 2xx, unless the answer says that this is not known.
TEST_F(DatabaseFailure, CommitsThatAreCutOffAreAnsweredAsTheyEnded)
{
    const PostgresDatabase database;
    CommitProxy proxy(database.url());
    useSite(makeSite(database.url(), clientCount));
    const int cycles = repetitions(6);
    std::size_t unconfirmed = 0;
    {
        const StoreRun run(proxy.url());
        for (int i = 0; i < cycles && !HasFailure(); ++i) {
            std::atomic<bool> isOver{false};
            std::thread cutting([&, seed = nextSeed()] {
                std::mt19937 chance(seed);
                while (!isOver) {
                    proxy.setFate(chance() % 3 == 0 ? CommitProxy::Fate::Lost
                                                    : CommitProxy::Fate::Unanswered);
                    // The question can be cut off as well, again and again until patience ends.
                    std::this_thread::sleep_for(std::chrono::milliseconds(30 + chance() % 100));
                }
            });
            run.deliverUntilRefused(clients, *site);
            isOver = true;
            cutting.join();
            proxy.setFate(CommitProxy::Fate::Passed);
            holdsWhatItMust(database.url());
        }
        unconfirmed = run.unconfirmed();
    }
    const DeliveryTally sum = tally();
    EXPECT_EQ(sum.refused, static_cast<std::size_t>(cycles) * clientCount);
    EXPECT_LE(sum.unansweredWhole, unconfirmed);
    EXPECT_LT(unconfirmed, sum.refused);
    print("commits cut off until each client was refused, " + std::to_string(cycles) + " times", sum);
}

} // namespace
} // namespace monitorservice::test
