#include "plot/TextChart.h"

#include "Text.h"
#include "chart/Chart.h"

#include <gtest/gtest.h>

TEST(TextChart, OverTimeDrawsBarsBetweenLeastAndMost)
{
    Chart drawn;
    drawn.curves = {{"W1"_q, {{0.0, 1.0}, {9.0, 8.0}}}, {"W22"_q, {{0.0, 5.0}, {9.0, 5.0}}}};
    const QStringList lines = textChart(drawn, 0); // as narrow as can be: ten steps
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QString::fromUtf8("W1            1 ▁        █ 8"));
    EXPECT_EQ(lines[1], QString::fromUtf8("W22           5 ▅        ▅ 5"));
}

TEST(TextChart, OverDepthDrawsTheFirstAndTheLastDay)
{
    Chart drawn;
    drawn.kind = Chart::Kind::OverDepth;
    drawn.curves = {{"2026-03-02"_q, {{1.0, 2.5}, {2.0, 10.0}}}, {"2026-03-03"_q, {{3.0, 2.5}, {4.0, 10.0}}}};
    const QStringList lines = textChart(drawn, 0);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], QString::fromUtf8("          1        4"));
    EXPECT_EQ(lines[1], QString::fromUtf8("     2.5 │○     ●   "));
    EXPECT_EQ(lines[2], QString::fromUtf8("      10 │   ○     ●"));
    EXPECT_EQ(lines[3], QString::fromUtf8("○ 2026-03-02   ● 2026-03-03"));
}

TEST(TextChart, NothingForNothing)
{
    EXPECT_TRUE(textChart(Chart(), 80).isEmpty());
}
