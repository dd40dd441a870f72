#include "DeliveryRun.h"
#include "DurabilityTest.h"

#include <chrono>

namespace monitorservice::test {
namespace {

class Kill : public DurabilityTest
{
};

// Mostly it is the service itself that comes back to the log as it was left, sometimes the inspection.
TEST_F(Kill, LosesNothingThatWasAnsweredAndLeavesNothingInPart)
{
    useSite(makeSite(file, clientCount));
    const int cycles = repetitions(105);
    int done = 0;
    for (std::unique_ptr<DataService> next; done < cycles; ++done) {
        std::unique_ptr<DataService> service = next ? std::move(next) : std::make_unique<DataService>(file);
        {
            const DeliveryRun run(clients, service->port(), site->token);
            run.waitForAnswers(random(0, 8));
            std::this_thread::sleep_for(std::chrono::microseconds(random(0, 8'000)));
            service->process().signal(SIGKILL);
            EXPECT_EQ(service->process().wait(), -SIGKILL);
        }
        if (random(0, 3) != 0) {
            next = std::make_unique<DataService>(file);
        }
        if (!holdsWhatItMust(file)) {
            break;
        }
    }
    const DeliveryTally sum = tally();
    EXPECT_GT(sum.answered, static_cast<std::size_t>(cycles) * 2);
    EXPECT_EQ(sum.refused, 0U);
    std::size_t excesses = 0;
    for (const auto& client : clients) {
        excesses += client->model().excesses().size();
    }
    EXPECT_GT(excesses, 0U);
    print("kill -9, " + std::to_string(done) + " times, " + std::to_string(excesses) + " excesses", sum);
}

} // namespace
} // namespace monitorservice::test
