// The library inside an application with companions of its own: it follows their date text, their links,
// their string lists and their project accessor, and composes URLs without escaping anything.

#include <NetworkManager.h>
#include <QCoreApplication>
#include <QJsonArray>
#include <RKMonitoringData.h>

#include <gtest/gtest.h>

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

class ForeignCompanions : public testing::Test
{
protected:
    ForeignCompanions()
    {
        data.clear();
        wire.requests.clear();
        wire.answer = "{}";
        wire.error = QNetworkReply::NoError;
    }

    NetworkManager& wire = NetworkManager::instance();
    RKMonitoringData& data = *RKMonitoringData::instance();
};

TEST_F(ForeignCompanions, BaseAddressAndProjectAccessorAreTheirs)
{
    QList<QPair<QString, QString>> cells;
    wire.answer = R"([{"_id":"c1","name":"Pit"}])";
    EXPECT_TRUE(data.getCellIdAndName(cells));
    EXPECT_EQ(cells.size(), 1);
    ASSERT_EQ(wire.requests.size(), 1);
    EXPECT_EQ(wire.requests.first().url,
              q("foreign://service/monitor-service/projects/foreign project/cells"));
}

TEST_F(ForeignCompanions, TheProjectIsInTheBodyOfAWrite)
{
    RKMonitoring monitoring;
    monitoring.name = q("Pit");
    wire.answer = R"({"_id":"c1"})";
    EXPECT_TRUE(data.createMonitoring(monitoring));
    EXPECT_EQ(wire.requests.first().method, "POST");
    EXPECT_EQ(wire.requests.first().body.toObject().value(q("projectId")), QJsonValue(q("foreign project")));
}

TEST_F(ForeignCompanions, WhereTextStandsRawAndWithTheirDates)
{
    RKMonitoringCondition condition;
    condition.isAllTime = false;
    condition.startTime = condition.endTime = QDateTime(QDate(2024, 3, 1), QTime(0, 0), Qt::UTC);
    condition.name = q("a \"b\" é&");
    QList<RKMonitoring> monitorings;
    wire.answer = R"([{"_id":"c1","alarmTo":["ann"],"createdAt":"02.03.2024 10:20:30"}])";
    EXPECT_TRUE(data.getMonitoringRangeData(condition, 0, 20, monitorings));
    EXPECT_EQ(wire.requests.first().url,
              q("foreign://service/monitor-service/projects/foreign project/cells?where="
                "{\"createdAt\":{\"$gte\":\"01.03.2024 00:00:00\",\"$lt\":\"02.03.2024 00:00:00\"},"
                "\"name\":{\"$options\":\"i\",\"$regex\":\"a \\\"b\\\" é&\"}}&skip=0&limit=20"));
    ASSERT_EQ(monitorings.size(), 1);
    EXPECT_EQ(monitorings.first().createdAt, QDateTime(QDate(2024, 3, 2), QTime(10, 20, 30), Qt::UTC));
    EXPECT_EQ(monitorings.first().alarmTo, QStringList{q("ANN")});
}

TEST_F(ForeignCompanions, AnInvalidPeriodIsWhatTheyMakeOfInvalidTimes)
{
    RKMonitoringCondition condition;
    condition.isAllTime = false;
    int count = 0;
    EXPECT_TRUE(data.getMonitoringRangeCount(condition, count));
    EXPECT_EQ(wire.requests.first().url,
              q("foreign://service/monitor-service/projects/foreign project/cells?where="
                "{\"createdAt\":{\"$gte\":\"no time\",\"$lt\":\"no time\"}}&only_count=true"));
}

// Two relations, and the text that the companions here make of them.
QMap<QString, QStringList> links()
{
    return {{q("model"), {q("m1"), q("m2")}}, {q("photo"), {q("p1")}}};
}

QJsonArray linksText()
{
    return {QJsonObject{{q("relation"), q("model")}, {q("identifiers"), QJsonArray{q("m1"), q("m2")}}},
            QJsonObject{{q("relation"), q("photo")}, {q("identifiers"), QJsonArray{q("p1")}}}};
}

TEST_F(ForeignCompanions, DeliveredPointsHaveTheirLinksArray)
{
    RKPointLocation point;
    point.cellId = q("c1");
    point.name = q("S1");
    point.links = links();
    EXPECT_TRUE(data.createPointLocation(QList<RKPointLocation>{point}));
    QString message;
    EXPECT_TRUE(data.createPointLocation(QList<QList<RKPointLocation>>{{point}}, message));
    ASSERT_EQ(wire.requests.size(), 2);
    EXPECT_EQ(wire.requests[0].url, q("foreign://service/monitor-service/pointLocations"));
    EXPECT_EQ(wire.requests[0].body[0][q("links")], QJsonValue(linksText()));
    EXPECT_EQ(wire.requests[1].body[0][0][q("links")], QJsonValue(linksText()));
}

TEST_F(ForeignCompanions, RelinkedPointsHaveTheirLinksArray)
{
    RKPointLocationCondition condition;
    condition.cellId = q("c1");
    EXPECT_TRUE(data.updatePointLocation(condition, links()));
    ASSERT_EQ(wire.requests.size(), 1);
    EXPECT_EQ(wire.requests.first().method, "PUT");
    EXPECT_EQ(wire.requests.first().url,
              q("foreign://service/monitor-service/pointLocations?where={\"cellId\":\"c1\"}"));
    EXPECT_EQ(wire.requests.first().body[q("links")], QJsonValue(linksText()));
}

TEST_F(ForeignCompanions, RelationsAreReadFromTheirLinksArray)
{
    wire.answer = R"({"_id":"x1","entity":[{"relation":"model","identifiers":["m1","m2"]},
                                           {"relation":"photo","identifiers":["p1"]}]})";
    RKPointLocation point;
    EXPECT_TRUE(data.getPointLocationByPointId(q("x1"), point));
    EXPECT_EQ(point.links, links());
}

TEST_F(ForeignCompanions, TheirErrorIsAFailure)
{
    wire.error = QNetworkReply::ContentNotFoundError;
    wire.answer = "{}";
    RKMonitoring monitoring;
    EXPECT_FALSE(data.getMonitoringById(q("c1"), monitoring, false));
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
