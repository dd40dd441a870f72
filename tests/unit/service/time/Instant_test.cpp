#include "time/Instant.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(Instant, IsWrittenWithMillisecondsInUtc)
{
    EXPECT_EQ(isoText(0), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(isoText(1450679400123), "2015-12-21T06:30:00.123Z");
    EXPECT_EQ(isoText(951782400000), "2000-02-29T00:00:00.000Z");
}

TEST(Instant, BeforeTheEpochIsWrittenLikewise)
{
    EXPECT_EQ(isoText(-1), "1969-12-31T23:59:59.999Z");
}

TEST(Instant, IsWrittenAsTheClockShowsItWhereItWasTaken)
{
    EXPECT_EQ(isoText(1450679400123, -480), "2015-12-20T22:30:00.123-08:00");
    EXPECT_EQ(isoText(1450679400123, 345), "2015-12-21T12:15:00.123+05:45");
    EXPECT_EQ(isoText(0, 0), "1970-01-01T00:00:00.000+00:00");
    EXPECT_EQ(isoText(0, std::nullopt), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(isoText(0, -30), "1969-12-31T23:30:00.000-00:30");
}

} // namespace
} // namespace monitorservice
