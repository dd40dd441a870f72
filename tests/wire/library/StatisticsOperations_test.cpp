#include "../../support/LibraryTest.h"

namespace {

using ChartData = QMap<QDate, QList<RKPointLocationChartData>>;

class StatisticsOperations : public LibraryTest
{
protected:
    ChartData read(const QByteArray& answer, ChartData chartData = {})
    {
        server.answerJson(200, answer);
        EXPECT_TRUE(data.getNormalPointLocation({}, chartData));
        return chartData;
    }
    static QStringList names(const QList<RKPointLocationChartData>& entries)
    {
        QStringList list;
        for (const RKPointLocationChartData& entry : entries) {
            list.append(entry.name);
        }
        return list;
    }
    const QDate day20{2015, 12, 20};
    const QDate day21{2015, 12, 21};
};

TEST_F(StatisticsOperations, NormalAsksWithoutAType)
{
    RKPointLocationCondition condition;
    condition.cellId = "c1"_q;
    ChartData chartData;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getNormalPointLocation(condition, chartData));
    EXPECT_EQ(lastMethod(), "GET");
    EXPECT_EQ(lastPath(), "projects/p7/normal_statistics"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"cellId":"c1"})"_q}, {"expand"_q, "true"_q}}));
}

TEST_F(StatisticsOperations, DepthAsksWithItsType)
{
    RKPointLocationCondition condition;
    condition.cellId = "c1"_q;
    ChartData chartData;
    server.answerJson(200,
                      R"([{"time":"2015-12-21T00:00:00.000-08:00","data":[{"name":"I1","depth":"0.5"}]}])");
    EXPECT_TRUE(data.getDepthPointLocation(condition, chartData));
    EXPECT_EQ(lastPath(), "projects/p7/depth_statistics"_q);
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, R"({"cellId":"c1"})"_q}, {"type"_q, "depth"_q}, {"expand"_q, "true"_q}}));
    EXPECT_EQ(chartData.value(day21).value(0).depth, "0.5"_q);
}

TEST_F(StatisticsOperations, EntriesAreGroupedByTheDayWritten)
{
    const ChartData chartData = read(R"([
        {"time":"2015-12-21T23:30:00.000-08:00","data":[{"name":"W2"},{"name":"W1","value":0.25}]},
        {"time":"2015-12-20T00:15:00.000+13:00","data":[{"name":"W3"}]}])");
    EXPECT_EQ(chartData.keys(), (QList<QDate>{day20, day21})) << "no shift to another time zone";
    EXPECT_EQ(names(chartData.value(day21)), (QStringList{"W2"_q, "W1"_q})) << "in the order of the reply";
    EXPECT_EQ(chartData.value(day21).at(1).value, 0.25);
}

TEST_F(StatisticsOperations, OfTwoEntriesOfOneDayTheLaterStands)
{
    const ChartData chartData = read(R"([
        {"time":"2015-12-21T08:00:00.000Z","data":[{"name":"W1"},{"name":"W2"}]},
        {"time":"2015-12-21T20:00:00.000Z","data":[{"name":"W3"}]}])");
    EXPECT_EQ(chartData.size(), 1);
    EXPECT_EQ(names(chartData.value(day21)), QStringList{"W3"_q});
}

TEST_F(StatisticsOperations, TheOrderOfDaysInTheReplyDoesNotMatter)
{
    const QByteArray first = R"({"time":"2015-12-20T00:00:00.000Z","data":[{"name":"W1"}]})";
    const QByteArray second = R"({"time":"2015-12-21T00:00:00.000Z","data":[{"name":"W2"}]})";
    const ChartData rising = read("[" + first + "," + second + "]");
    const ChartData falling = read("[" + second + "," + first + "]");
    EXPECT_EQ(rising.keys(), falling.keys());
    EXPECT_EQ(names(rising.value(day20)), names(falling.value(day20)));
    EXPECT_EQ(names(rising.value(day21)), names(falling.value(day21)));
}

TEST_F(StatisticsOperations, DaysAccumulateAndARepeatedDayIsReplaced)
{
    ChartData chartData = read(R"([{"time":"2015-12-20T00:00:00.000Z","data":[{"name":"W1"}]}])");
    chartData = read(R"([{"time":"2015-12-21T00:00:00.000Z","data":[{"name":"W2"}]}])", chartData);
    EXPECT_EQ(chartData.size(), 2);
    chartData = read(R"([{"time":"2015-12-20T00:00:00.000Z","data":[{"name":"W9"}]}])", chartData);
    EXPECT_EQ(names(chartData.value(day20)), QStringList{"W9"_q});
    EXPECT_EQ(names(chartData.value(day21)), QStringList{"W2"_q});
}

TEST_F(StatisticsOperations, ADayWithoutEntriesClearsTheDay)
{
    ChartData chartData = read(R"([{"time":"2015-12-20T00:00:00.000Z","data":[{"name":"W1"}]}])");
    chartData = read(R"([{"time":"2015-12-20T00:00:00.000Z"},{"time":"2015-12-21T00:00:00.000Z","data":7}])",
                     chartData);
    EXPECT_TRUE(chartData.contains(day20) && chartData.value(day20).isEmpty());
    EXPECT_TRUE(chartData.contains(day21) && chartData.value(day21).isEmpty());
}

TEST_F(StatisticsOperations, DaysThatCannotBeReadCollapseOnTheNullDate)
{
    const ChartData chartData = read(R"([{"time":"yesterday","data":[{"name":"W1"}]},
        {"data":[{"name":"W2"}]},{"time":"2015-12-20T00:00:00.000Z","data":[]}])");
    ASSERT_EQ(chartData.size(), 2);
    EXPECT_TRUE(chartData.firstKey().isNull()) << "before every other day";
    EXPECT_EQ(names(chartData.first()), QStringList{"W2"_q});
}

TEST_F(StatisticsOperations, AnElementThatIsNoObjectIsAnEntryOfDefaults)
{
    const ChartData chartData = read(R"([{"time":"2015-12-20T00:00:00.000Z","data":[7,{"name":"W1"}]}])");
    EXPECT_EQ(names(chartData.value(day20)), (QStringList{""_q, "W1"_q}));
}

TEST_F(StatisticsOperations, AnEmptyReplyLeavesTheMap)
{
    ChartData chartData{{day20, {RKPointLocationChartData()}}};
    chartData = read("[]", chartData);
    EXPECT_EQ(chartData.value(day20).size(), 1);
}

TEST_F(StatisticsOperations, AFailureLeavesTheMap)
{
    ChartData chartData{{day20, {RKPointLocationChartData()}}};
    server.answerJson(500, R"({"message":"no","status":500})");
    EXPECT_FALSE(data.getNormalPointLocation({}, chartData));
    server.answerJson(500, R"({"message":"no","status":500})");
    EXPECT_FALSE(data.getDepthPointLocation({}, chartData));
    EXPECT_EQ(chartData.size(), 1);
    EXPECT_EQ(chartData.value(day20).size(), 1);
}

} // namespace
