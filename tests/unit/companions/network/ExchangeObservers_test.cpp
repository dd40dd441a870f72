#include "ExchangeObservers.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using rk::ExchangeObservers;
using testing::ElementsAre;
using testing::IsEmpty;

class ExchangeObserversTest : public testing::Test
{
protected:
    // One that notes that it was called.
    NetworkObservation add(const std::string& name)
    {
        return observers.add([this, name](const NetworkExchange&) { called.push_back(name); });
    }

    // Those that are called with one exchange.
    std::vector<std::string> calledNow()
    {
        called.clear();
        observers.tell(NetworkExchange());
        return called;
    }

    ExchangeObservers observers;
    std::vector<std::string> called;
};

} // namespace

TEST_F(ExchangeObserversTest, AreCalledInTheOrderOfTheirAdding)
{
    EXPECT_TRUE(observers.isEmpty());
    const NetworkObservation first = add("first");
    const NetworkObservation second = add("second");
    EXPECT_FALSE(observers.isEmpty());
    EXPECT_THAT(calledNow(), ElementsAre("first", "second"));
    EXPECT_THAT(calledNow(), ElementsAre("first", "second"));
}

TEST_F(ExchangeObserversTest, AreToldWhatIsKnownOfTheExchange)
{
    NetworkExchange exchange;
    exchange.method = "PUT";
    exchange.httpStatus = 409;
    NetworkExchange heard;
    const NetworkObservation observation = observers.add([&](const NetworkExchange& told) { heard = told; });
    observers.tell(exchange);
    EXPECT_EQ(heard.method, "PUT");
    EXPECT_EQ(heard.httpStatus, 409);
}

TEST_F(ExchangeObserversTest, StayAsLongAsACopyOfTheirObservationLives)
{
    NetworkObservation first = add("first");
    NetworkObservation copy = first;
    const NetworkObservation second = add("second");
    first.reset();
    EXPECT_THAT(calledNow(), ElementsAre("first", "second"));
    copy.reset();
    EXPECT_THAT(calledNow(), ElementsAre("second"));
    const NetworkObservation third = add("third");
    EXPECT_THAT(calledNow(), ElementsAre("second", "third"));
}

TEST_F(ExchangeObserversTest, AreNoneWhenAllObservationsHaveEnded)
{
    add("gone").reset();
    EXPECT_TRUE(observers.isEmpty());
    EXPECT_THAT(calledNow(), IsEmpty());
}

TEST_F(ExchangeObserversTest, AnEmptyFunctionIsNoObserver)
{
    EXPECT_EQ(observers.add({}), nullptr);
    EXPECT_TRUE(observers.isEmpty());
    EXPECT_THAT(calledNow(), IsEmpty());
}

TEST_F(ExchangeObserversTest, OneMayEndItsOwnObservation)
{
    NetworkObservation own;
    int calls = 0;
    const auto kept = std::make_shared<int>(5);
    own = observers.add([&own, &calls, kept](const NetworkExchange&) {
        own.reset();
        calls += *kept; // what it holds is still there
    });
    const NetworkObservation next = add("next");
    EXPECT_THAT(calledNow(), ElementsAre("next"));
    EXPECT_THAT(calledNow(), ElementsAre("next"));
    EXPECT_EQ(calls, 5);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(ExchangeObserversTest, OneThatHasEndedItsOwnObservationIsNotCalledAgainWhileItRuns)
{
    NetworkObservation own;
    int calls = 0;
    own = observers.add([&](const NetworkExchange& exchange) {
        ++calls;
        own.reset();
        EXPECT_TRUE(observers.isEmpty());
        observers.tell(exchange);
    });
    observers.tell(NetworkExchange());
    EXPECT_EQ(calls, 1);
}

TEST_F(ExchangeObserversTest, OneMayEndAnothersObservationBeforeItsTurn)
{
    NetworkObservation other;
    const NetworkObservation ending = observers.add([&other](const NetworkExchange&) { other.reset(); });
    other = add("other");
    EXPECT_THAT(calledNow(), IsEmpty());
}

TEST_F(ExchangeObserversTest, OneThatIsAddedWhileAnotherIsCalledWaitsForTheNextExchange)
{
    std::vector<NetworkObservation> added;
    const NetworkObservation adding = observers.add([&](const NetworkExchange&) {
        for (int i = 0; i < 100; ++i) { // so many that the list moves
            added.push_back(add("added"));
        }
    });
    const NetworkObservation last = add("last");
    EXPECT_THAT(calledNow(), ElementsAre("last"));
    EXPECT_EQ(calledNow().size(), 101);
}

TEST_F(ExchangeObserversTest, OneMayBeToldOfAnotherExchangeMeanwhile)
{
    int depth = 0;
    const NetworkObservation nesting = observers.add([&](const NetworkExchange& exchange) {
        if (++depth < 3) {
            observers.tell(exchange);
        }
    });
    const NetworkObservation counting = add("counted");
    EXPECT_THAT(calledNow(), ElementsAre("counted", "counted", "counted"));
}
