#include "plot/StatisticsChart.h"

#include "Text.h"
#include "plot/TextChart.h"

#include <gtest/gtest.h>

namespace {

RKPointLocationChartData entry(const char* name, const char* depth, const QString& time, double value)
{
    RKPointLocationChartData data;
    data.name = QString::fromUtf8(name);
    data.depth = QString::fromUtf8(depth);
    data.time = QDateTime::fromString(time, Qt::ISODate);
    data.value = value;
    return data;
}

chart::Days threeDays()
{
    return {{QDate(2026, 3, 2),
             {entry("I1", "2.5", "2026-03-02T23:00:00+01:00"_q, 1.0),
              entry("I1", "10", "2026-03-02T23:00:00+01:00"_q, 2.0)}},
            {QDate(2026, 3, 3),
             {entry("I1", "2.5", "2026-03-03T09:00:00+01:00"_q, 3.0),
              entry("I1", "10", "2026-03-03T09:00:00+01:00"_q, 4.0)}},
            {QDate(2026, 3, 4), {entry("S1", "", "2026-03-04T09:00:00+01:00"_q, 5.0)}}};
}

} // namespace

TEST(StatisticsChart, OverTimeHasACurvePerPointAndDepth)
{
    const Chart drawn = chart::overTime(threeDays());
    ASSERT_EQ(drawn.curves.size(), 3);
    EXPECT_EQ(drawn.curves[0].label, "I1, 2.5"_q);
    EXPECT_EQ(drawn.curves[1].label, "I1, 10"_q);
    EXPECT_EQ(drawn.curves[2].label, "S1"_q);
    ASSERT_EQ(drawn.curves[0].points.size(), 2);
    // On the clock of the site: 23:00 of 2 March.
    EXPECT_EQ(static_cast<qint64>(drawn.curves[0].points[0].x()), 1772492400000);
    EXPECT_EQ(drawn.otherLabel, "Date (UTC+01:00)"_q);
}

TEST(StatisticsChart, OverTimeNamesNoOffsetWhenThereAreSeveral)
{
    const chart::Days days{{QDate(2026, 3, 29), {entry("S1", "", "2026-03-29T23:00:00+02:00"_q, 1.0)}},
                           {QDate(2026, 3, 28), {entry("S1", "", "2026-03-28T23:00:00+01:00"_q, 1.0)}}};
    EXPECT_EQ(chart::overTime(days).otherLabel, "Date"_q);
}

TEST(StatisticsChart, OverDepthHasACurvePerDayFromTheTop)
{
    const Chart drawn = chart::overDepth(threeDays());
    ASSERT_EQ(drawn.curves.size(), 2); // the third day has no depths
    EXPECT_EQ(drawn.curves[0].label, "2026-03-02"_q);
    EXPECT_EQ(drawn.curves[1].points, (QVector<QPointF>{{3.0, 2.5}, {4.0, 10.0}}));
}

TEST(StatisticsChart, LimitsLieAboutTheReference)
{
    PointLocSetting group;
    group.groupPoint = QStringList{"I1"_q};
    group.totalVar = 10.0;
    PointLocSetting withoutLimit = group;
    withoutLimit.totalVar = 0.0;
    Chart drawn = chart::overTime(threeDays());
    chart::addLimits(drawn, threeDays(), {group, withoutLimit},
                     {{"I1, 2.5"_q, {0.5, false}}, {"S1"_q, {1, false}}});
    ASSERT_EQ(drawn.limits.size(), 2);
    EXPECT_EQ(drawn.limits[0].value, 10.5);
    EXPECT_EQ(drawn.limits[0].label, "I1, 2.5 +10"_q);
    EXPECT_EQ(drawn.limits[1].value, -9.5);
    EXPECT_EQ(drawn.limits[1].curve, 0);
}

TEST(StatisticsChart, TellsPointsWithSeveralDepths)
{
    EXPECT_EQ(chart::namesWithProfile(threeDays()), QStringList{"I1"_q});
}

TEST(StatisticsChart, ThinningKeepsTheEnds)
{
    chart::Days days;
    for (int day = 0; day < 100; ++day) {
        days.insert(QDate(2026, 1, 1).addDays(day), {});
    }
    const chart::Days kept = chart::thinned(days, 20);
    EXPECT_EQ(kept.size(), 20);
    EXPECT_EQ(kept.firstKey(), days.firstKey());
    EXPECT_EQ(kept.lastKey(), days.lastKey());
    EXPECT_EQ(chart::thinned(days, 100).size(), 100);
}

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
    const QStringList lines = textChart(chart::overDepth(threeDays()), 0);
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
