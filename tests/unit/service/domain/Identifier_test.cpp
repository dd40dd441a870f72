#include "domain/Identifier.h"

#include "support/IsIdentifier.h"

#include <gtest/gtest.h>

#include <limits>

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
    EXPECT_EQ(identifierAfter("", 0xabcdef), "000000abcdef000000000000");
    EXPECT_TRUE(test::isIdentifier(identifierAfter("", std::numeric_limits<Instant>::max())));
    EXPECT_TRUE(test::isIdentifier(identifierAfter("0123456789abcdef01234567", -1)));
}

} // namespace
} // namespace monitorservice
