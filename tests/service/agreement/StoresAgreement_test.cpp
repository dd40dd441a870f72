// Whatever keeps the data, the service answers the same: two services with different stores are asked the
// same random requests. What differs is printed with the seed and the number of the request. In the
// environment, RK_TEST_LONG=1: many more requests; RK_TEST_SEED and RK_TEST_REQUESTS: one run of that seed
// and length.

#include "AskedServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace monitorservice::test {
namespace {

// A run that is shorter looks for a difference alone.
constexpr std::size_t enoughForEveryAnswer = 300;
constexpr std::size_t enoughForEveryRoute = 5000;

class StoresAgreement : public AskedServices
{
};

TEST_P(StoresAgreement, RandomRequestsAreAnsweredTheSame)
{
    const bool isLong = std::getenv("RK_TEST_LONG") != nullptr;
    const std::size_t number = given("RK_TEST_REQUESTS", isLong ? 5000 : 600);
    constexpr std::size_t requestsOfStep = 1000;
    while (asked < number && !HasFailure()) {
        askRandomly(std::min(requestsOfStep, number - asked));
        services.compareContents();
        EXPECT_FALSE(HasFailure()) << "after request " << asked << " of seed " << seed;
    }
    if (number >= enoughForEveryAnswer) {
        EXPECT_GT(answers[200], static_cast<int>(number) / 3);
        EXPECT_GT(answers[201], 0);
        EXPECT_GT(answers[400], 0);
    }
    if (number >= enoughForEveryRoute) {
        EXPECT_THAT(neverDone(), ::testing::IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, StoresAgreement, ::testing::Range(1U, 5U));

} // namespace
} // namespace monitorservice::test
