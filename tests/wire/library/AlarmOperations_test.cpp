#include "../../support/LibraryTest.h"

namespace {

class AlarmOperations : public LibraryTest
{
};

TEST_F(AlarmOperations, AlarmsAreCountedAndPaged)
{
    RKAlarmCondition condition;
    condition.isAllCell = false;
    condition.cellIds = QStringList{"c1"_q};
    int count = -1;
    server.answerJson(200, R"({"count":3})");
    EXPECT_TRUE(data.getAlarmRangeCount(condition, count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(lastPath(), "projects/p7/alarmManages"_q);
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, R"({"cellId":{"$in":["c1"]}})"_q}, {"only_count"_q, "true"_q}}));

    QList<RKAlarm> alarms;
    server.answerJson(200, R"([{"_id":"a2","cellName":"Pit","pointCounts":2},{"_id":"a1"}])");
    EXPECT_TRUE(data.getAlarmRangeData(condition, 0, 2, alarms));
    EXPECT_EQ(lastPath(), "projects/p7/alarmManages"_q);
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, R"({"cellId":{"$in":["c1"]}})"_q}, {"skip"_q, "0"_q}, {"limit"_q, "2"_q}}));
    server.answerJson(200, R"([{"_id":"a0"}])");
    EXPECT_TRUE(data.getAlarmRangeData(condition, 2, 2, alarms));
    ASSERT_EQ(alarms.size(), 3) << "both pages";
    EXPECT_EQ(alarms.at(0).pointCounts, 2);
    EXPECT_EQ(alarms.at(2).id, "a0"_q);
}

TEST_F(AlarmOperations, DetailsAreCountedAndPagedUnderTheirAlarm)
{
    RKAlarmDetailCondition condition;
    condition.alarmManId = "a1"_q;
    condition.pointName = "W1"_q;
    int count = -1;
    server.answerJson(200, R"({"count":1})");
    EXPECT_TRUE(data.getAlarmDetailRangeCount(condition, count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(lastPath(), "alarmManages/a1/alarmDetails"_q);
    const QString where = R"({"pointName":{"$options":"i","$regex":"W1"}})"_q;
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, where}, {"only_count"_q, "true"_q}}));

    QList<RKAlarmDetail> details{RKAlarmDetail()};
    server.answerJson(200, R"([{"_id":"d1","totalVar":"0.3","totalBeyound":0.1}])");
    EXPECT_TRUE(data.getAlarmDetailRangeData(condition, 0, 10, details));
    EXPECT_EQ(lastPath(), "alarmManages/a1/alarmDetails"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, where}, {"skip"_q, "0"_q}, {"limit"_q, "10"_q}}));
    ASSERT_EQ(details.size(), 2);
    EXPECT_EQ(details.at(1).totalVar, "0.3"_q);
    EXPECT_EQ(details.at(1).totalBeyound, 0.1);
}

TEST_F(AlarmOperations, DetailsOfNoAlarmHaveAnEmptySegment)
{
    int count = -1;
    server.answerJson(404, "{}");
    EXPECT_FALSE(data.getAlarmDetailRangeCount({}, count));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(lastPath(), "alarmManages//alarmDetails"_q);
}

TEST_F(AlarmOperations, DepthsOfADetailAreAskedForWithoutAQuery)
{
    QList<AlarmThree> depths;
    server.answerJson(200, R"([{"_id":"t1","depth":"2.5","totalValue":-3.5},{"_id":"t2","depth":"3"}])");
    EXPECT_TRUE(data.getAlarmThreeByDetailId("d1"_q, QString(), depths));
    EXPECT_EQ(lastRequest().target, "/monitor-service/alarmDetails/d1/threeDetails");
    ASSERT_EQ(depths.size(), 2);
    EXPECT_EQ(depths.first().totalValue, -3.5);
}

TEST_F(AlarmOperations, OneDepthTravelsAsAText)
{
    QList<AlarmThree> depths{AlarmThree()};
    server.answerJson(200, R"([{"_id":"t1","depth":"2.5"}])");
    EXPECT_TRUE(data.getAlarmThreeByDetailId("d1"_q, "2.5"_q, depths));
    EXPECT_EQ(lastPath(), "alarmDetails/d1/threeDetails"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"depth":"2.5"})"_q}}));
    EXPECT_EQ(depths.size(), 2);
}

TEST_F(AlarmOperations, ADoubleQuoteInTheDepthIsNotGuardedAgainst)
{
    QList<AlarmThree> depths;
    server.answerJson(400, R"({"message":"where: not JSON","status":400})");
    EXPECT_FALSE(data.getAlarmThreeByDetailId("d1"_q, "2\"5"_q, depths));
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{\"depth\":\"2\"5\"}"_q}}));
    EXPECT_TRUE(depths.isEmpty());
}

TEST_F(AlarmOperations, AMarkerInTheAlarmTakesTheDocumentOfItsDetails)
{
    RKAlarmDetailCondition condition;
    condition.alarmManId = "a%2"_q;
    int count = -1;
    server.answerJson(200, R"({"count":2})");
    EXPECT_TRUE(data.getAlarmDetailRangeCount(condition, count));
    EXPECT_EQ(lastPath(), "alarmManages/a{}/alarmDetails"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"only_count"_q, "true"_q}}));

    QList<RKAlarmDetail> details;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getAlarmDetailRangeData(condition, 40, 20, details));
    EXPECT_EQ(lastPath(), "alarmManages/a{}/alarmDetails"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"skip"_q, "40"_q}, {"limit"_q, "20"_q}}));
}

TEST_F(AlarmOperations, AMarkerInTheDetailIsFilledWithTheDepth)
{
    QList<AlarmThree> depths;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getAlarmThreeByDetailId("d%1"_q, "7"_q, depths));
    EXPECT_EQ(lastPath(), "alarmDetails/d7/threeDetails"_q);
}

TEST_F(AlarmOperations, FailuresLeaveTheListsAndZeroTheCounts)
{
    int count = -1;
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.getAlarmRangeCount({}, count));
    EXPECT_EQ(count, 0);
    QList<RKAlarm> alarms;
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.getAlarmRangeData({}, 0, 10, alarms));
    EXPECT_TRUE(alarms.isEmpty());
    QList<RKAlarmDetail> details;
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.getAlarmDetailRangeData({}, 0, 10, details));
    EXPECT_TRUE(details.isEmpty());
}

} // namespace
