#include "Progress.h"

#include "Text.h"

#include <gtest/gtest.h>

TEST(Progress, TellsRateAndTimeLeft)
{
    EXPECT_EQ(progressText(0, 400, "samples"_q, 0), "[------------------------------] 0 of 400 samples"_q);
    EXPECT_EQ(progressText(100, 400, "samples"_q, 2000),
              "[#######-----------------------] 100 of 400 samples, 50/s, 6 s left"_q);
    EXPECT_EQ(progressText(400, 400, "samples"_q, 8000),
              "[##############################] 400 of 400 samples, 50/s, 0 s left"_q);
}

TEST(Progress, TellsLongTimesInLargerUnits)
{
    EXPECT_TRUE(progressText(1, 126, "samples"_q, 1000).endsWith("2 min 5 s left"_q));
    EXPECT_TRUE(progressText(1, 4861, "samples"_q, 1000).endsWith("1 h 21 min left"_q));
}

TEST(Progress, FitsATerminal)
{
    EXPECT_LT(progressText(500'000'000, 1'000'000'000, "samples"_q, 3'000'000).size(), 100);
}
