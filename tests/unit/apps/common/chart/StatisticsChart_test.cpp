#include "chart/StatisticsChart.h"

#include "DailyValues.h"
#include "Quantities.h"

#include <gtest/gtest.h>

namespace {

const QTimeZone vienna("Europe/Vienna");
const chart::Words& words = chart::englishWords();

Chart::Curve curve(const QString& pointId, const QVector<QPointF>& points, const QVector<QDate>& days)
{
    Chart::Curve made;
    made.pointId = pointId;
    made.points = points;
    made.days = days;
    return made;
}

Chart settlement(const QVector<QPointF>& points, const QVector<QDate>& days)
{
    Chart chart;
    chart.panels = {{"s2"_q, "Settlement"_q, {curve("p1"_q, points, days)}, {}, {}, {}}};
    return chart;
}

} // namespace

TEST(StatisticsChart, OverTimeHasAPanelPerQuantityAndACurvePerPoint)
{
    const Chart drawn = chart::overTime(words, threeDays(), vienna, pointByName);
    ASSERT_EQ(drawn.panels.size(), 2);
    EXPECT_EQ(drawn.panels[0].valueLabel, "Displacement (cm)"_q);
    EXPECT_EQ(drawn.panels[1].valueLabel, "Settlement (mm)"_q);
    ASSERT_EQ(drawn.panels[0].curves.size(), 2);
    ASSERT_EQ(drawn.panels[1].curves.size(), 1);
    EXPECT_EQ(drawn.panels[0].curves[0].label, "I1, 2.5"_q);
    EXPECT_EQ(drawn.panels[0].curves[1].label, "I1, 10"_q);
    EXPECT_EQ(drawn.panels[1].curves[0].label, "S1"_q);
    ASSERT_EQ(drawn.panels[0].curves[0].points.size(), 2);
    // On the clock of the site: 23:00 of 2 March.
    EXPECT_EQ(static_cast<qint64>(drawn.panels[0].curves[0].points[0].x()), 1772492400000);
    EXPECT_EQ(drawn.panels[0].curves[0].days, (QVector<QDate>{{2026, 3, 2}, {2026, 3, 3}}));
    EXPECT_EQ(drawn.otherLabel, "Date (UTC+01:00)"_q);
}

TEST(StatisticsChart, PointsOfOneNameInTwoQuantitiesAreTwoCurves)
{
    RKPointLocationChartData settled = entry("P1", "", "2026-03-02T08:00:00+01:00"_q, 1.0);
    RKPointLocationChartData displaced = entry("P1", "", "2026-03-02T08:00:00+01:00"_q, 100.0);
    settled.id = "a"_q;
    displaced.id = "b"_q;
    const Chart drawn =
        chart::overTime(words, {{QDate(2026, 3, 2), {settled, displaced}}}, vienna,
                        [](const RKPointLocationChartData& point) {
                            return chart::ShownPoint{point.id == "a"_q ? quantity("s2", "Settlement", "mm")
                                                                       : quantity("s1", "Displacement", "mm"),
                                                     "c"_q, point.name};
                        });
    ASSERT_EQ(drawn.panels.size(), 2);
    ASSERT_EQ(drawn.panels[0].curves.size(), 1);
    EXPECT_EQ(drawn.panels[0].curves[0].points[0].y(), 100.0);
    EXPECT_EQ(drawn.panels[1].curves[0].points[0].y(), 1.0);
}

TEST(StatisticsChart, OverTimeIsOnTheClockOfTheProject)
{
    // Written with another offset than the project's: 08:00 there is 09:00 on the site.
    const chart::Days days{{QDate(2026, 3, 2), {entry("S1", "", "2026-03-02T08:00:00Z"_q, 1.0)}}};
    const Chart onSite = chart::overTime(words, days, vienna, pointByName);
    EXPECT_EQ(static_cast<qint64>(onSite.panels[0].curves[0].points[0].x()), 1772442000000);
    EXPECT_EQ(onSite.otherLabel, "Date (UTC+01:00)"_q);
    const Chart asWritten = chart::overTime(words, days, std::nullopt, pointByName);
    EXPECT_EQ(static_cast<qint64>(asWritten.panels[0].curves[0].points[0].x()), 1772438400000);
}

TEST(StatisticsChart, OverTimeNamesTheZoneWhenItsOffsetChanges)
{
    const chart::Days days{{QDate(2026, 3, 29), {entry("S1", "", "2026-03-29T23:00:00+02:00"_q, 1.0)}},
                           {QDate(2026, 3, 28), {entry("S1", "", "2026-03-28T23:00:00+01:00"_q, 1.0)}}};
    EXPECT_EQ(chart::overTime(words, days, vienna, pointByName).otherLabel, "Date (Europe/Vienna)"_q);
    EXPECT_EQ(chart::overTime(words, days, std::nullopt, pointByName).otherLabel, "Date"_q);
}

TEST(StatisticsChart, OverDepthHasACurvePerDayFromTheTop)
{
    const Chart drawn = chart::overDepth(threeDays(), quantity("s1", "Displacement", "mm"));
    ASSERT_EQ(drawn.panels.size(), 1);
    EXPECT_EQ(drawn.panels[0].valueLabel, "Displacement (mm)"_q);
    const QVector<Chart::Curve>& curves = drawn.panels[0].curves;
    ASSERT_EQ(curves.size(), 2); // the third day has no depths
    EXPECT_EQ(curves[0].label, "2026-03-02"_q);
    EXPECT_EQ(curves[1].points, (QVector<QPointF>{{3.0, 2.5}, {4.0, 10.0}}));
}

TEST(StatisticsChart, OverDepthOfNothingHasNoPanel)
{
    EXPECT_TRUE(chart::overDepth({}, quantity("s1", "Displacement", "mm")).panels.isEmpty());
}

TEST(StatisticsChart, TotalVariationsCountFromTheReference)
{
    Chart drawn = settlement({{0.0, 101.0}, {1.0, 103.0}}, {});
    drawn.panels[0].curves.append(curve("p2"_q, {{0.0, 5.0}}, {}));
    chart::makeCumulative(
        drawn, [](const QString& id) { return id == "p1"_q ? std::make_optional(100.0) : std::nullopt; });
    ASSERT_EQ(drawn.panels[0].curves.size(), 1); // the other point has no reference
    EXPECT_EQ(drawn.panels[0].curves[0].points, (QVector<QPointF>{{0.0, 1.0}, {1.0, 3.0}}));
}

TEST(StatisticsChart, TheCurvesThatChangedMostAreKeptInTheirOrder)
{
    Chart drawn;
    drawn.panels = {{"s2"_q, "Settlement"_q, {}, {}, {}, {}}};
    const QVector<QVector<double>> values{{5, 5}, {100, 90}, {0, 3, 0}, {7, 11}};
    for (const QVector<double>& some : values) {
        Chart::Curve curve;
        curve.label = curve.pointId = "S%1"_q.arg(drawn.panels[0].curves.size() + 1);
        for (const double value : some) {
            curve.points.append({0.0, value});
        }
        drawn.panels[0].curves.append(curve);
    }
    const auto referenceOf = [](const QString& id) {
        return id == "S4"_q ? std::make_optional(6.5) : std::nullopt;
    };
    EXPECT_EQ(chart::keepMostChanged(drawn, 3, referenceOf), 1);
    QStringList kept;
    for (const Chart::Curve& curve : qAsConst(drawn.panels[0].curves)) {
        kept.append(curve.label);
    }
    EXPECT_EQ(kept, (QStringList{"S2"_q, "S3"_q, "S4"_q}));
    EXPECT_EQ(chart::keepMostChanged(drawn, 2, referenceOf), 1);
    EXPECT_EQ(drawn.panels[0].curves[1].label, "S4"_q); // by 4.5 from its reference
    EXPECT_EQ(chart::keepMostChanged(drawn, 5, referenceOf), 0);
}

// The example of docs/alarms.md.
TEST(StatisticsChart, DailyVariationsAreByTheDaysBetween)
{
    Chart drawn =
        settlement({{0.0, 101.5}, {1.0, 103.0}, {4.0, 110.5}}, {{2026, 3, 2}, {2026, 3, 3}, {2026, 3, 6}});
    chart::makeDaily(drawn);
    EXPECT_EQ(drawn.panels[0].curves[0].points, (QVector<QPointF>{{1.0, 1.5}, {4.0, 2.5}}));
    EXPECT_EQ(drawn.panels[0].curves[0].days, (QVector<QDate>{{2026, 3, 3}, {2026, 3, 6}}));
}

TEST(StatisticsChart, LabelsSayWhatTheValuesAre)
{
    EXPECT_EQ(chart::valueLabel(words, chart::Values::Measured, "Force"_q, "kN"_q), "Force (kN)"_q);
    EXPECT_EQ(chart::valueLabel(words, chart::Values::Cumulative, "Force"_q, "kN"_q),
              "Force, total variation (kN)"_q);
    EXPECT_EQ(chart::valueLabel(words, chart::Values::Daily, "Force"_q, QString()),
              "Force, daily variation"_q);
}

TEST(StatisticsChart, ChoosesEntriesAndLeavesEmptyDaysOut)
{
    const chart::Days chosen = chart::chosen(
        threeDays(), [](const RKPointLocationChartData& entry) { return entry.depth == "10"_q; });
    ASSERT_EQ(chosen.size(), 2);
    EXPECT_EQ(chosen.first().size(), 1);
    EXPECT_EQ(chosen.first().first().value, 2.0);
}

TEST(StatisticsChart, QuantitiesAreThereOnceAndByName)
{
    const QList<MeasuredSubCategory> quantities = chart::quantitiesOf(threeDays(), pointByName);
    ASSERT_EQ(quantities.size(), 2);
    EXPECT_EQ(quantities[0].name, "Displacement"_q);
    EXPECT_EQ(quantities[1].name, "Settlement"_q);
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
