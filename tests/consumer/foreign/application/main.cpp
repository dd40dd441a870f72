// The library inside an application with companions of its own: it follows their date text, their links, their
// string lists and their project accessor, and composes URLs without escaping anything.

#include <NetworkManager.h>
#include <RKMonitoringData.h>

#include <QCoreApplication>

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
