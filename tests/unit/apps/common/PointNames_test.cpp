#include "PointNames.h"

#include "Text.h"

#include <gtest/gtest.h>

TEST(PointNames, TellPointsApart)
{
    EXPECT_EQ(pointLabel("S1"_q, QString()), "S1"_q);
    EXPECT_EQ(pointLabel("I1"_q, "2.5"_q), "I1, 2.5"_q);
    EXPECT_EQ(pointText("S1"_q, QString()), "S1"_q);
    EXPECT_EQ(pointText("I1"_q, "2.5"_q), "I1 at depth 2.5"_q);
}

TEST(PointNames, DepthsHaveTheShortestText)
{
    EXPECT_EQ(depthText(2.5), "2.5"_q);
    EXPECT_EQ(depthText(-0.0), "0"_q);
    EXPECT_EQ(plainDepth("+02.50"_q), "2.5"_q);
    EXPECT_EQ(plainDepth("top"_q), "top"_q);
    EXPECT_EQ(plainDepth(QString()), QString());
}

TEST(PointNames, DepthsThatAreOneNumberAreOne)
{
    EXPECT_TRUE(isSameDepth("2.5"_q, "+02.50"_q));
    EXPECT_TRUE(isSameDepth(QString(), QString()));
    EXPECT_TRUE(isSameDepth("top"_q, "top"_q));
    EXPECT_FALSE(isSameDepth("2.5"_q, "2.6"_q));
    EXPECT_FALSE(isSameDepth("0"_q, QString()));
    EXPECT_FALSE(isSameDepth("top"_q, "bottom"_q));
}
