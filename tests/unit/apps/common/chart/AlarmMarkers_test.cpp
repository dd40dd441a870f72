#include "chart/AlarmMarkers.h"

#include "ScriptedSession.h"

namespace {

const QTimeZone vienna("Europe/Vienna");

Chart chartOfOneDay()
{
    Chart::Curve curve;
    curve.pointId = "p1"_q;
    curve.pointName = "S1"_q;
    curve.cellId = "c1"_q;
    curve.points = {{0.0, 1.0}};
    curve.days = {{2026, 3, 6}};
    Chart chart;
    chart.panels = {{"s1"_q, "Settlement"_q, {curve}, {}, {}, {}}};
    return chart;
}

chart::AlarmedReading reading(const QString& subCategory, const QString& name, const QString& time)
{
    return {"c1"_q, subCategory, name, {}, QDateTime::fromString(time, Qt::ISODate), 10.5, 2.5};
}

QVector<QPointF> marked(chart::Values values, const QList<chart::AlarmedReading>& readings)
{
    Chart chart = chartOfOneDay();
    chart::addAlarms(chart, values, vienna, readings,
                     [](const QString&) { return std::make_optional(100.0); });
    QVector<QPointF> points;
    for (const Chart::Alarm& alarm : chart.panels[0].alarms) {
        points.append(alarm.point);
    }
    return points;
}

class AlarmMarkers : public ScriptedSession
{
protected:
};

constexpr double eightOnTheSixth = 1772784000000.0; // on the clock of Vienna

} // namespace

TEST_F(AlarmMarkers, StandAtTheReadingsThatAlarmsTellOf)
{
    const auto alarm = reading("s1"_q, "S1"_q, "2026-03-06T07:00:00Z"_q);
    EXPECT_EQ(marked(chart::Values::Measured, {alarm}), (QVector<QPointF>{{eightOnTheSixth, 110.5}}));
    EXPECT_EQ(marked(chart::Values::Cumulative, {alarm}), (QVector<QPointF>{{eightOnTheSixth, 10.5}}));
    EXPECT_EQ(marked(chart::Values::Daily, {alarm}), (QVector<QPointF>{{eightOnTheSixth, 2.5}}));
}

TEST_F(AlarmMarkers, AreNotThereForOtherPointsQuantitiesAndDays)
{
    EXPECT_TRUE(marked(chart::Values::Measured, {reading("s1"_q, "S2"_q, "2026-03-06T07:00:00Z"_q),
                                                 reading("s2"_q, "S1"_q, "2026-03-06T07:00:00Z"_q),
                                                 reading("s1"_q, "S1"_q, "2026-03-06T23:00:00Z"_q)})
                    .isEmpty());
    auto elsewhere = reading("s1"_q, "S1"_q, "2026-03-06T07:00:00Z"_q);
    elsewhere.cellId = "c2"_q;
    auto deeper = reading("s1"_q, "S1"_q, "2026-03-06T07:00:00Z"_q);
    deeper.depth = "2.5"_q;
    EXPECT_TRUE(marked(chart::Values::Measured, {elsewhere, deeper}).isEmpty());
}

TEST_F(AlarmMarkers, AreReadFromAllAlarmsOfTheMonitoring)
{
    server.answerJson(200, R"([{"_id":"a1","cellId":"c","cellName":"VH","subCategoryId":"s1",
                               "createdAt":"2026-03-07T00:00:00Z","pointCounts":1}])");
    server.answerJson(200, R"({"count":1})");
    server.answerJson(200, R"({"name":"monitor-service","version":"1","extensions":["alarmReasons"],
                               "owner":"a","rights":[]})");
    server.answerJson(200, R"([{"_id":"d1","pointName":"S1","value":110.5,"reference":200,"unit":"mm",
        "groupId":"g","groupName":"G","totalLimit":10,"dayLimit":1,"totalVarSide":"both","dayVarSide":"both",
        "dayVarType":1}])");
    server.answerJson(200, R"({"count":1})");
    server.answerJson(200, R"([{"_id":"d1","pointName":"S1","totalVar":"10.5","dayVar":"2.5","depth":"2",
                               "monitorTime":"2026-03-06T07:00:00Z","monitorCount":1}])");
    server.answerJson(200, R"({"count":1})");
    const auto readings = chart::alarmedReadings(session, monitoring());
    ASSERT_EQ(readings.size(), 1);
    EXPECT_EQ(readings[0].subCategoryId, "s1"_q);
    EXPECT_EQ(readings[0].depth, "2"_q);
    EXPECT_EQ(readings[0].totalVariation, 10.5);
    EXPECT_EQ(readings[0].dailyVariation, 5.0); // 2.5 percent of 200
}

TEST_F(AlarmMarkers, HaveNoDailyVariationWhereItsUnitIsNotTold)
{
    server.answerJson(200, R"([{"_id":"a1","cellId":"c","cellName":"VH","subCategoryId":"s1",
                               "createdAt":"2026-03-07T00:00:00Z","pointCounts":1}])");
    server.answerJson(200, R"({"count":1})");
    server.answerJson(404, R"({"message":"nothing here","status":404})");
    server.answerJson(200, R"([{"_id":"d1","pointName":"S1","totalVar":"10.5","dayVar":"2.5",
                               "monitorTime":"2026-03-06T07:00:00Z","monitorCount":1}])");
    server.answerJson(200, R"({"count":1})");
    const auto readings = chart::alarmedReadings(session, monitoring());
    ASSERT_EQ(readings.size(), 1);
    EXPECT_FALSE(readings[0].dailyVariation);
}
