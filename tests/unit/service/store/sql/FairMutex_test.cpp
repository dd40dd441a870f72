#include "store/sql/FairMutex.h"

#include <gmock/gmock.h>

#include <future>
#include <thread>
#include <vector>

namespace monitorservice {
namespace {

using std::chrono::milliseconds;

// Only keeps a broken mutex from hanging the test; nothing is measured by it.
constexpr std::chrono::minutes patience{1};

void waitUntilWaiting(const FairMutex& mutex, std::size_t number)
{
    while (mutex.waiting() != number) {
        std::this_thread::yield();
    }
}

TEST(FairMutex, IsHadByOneAtATime)
{
    FairMutex mutex;
    EXPECT_TRUE(mutex.try_lock_for(milliseconds(0)));
    EXPECT_FALSE(mutex.try_lock_for(milliseconds(1)));
    mutex.unlock();
    EXPECT_TRUE(mutex.try_lock_for(milliseconds(0)));
    mutex.unlock();
}

TEST(FairMutex, GoesInTheOrderOfComing)
{
    FairMutex mutex;
    ASSERT_TRUE(mutex.try_lock_for(milliseconds(0)));
    std::vector<int> order;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&mutex, &order, number] {
            if (mutex.try_lock_for(patience)) {
                order.push_back(number);
                mutex.unlock();
            }
        });
        waitUntilWaiting(mutex, threads.size());
    }
    mutex.unlock();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(order, testing::ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

TEST(FairMutex, NobodyIsFasterThanWhoWaits)
{
    FairMutex mutex;
    ASSERT_TRUE(mutex.try_lock_for(milliseconds(0)));
    std::promise<void> release;
    std::thread waiting([&mutex, &release] {
        EXPECT_TRUE(mutex.try_lock_for(patience));
        release.get_future().wait();
        mutex.unlock();
    });
    waitUntilWaiting(mutex, 1);
    mutex.unlock();
    EXPECT_FALSE(mutex.try_lock_for(milliseconds(0))) << "it belongs to the one who waits, awake or not";
    release.set_value();
    waiting.join();
    EXPECT_TRUE(mutex.try_lock_for(milliseconds(0)));
    mutex.unlock();
}

TEST(FairMutex, WhoGivesUpHoldsNobodyUp)
{
    FairMutex mutex;
    ASSERT_TRUE(mutex.try_lock_for(milliseconds(0)));
    std::thread impatient([&mutex] { EXPECT_FALSE(mutex.try_lock_for(milliseconds(20))); });
    std::thread patient([&mutex] {
        EXPECT_TRUE(mutex.try_lock_for(patience));
        mutex.unlock();
    });
    impatient.join();
    waitUntilWaiting(mutex, 1);
    mutex.unlock();
    patient.join();
    EXPECT_EQ(mutex.waiting(), 0U);
}

} // namespace
} // namespace monitorservice
