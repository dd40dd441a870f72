#include "domain/Identifier.h"

#include "support/IsIdentifier.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace monitorservice {
namespace {

TEST(Identifier, FirstOneHoldsItsMillisecondAndItsLane)
{
    EXPECT_EQ(identifierAfter("", 0x123456789ab, 0), "123456789ab0000000000000");
    EXPECT_EQ(identifierAfter("", 0x123456789ab, 0xfed), "123456789abfed0000000000");
}

TEST(Identifier, RisesWithTime)
{
    EXPECT_EQ(identifierAfter("123456789ab00a000000000f", 0x123456789ac, 10), "123456789ac00a0000000000");
    EXPECT_EQ(identifierAfter("123456789abfff000000000f", 0x123456789ac, 10), "123456789ac00a0000000000");
}

TEST(Identifier, CountsWithinOneMillisecond)
{
    EXPECT_EQ(identifierAfter("123456789ab00a000000000f", 0x123456789ab, 10), "123456789ab00a0000000010");
}

TEST(Identifier, RisesWhenTheClockGoesBack)
{
    EXPECT_EQ(identifierAfter("123456789ab00a0000000000", 5, 10), "123456789ab00a0000000001");
    EXPECT_EQ(identifierAfter("123456789ab00a0000000000", -5, 10), "123456789ab00a0000000001");
}

TEST(Identifier, GoesOnWithTheNextMillisecondWhenOneIsFull)
{
    EXPECT_EQ(identifierAfter("123456789ab00affffffffff", 5, 10), "123456789ac00a0000000000");
}

TEST(Identifier, RisesAfterThatOfAnotherLane)
{
    EXPECT_EQ(identifierAfter("123456789ab0090000000007", 0x123456789ab, 10), "123456789ab00a0000000000");
    EXPECT_EQ(identifierAfter("123456789ab0090000000007", 5, 10), "123456789ab00a0000000000");
    EXPECT_EQ(identifierAfter("123456789ab00b0000000007", 0x123456789ab, 10), "123456789ac00a0000000000");
    EXPECT_EQ(identifierAfter("123456789ab00b0000000007", 5, 0), "123456789ac0000000000000");
}

// As they were written before there were lanes: 12 digits of each.
TEST(Identifier, RisesAfterAnEarlierForm)
{
    EXPECT_EQ(identifierAfter("019a1b2c3d4e000000000005", 0x19a1b2c3d4e, 10), "19a1b2c3d4e00a0000000000");
    const std::string unusual = identifierAfter("fedcba987654ffffffffffff", 5, 10);
    EXPECT_GT(unusual, "fedcba987654ffffffffffff");
    EXPECT_TRUE(test::isIdentifier(unusual));
}

TEST(Identifier, IsTwentyFourLowerCaseHexadecimalDigits)
{
    EXPECT_EQ(identifierAfter("", 0xabcdef, 1), "00000abcdef0010000000000");
    EXPECT_TRUE(test::isIdentifier(identifierAfter("", std::numeric_limits<Instant>::max(), 0xfff)));
    EXPECT_TRUE(test::isIdentifier(identifierAfter("123456789abcdef012345678", -1, 0)));
}

} // namespace
} // namespace monitorservice
