#include "domain/Identifier.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(Identifier, FirstOneHoldsItsMillisecond)
{
    EXPECT_EQ(identifierAfter("", 0x0123456789ab), "0123456789ab000000000000");
}

TEST(Identifier, RisesWithTime)
{
    EXPECT_EQ(identifierAfter("0123456789ab00000000000f", 0x0123456789ac), "0123456789ac000000000000");
}

TEST(Identifier, CountsWithinOneMillisecond)
{
    EXPECT_EQ(identifierAfter("0123456789ab00000000000f", 0x0123456789ab), "0123456789ab000000000010");
}

TEST(Identifier, RisesWhenTheClockGoesBack)
{
    EXPECT_EQ(identifierAfter("0123456789ab000000000000", 5), "0123456789ab000000000001");
    EXPECT_EQ(identifierAfter("0123456789ab000000000000", -5), "0123456789ab000000000001");
}

TEST(Identifier, GoesOnWithTheNextMillisecondWhenOneIsFull)
{
    EXPECT_EQ(identifierAfter("0123456789abffffffffffff", 5), "0123456789ac000000000000");
}

TEST(Identifier, IsTwentyFourLowerCaseHexadecimalDigits)
{
    EXPECT_TRUE(isIdentifier("0123456789abcdef01234567"));
    EXPECT_FALSE(isIdentifier("0123456789ABCDEF01234567"));
    EXPECT_FALSE(isIdentifier("0123456789abcdef0123456"));
    EXPECT_FALSE(isIdentifier("0123456789abcdef012345678"));
    EXPECT_FALSE(isIdentifier("0123456789abcdef0123456g"));
    EXPECT_FALSE(isIdentifier(""));
}

} // namespace
} // namespace monitorservice
