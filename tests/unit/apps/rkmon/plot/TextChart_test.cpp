#include "plot/TextChart.h"

#include "Charts.h"
#include "Text.h"

#include <gtest/gtest.h>

TEST(TextChart, OverTimeDrawsBarsBetweenLeastAndMost)
{
    Chart drawn;
    drawn.panels = {panelOf("Settlement"_q, {curveOf("W1"_q, {{0.0, 1.0}, {9.0, 8.0}}),
                                             curveOf("W22"_q, {{0.0, 5.0}, {9.0, 5.0}})})};
    const QStringList lines = textChart(drawn, QSize(0, 0)); // as narrow as can be: ten steps
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
    const QStringList lines = textChart(drawn, QSize(60, 24));
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "Force (kN):"_q);
    EXPECT_EQ(lines[2], "Settlement (mm):"_q);
    EXPECT_EQ(lines[4], "               1970-01-01            1970-01-10"_q);
    EXPECT_EQ(lines[1].indexOf(QChar(0x2581)), lines[4].indexOf("1970-01-01"_q));
    EXPECT_EQ(lines[1].indexOf(QChar(0x2588)) + 1, lines[4].size());
}

namespace {

Chart overDepth(const QVector<QPointF>& earliest, const QVector<QPointF>& latest)
{
    Chart drawn;
    drawn.kind = Chart::Kind::OverDepth;
    drawn.panels = {
        panelOf("Displacement"_q, {curveOf("2026-03-02"_q, earliest), curveOf("2026-03-03"_q, latest)})};
    return drawn;
}

} // namespace

TEST(TextChart, OverDepthDrawsTheFirstAndTheLastDay)
{
    const QStringList lines =
        textChart(overDepth({{1.0, 2.5}, {2.0, 10.0}}, {{3.0, 2.5}, {4.0, 10.0}}), QSize(0, 0));
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], QString::fromUtf8("          1        4"));
    EXPECT_EQ(lines[1], QString::fromUtf8("     2.5 │○     ●   "));
    EXPECT_EQ(lines[2], QString::fromUtf8("      10 │   ○     ●"));
    EXPECT_EQ(lines[3], QString::fromUtf8("○ 2026-03-02   ● 2026-03-03"));
}

TEST(TextChart, OverDepthIsToScaleAndFillsTheLines)
{
    const QStringList lines = textChart(
        overDepth({{0.0, 1.0}, {0.0, 2.0}, {0.0, 5.0}}, {{9.0, 1.0}, {8.0, 2.0}, {0.0, 5.0}}), QSize(0, 7));
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines[1], QString::fromUtf8("       1 │○        ●"));
    EXPECT_EQ(lines[2], QString::fromUtf8("       2 │○       ● "));
    EXPECT_EQ(lines[3], QString::fromUtf8("         │          "));
    EXPECT_EQ(lines[4], lines[3]);
    EXPECT_EQ(lines[5], QString::fromUtf8("       5 │●         "));
}

TEST(TextChart, OverDepthShowsBothEndsOfMoreDepthsThanLines)
{
    QVector<QPointF> displacements;
    for (int i = 0; i <= 100; ++i) {
        displacements.append({i * 1.0, 0.5 + i * 0.5});
    }
    const QStringList lines = textChart(overDepth(displacements, displacements), QSize(80, 22));
    ASSERT_EQ(lines.size(), 22);
    EXPECT_TRUE(lines[1].startsWith(QString::fromUtf8("     0.5 │●"))) << lines[1].toStdString();
    EXPECT_TRUE(lines[20].startsWith(QString::fromUtf8("    50.5 │"))) << lines[20].toStdString();
    EXPECT_TRUE(lines[20].endsWith(QChar(0x25cf)));
    for (int i = 1; i <= 20; ++i) {
        EXPECT_TRUE(lines[i].contains(QChar(0x25cf))) << lines[i].toStdString();
    }
}

TEST(TextChart, OverDepthOfOneDepthHasOneLine)
{
    EXPECT_EQ(textChart(overDepth({{1.0, 4.0}}, {{2.0, 4.0}}), QSize(80, 24)).size(), 3);
}

TEST(TextChart, NothingForNothing)
{
    EXPECT_TRUE(textChart(Chart(), QSize(80, 24)).isEmpty());
}
