#include "Contract.h"

// The last sample of each point on each calendar day.

namespace {

using ChartData = QMap<QDate, QList<RKPointLocationChartData>>;

class StatisticsContract : public Contract
{
protected:
    StatisticsContract() : cellId(created("VH"_q).id) {}

    RKPointLocation measured(const QString& name, const QString& depth,
                             const QList<RKPointLocationData>& samples)
    {
        RKPointLocation measured = point(cellId, name, depth);
        measured.data = samples;
        return measured;
    }

    ChartData normal(const RKPointLocationCondition& condition)
    {
        ChartData chartData;
        EXPECT_TRUE(data.getNormalPointLocation(condition, chartData)) << lastErrorText();
        return chartData;
    }

    // The day of december(day) on the project's calendar, given that `chartData` begins on december(first).
    // Where the project's zone is far from Greenwich it is the day before or after.
    QDate projectDay(const ChartData& chartData, int first, int day)
    {
        const QDate here(2015, 12, first);
        const qint64 shift = chartData.isEmpty() ? 0 : here.daysTo(chartData.firstKey());
        EXPECT_LE(std::abs(shift), deployment().isOwn() ? 0 : 1);
        return QDate(2015, 12, day).addDays(shift);
    }

    QString cellId;
};

void expectEntry(const RKPointLocationChartData& entry, const RKPointLocation& point,
                 const RKPointLocationData& sample)
{
    EXPECT_EQ(entry.id, point.id);
    EXPECT_EQ(entry.name, point.name);
    EXPECT_EQ(entry.depth, point.depth);
    EXPECT_EQ(entry.count, sample.count);
    EXPECT_EQ(entry.value, sample.value);
    EXPECT_EQ(entry.time, sample.time);
    EXPECT_EQ(entry.entity, point.links);
}

} // namespace

TEST_F(StatisticsContract, LastSampleOfEachDayByName)
{
    RKPointLocation second = measured(
        "S2"_q, {},
        {sample(1, december(18), 1.5), sample(2, december(18, 9), 2.5), sample(3, december(20), 3.5)});
    second.links = {{"model"_q, {deployment().run + "-m"_q}}};
    const RKPointLocation first = measured("S1"_q, {}, {sample(7, december(18), -1)});
    deliver({second, first});
    const QList<RKPointLocation> points = pointsOf(cellId);
    ASSERT_EQ(namesOf(points), (QStringList{"S2"_q, "S1"_q}));

    const ChartData chartData = normal(ofCell(cellId));
    const QDate day18 = projectDay(chartData, 18, 18);
    const QDate day20 = projectDay(chartData, 18, 20);
    ASSERT_EQ(chartData.keys(), (QList<QDate>{day18, day20}));
    ASSERT_EQ(namesOf(chartData[day18]), (QStringList{"S1"_q, "S2"_q}));
    expectEntry(chartData[day18][0], points[1], first.data[0]);
    expectEntry(chartData[day18][1], points[0], second.data[1]);
    ASSERT_EQ(chartData[day20].size(), 1);
    expectEntry(chartData[day20][0], points[0], second.data[2]);
}

TEST_F(StatisticsContract, OnlyWhatTheConditionAsks)
{
    deliver({measured("S1"_q, {}, {sample(1, december(18), 1, "A"_q), sample(2, december(18, 9), 2)}),
             measured("S2"_q, {}, {sample(1, december(20), 3)})});
    RKPointLocationCondition named = ofCell(cellId);
    named.names = QStringList{"S2"_q};
    EXPECT_EQ(normal(named).size(), 1);

    RKPointLocationCondition flagged = ofCell(cellId);
    flagged.onlyTimeFlagA = true;
    const ChartData ofFlag = normal(flagged);
    ASSERT_EQ(ofFlag.size(), 1);
    ASSERT_EQ(ofFlag.first().size(), 1);
    EXPECT_EQ(ofFlag.first().first().count, 1);

    RKPointLocationCondition period = ofCell(cellId);
    period.isAllTime = false;
    period.startTime = period.endTime = QDateTime(QDate(2015, 12, 20), QTime(0, 0), Qt::UTC);
    const ChartData ofDay = normal(period);
    ASSERT_EQ(ofDay.size(), 1);
    EXPECT_EQ(namesOf(ofDay.first()), QStringList{"S2"_q});

    EXPECT_TRUE(normal(ofCell("000000000000000000000000"_q)).isEmpty());
}

TEST_F(StatisticsContract, DepthsRiseWithinAName)
{
    QList<RKPointLocation> delivery{measured("I2"_q, "1"_q, {sample(1, december(18), 21)}),
                                    measured("S1"_q, {}, {sample(1, december(18), 99)})};
    for (const char* depth : {"10", "2.5", "0.5"}) {
        delivery.append(measured("I1"_q, QLatin1String(depth), {sample(1, december(18), 1)}));
    }
    deliver(delivery);

    ChartData chartData;
    ASSERT_TRUE(data.getDepthPointLocation(ofCell(cellId), chartData)) << lastErrorText();
    ASSERT_EQ(chartData.size(), 1);
    EXPECT_EQ(chartData.firstKey(), projectDay(chartData, 18, 18));
    QStringList found;
    for (const RKPointLocationChartData& entry : qAsConst(chartData.first())) {
        found.append("%1 at %2"_q.arg(entry.name, entry.depth));
    }
    EXPECT_EQ(found, (QStringList{"I1 at 0.5"_q, "I1 at 2.5"_q, "I1 at 10"_q, "I2 at 1"_q}));
    EXPECT_EQ(chartData.first().last().value, 21.0);
}

TEST_F(StatisticsContract, DaysThatTheReplyLacksStay)
{
    deliver({measured("S1"_q, {}, {sample(1, december(18), 1)})});
    const QDate before(2001, 1, 1);
    ChartData chartData{{before, {}}};
    ASSERT_TRUE(data.getNormalPointLocation(ofCell(cellId), chartData));
    EXPECT_EQ(chartData.size(), 2);
    EXPECT_TRUE(chartData.contains(before));
}
