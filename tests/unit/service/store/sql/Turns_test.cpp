#include "store/sql/Turns.h"

#include <gmock/gmock.h>

#include <future>
#include <thread>
#include <utility>
#include <vector>

namespace monitorservice {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;

// Only keeps a broken turn from hanging the test; nothing is measured by it.
constexpr std::chrono::minutes patience{1};

const std::vector<Lane> everything{allLanes};

void waitUntilWaiting(const Turns& turns, std::size_t number)
{
    while (turns.waiting() != number) {
        std::this_thread::yield();
    }
}

bool isFree(Turns& turns, const std::vector<Lane>& lanes)
{
    return turns.take(lanes, milliseconds(0)) != nullptr;
}

TEST(Turns, OfEverythingAreHadByOneAtATime)
{
    Turns turns(4);
    Turns::Turn turn = turns.take(everything, milliseconds(0));
    EXPECT_TRUE(turn);
    EXPECT_FALSE(turns.take(everything, milliseconds(1)));
    EXPECT_FALSE(turns.take({7}, milliseconds(1)));
    turn.reset();
    EXPECT_TRUE(isFree(turns, everything));
}

TEST(Turns, OfDifferentLanesAreHadSideBySide)
{
    Turns turns(4);
    const Turns::Turn one = turns.take({1, 2}, milliseconds(0));
    Turns::Turn other = turns.take({3}, milliseconds(0));
    EXPECT_TRUE(one);
    EXPECT_TRUE(other);
    EXPECT_FALSE(isFree(turns, {2, 4}));
    EXPECT_FALSE(isFree(turns, {3}));
    EXPECT_FALSE(isFree(turns, everything));
    EXPECT_TRUE(isFree(turns, {4}));
    other.reset();
    EXPECT_TRUE(isFree(turns, {3}));
}

TEST(Turns, AreNoMoreAtOnceThanSaid)
{
    Turns turns(2);
    const Turns::Turn one = turns.take({1}, milliseconds(0));
    Turns::Turn other = turns.take({2}, milliseconds(0));
    EXPECT_FALSE(isFree(turns, {3}));
    other.reset();
    EXPECT_TRUE(isFree(turns, {3}));
}

TEST(Turns, GoInTheOrderOfComing)
{
    Turns turns(4);
    Turns::Turn first = turns.take(everything, milliseconds(0));
    std::vector<int> order;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&turns, &order, number] {
            const Turns::Turn turn =
                turns.take(number % 2 == 0 ? everything : std::vector<Lane>{1}, patience);
            if (turn) {
                order.push_back(number);
            }
        });
        waitUntilWaiting(turns, threads.size());
    }
    first.reset();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

TEST(Turns, NobodyIsFasterThanWhoWaits)
{
    Turns turns(4);
    Turns::Turn first = turns.take({1}, milliseconds(0));
    std::promise<void> release;
    std::thread waiting([&turns, &release] {
        const Turns::Turn turn = turns.take(everything, patience);
        EXPECT_TRUE(turn);
        release.get_future().wait();
    });
    waitUntilWaiting(turns, 1);
    EXPECT_FALSE(isFree(turns, {2})) << "who comes late would hold up who waits for everything";
    first.reset();
    EXPECT_FALSE(isFree(turns, {1})) << "it belongs to the one who waits, awake or not";
    release.set_value();
    waiting.join();
    EXPECT_TRUE(isFree(turns, {1}));
}

TEST(Turns, WhoWaitsForOneLaneHoldsUpNoOther)
{
    Turns turns(4);
    Turns::Turn first = turns.take({1}, milliseconds(0));
    std::thread waiting([&turns] { EXPECT_TRUE(turns.take({1}, patience)); });
    waitUntilWaiting(turns, 1);
    EXPECT_TRUE(isFree(turns, {2}));
    first.reset();
    waiting.join();
}

TEST(Turns, WhoGivesUpHoldsNobodyUp)
{
    Turns turns(4);
    Turns::Turn first = turns.take({1}, milliseconds(0));
    std::thread impatient([&turns] { EXPECT_FALSE(turns.take(everything, milliseconds(20))); });
    waitUntilWaiting(turns, 1);
    std::thread patient([&turns] { EXPECT_TRUE(turns.take({2}, patience)); });
    impatient.join();
    patient.join();
    EXPECT_EQ(turns.waiting(), 0U);
    first.reset();
    EXPECT_TRUE(isFree(turns, everything));
}

// Each lane's number is changed by whoever has the lane alone, and all of them by whoever has everything.
TEST(Turns, KeepApartWhatMeets)
{
    Turns turns(3);
    std::vector<int> counts(4);
    const auto count = [&turns, &counts](unsigned seed) {
        for (unsigned i = 0; i < 500; ++i) {
            const unsigned draw = (seed * 7919 + i * 104729) % 11;
            std::vector<Lane> lanes = draw == 10 ? everything
                                                 : std::vector<Lane>{static_cast<Lane>(1 + draw % 2),
                                                                     static_cast<Lane>(3 + draw % 3 % 2)};
            const Turns::Turn turn = turns.take(lanes, patience);
            for (std::size_t lane = 1; lane <= counts.size(); ++lane) {
                if (meet(lanes, {static_cast<Lane>(lane)})) {
                    ++counts[lane - 1];
                }
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 4; ++seed) {
        threads.emplace_back(count, seed);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<int> expected(4);
    for (unsigned seed = 0; seed < 4; ++seed) {
        for (unsigned i = 0; i < 500; ++i) {
            const unsigned draw = (seed * 7919 + i * 104729) % 11;
            for (unsigned lane = 0; lane < 4; ++lane) {
                const bool isCounted = draw == 10 || lane == draw % 2 || lane == 2 + draw % 3 % 2;
                expected[lane] += isCounted ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(counts, expected);
}

} // namespace
} // namespace monitorservice
