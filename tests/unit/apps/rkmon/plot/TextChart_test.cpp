#include "plot/TextChart.h"

#include "Charts.h"
#include "Text.h"

#include <gtest/gtest.h>

TEST(TextChart, OverTimeDrawsBarsBetweenLeastAndMost)
{
    Chart drawn;
    drawn.panels = {panelOf("Settlement"_q, {curveOf("W1"_q, {{0.0, 1.0}, {9.0, 8.0}}),
                                             curveOf("W22"_q, {{0.0, 5.0}, {9.0, 5.0}})})};
    const QStringList lines = textChart(drawn, 0); // as narrow as can be: ten steps
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QString::fromUtf8("W1            1 ▁        █ 8"));
    EXPECT_EQ(lines[1], QString::fromUtf8("W22           5 ▅        ▅ 5"));
}

TEST(TextChart, OverTimeSaysWhichQuantityAndFromWhenToWhen)
{
    const double day = 86'400'000.0;
    Chart drawn;
    drawn.panels = {panelOf("Force (kN)"_q, {curveOf("A1"_q, {{0.0, 1.0}, {9 * day, 8.0}})}),
                    panelOf("Settlement (mm)"_q, {curveOf("A1"_q, {{0.0, 5.0}, {day, 6.0}})})};
    const QStringList lines = textChart(drawn, 60);
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "Force (kN):"_q);
    EXPECT_EQ(lines[2], "Settlement (mm):"_q);
    EXPECT_EQ(lines[4], "               1970-01-01            1970-01-10"_q);
    EXPECT_EQ(lines[1].indexOf(QChar(0x2581)), lines[4].indexOf("1970-01-01"_q));
    EXPECT_EQ(lines[1].indexOf(QChar(0x2588)) + 1, lines[4].size());
}

TEST(TextChart, OverDepthDrawsTheFirstAndTheLastDay)
{
    Chart drawn;
    drawn.kind = Chart::Kind::OverDepth;
    drawn.panels = {panelOf("Displacement"_q, {curveOf("2026-03-02"_q, {{1.0, 2.5}, {2.0, 10.0}}),
                                               curveOf("2026-03-03"_q, {{3.0, 2.5}, {4.0, 10.0}})})};
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
