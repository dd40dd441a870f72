#include "chart/LimitLines.h"

#include "DailyValues.h"
#include "ScriptedSession.h"
#include "chart/StatisticsChart.h"

namespace {

class LimitLines : public ScriptedSession
{
};

} // namespace

TEST_F(LimitLines, LieAboutTheReference)
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

TEST_F(LimitLines, AreReadAsFarAsTheyAreNeeded)
{
    Chart drawn = chart::overTime(threeDays());
    server.answerJson(200, R"([{"_id":"g1","groupPoint":["elsewhere"],"totalVar":1}])");
    EXPECT_EQ(chart::addLimitsOf(session, monitoring(), threeDays(), drawn), chart::LimitOrigin::None);
    EXPECT_TRUE(drawn.limits.isEmpty());
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(LimitLines, TellWhetherTheyStandAboutFirstReadings)
{
    const QByteArray groups = R"([{"_id":"g1","groupPoint":["S1"],"totalVar":2}])";
    const QByteArray sample = R"("data":[{"time":"2026-03-01T00:00:00Z","value":4,"count":1}]})";
    Chart drawn = chart::overTime(threeDays());
    server.answerJson(200, groups);
    server.answerJson(200, R"([{"_id":"a","name":"S1","initialValue":3,)" + sample + "]");
    EXPECT_EQ(chart::addLimitsOf(session, monitoring(), threeDays(), drawn),
              chart::LimitOrigin::InitialValue);
    ASSERT_EQ(drawn.limits.size(), 2);
    EXPECT_EQ(drawn.limits[0].value, 5.0);
    EXPECT_EQ(drawn.limits[1].value, 1.0);

    drawn = chart::overTime(threeDays());
    server.answerJson(200, groups);
    server.answerJson(200, R"([{"_id":"a","name":"S1","initialValue":0,)" + sample + "]");
    EXPECT_EQ(chart::addLimitsOf(session, monitoring(), threeDays(), drawn),
              chart::LimitOrigin::FirstReading);
    EXPECT_EQ(drawn.limits[0].value, 6.0);
}
