// Every operation against a service that fails: a failure within the deadline, and caches as before.

#include "../../support/LibraryTest.h"
#include "../../support/Operations.h"

#include <NetworkManager.h>
#include <QElapsedTimer>
#include <QTcpServer>

namespace {

using Step = ScriptServer::Step;

class FailedExchanges : public LibraryTest, public testing::WithParamInterface<Operation>
{
protected:
    FailedExchanges()
    {
        server.answerJson(200, R"({"_id":"c1","name":"Pit"})");
        EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit"_q);
        server.answerJson(200, R"([{"_id":"s1","name":"Rain"}])");
        QList<RKMonitoringSubCategory> subCategories;
        EXPECT_TRUE(data.getMonitoringSubCategory("slope"_q, subCategories));
        server.answerJson(200, R"([{"_id":"g1","cellId":"c1"}])");
        QList<PointLocSetting> groups;
        EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, false));
        server.answerJson(200, R"([{"_id":"w1","cellId":"c1","name":"W1"}])");
        RKPointLocationCondition condition;
        condition.cellId = "c1"_q;
        QList<RKPointLocation> points;
        EXPECT_TRUE(data.getPointLocation(condition, points, false));
        server.answerJson(200, R"([{"_id":"d1","fileId":"f1"}])");
        QList<RKDataManage> dataManages;
        EXPECT_TRUE(data.getDataManageRangeData({}, 0, 10, dataManages));
    }
    ~FailedExchanges() override { NetworkManager::instance().setDeadline(std::chrono::seconds(30)); }

    // Runs the operation, which must fail, and looks whether the caches are as before.
    void expectFailure()
    {
        EXPECT_TRUE(GetParam().fails(data));
        const int requests = server.requestCount();
        EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit"_q);
        RKMonitoringSubCategory subCategory;
        EXPECT_TRUE(data.getSubCategoryById("s1"_q, subCategory));
        EXPECT_EQ(subCategory.name, "Rain"_q);
        QList<PointLocSetting> groups;
        EXPECT_TRUE(data.getGroupsByCellId("c1"_q, groups, true));
        EXPECT_EQ(groups.size(), 1);
        RKPointLocationCondition condition;
        condition.cellId = "c1"_q;
        QList<RKPointLocation> points;
        EXPECT_TRUE(data.getPointLocation(condition, points, true));
        EXPECT_EQ(points.size(), 1);
        RKDataManage dataManage;
        EXPECT_TRUE(data.getDataManageById("d1"_q, dataManage));
        EXPECT_EQ(dataManage.fileId, "f1"_q);
        EXPECT_EQ(server.requestCount(), requests);
    }
    // And that the next one works.
    void expectNextSucceeds()
    {
        server.answerJson(200, GetParam().answer);
        EXPECT_TRUE(GetParam().succeeds(data));
    }
};

TEST_P(FailedExchanges, ErrorStatuses)
{
    for (const int status : {400, 401, 403, 404, 409, 422, 500, 503}) {
        server.answerJson(status, R"({"message":"refused","status":0})");
        expectFailure();
    }
    expectNextSucceeds();
}

TEST_P(FailedExchanges, Redirect)
{
    server.answerRaw(
        {Step::bytes(ScriptServer::httpAnswer(302, GetParam().answer, {"Location: /elsewhere"}))});
    expectFailure();
    expectNextSucceeds();
}

TEST_P(FailedExchanges, GarbageInsteadOfJson)
{
    server.answerRaw(
        {Step::bytes(ScriptServer::httpAnswer(200, "<html>welcome</html>", {"Content-Type: text/html"}))});
    expectFailure();
    server.answerRaw({Step::bytes("this is no HTTP at all\r\n\r\n"), Step::fin()});
    expectFailure();
    expectNextSucceeds();
}

TEST_P(FailedExchanges, BodyCutShort)
{
    const QByteArray whole = ScriptServer::httpAnswer(200, GetParam().answer);
    server.answerRaw({Step::bytes(whole.chopped(1)), Step::fin()});
    expectFailure();
    expectNextSucceeds();
}

TEST_P(FailedExchanges, ConnectionResetInsteadOfAnAnswer)
{
    const int before = server.requestCount();
    // A read that failed on a kept-alive connection may be asked a second time; a write never is.
    const bool isRead = GetParam().method == "GET";
    server.answerRaw({Step::reset()});
    if (isRead) {
        server.answerRaw({Step::reset()});
    }
    expectFailure();
    EXPECT_EQ(server.requestCount() - before, isRead ? 2 : 1);
    expectNextSucceeds();
}

TEST_P(FailedExchanges, NoAnswerWithinTheDeadline)
{
    NetworkManager::instance().setDeadline(std::chrono::milliseconds(150));
    server.neverAnswer();
    QElapsedTimer timer;
    timer.start();
    expectFailure();
    EXPECT_GE(timer.elapsed(), 140);
    NetworkManager::instance().setDeadline(std::chrono::seconds(30));
    expectNextSucceeds();
}

TEST_P(FailedExchanges, NobodyListens)
{
    quint16 freePort = 0;
    {
        QTcpServer listener;
        ASSERT_TRUE(listener.listen(QHostAddress::LocalHost));
        freePort = listener.serverPort();
    }
    RKBaseApi::GetInstance().setBaseApi("http://127.0.0.1:%1/"_q.arg(freePort));
    expectFailure();
    RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    expectNextSucceeds();
}

TEST_P(FailedExchanges, NoBaseAddress)
{
    RKBaseApi::GetInstance().setBaseApi(QString());
    expectFailure();
    RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    expectNextSucceeds();
}

INSTANTIATE_TEST_SUITE_P(Operations, FailedExchanges, testing::ValuesIn(allOperations()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace
