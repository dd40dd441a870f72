#include "chart/StatisticsChart.h"

#include "DailyValues.h"

#include <gtest/gtest.h>

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

TEST(StatisticsChart, FindsPointsWithSeveralDepths)
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
