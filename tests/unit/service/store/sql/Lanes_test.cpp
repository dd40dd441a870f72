#include "store/sql/Lanes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;

Claim claimOf(std::vector<ClaimedTarget> targets)
{
    Claim claim;
    claim.targets = std::move(targets);
    return claim;
}

// Counted by another program: services of different versions at one database must agree.
TEST(Lanes, AreTheSameInEveryVersion)
{
    EXPECT_THAT(lanesOf(claimOf({{"c", "s"}})), ElementsAre(1548));
    EXPECT_THAT(lanesOf(claimOf({{"", ""}})), ElementsAre(49));
    EXPECT_THAT(lanesOf(claimOf({{"5695e0a21d41c80f0d5e1f5a", "5695e0a21d41c80f0d5e1f5b"}})),
                ElementsAre(1710));
    EXPECT_THAT(lanesOf(claimOf({{"坑", "沉降"}})), ElementsAre(3505));
}

TEST(Lanes, OfAClaimRiseEachOnce)
{
    EXPECT_THAT(lanesOf(Claim()), ElementsAre(allLanes));
    const std::vector<Lane> lanes = lanesOf(claimOf({{"c", "1"}, {"c", "2"}, {"c", "3"}, {"c", "2"}}));
    EXPECT_EQ(lanes.size(), 3U);
    EXPECT_TRUE(std::is_sorted(lanes.begin(), lanes.end()));
}

TEST(Lanes, AreNeverThatOfEverythingAndUsedAlike)
{
    std::vector<int> used(lastLane + 1);
    constexpr int targets = 100 * lastLane;
    for (int i = 0; i < targets; ++i) {
        ++used.at(lanesOf(claimOf({{"c", std::to_string(i)}})).front());
    }
    EXPECT_EQ(used.front(), 0);
    // 100 each, within eight times the square root of that.
    EXPECT_GT(*std::min_element(used.begin() + 1, used.end()), 20);
    EXPECT_LT(*std::max_element(used.begin() + 1, used.end()), 180);
}

TEST(Lanes, MeetWhereOneIsTheSame)
{
    EXPECT_TRUE(meet({1, 5}, {2, 5}));
    EXPECT_FALSE(meet({1, 5}, {2, 6}));
    EXPECT_TRUE(meet({1}, {allLanes}));
    EXPECT_TRUE(meet({allLanes}, {1}));
    EXPECT_TRUE(meet({allLanes}, {allLanes}));
}

} // namespace
} // namespace monitorservice
