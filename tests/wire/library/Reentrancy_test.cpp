// What the application's own events may do while an operation waits for its answer.

#include "../../support/LibraryTest.h"
#include "../../support/Operations.h"

#include <NetworkManager.h>
#include <QCoreApplication>
#include <QTimer>

#include <utility>

namespace {

class Reentrancy : public LibraryTest, public testing::WithParamInterface<Operation>
{
protected:
    void SetUp() override
    {
        // Forgets that an earlier test has quit, as the next run of an application would.
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
    }

    // Runs `event` while the first request waits, once.
    void duringTheWait(const std::function<void()>& event)
    {
        server.onRequest = [this, event] {
            if (!std::exchange(m_happened, true)) {
                event();
            }
        };
    }
    void answer(int times)
    {
        for (int i = 0; i < times; ++i) {
            server.answerJson(200, GetParam().answer);
        }
    }

private:
    bool m_happened = false;
};

TEST_P(Reentrancy, ClearDuringTheWait)
{
    answer(1);
    duringTheWait([this] { data.clear(); });
    EXPECT_TRUE(GetParam().succeeds(data));
}

TEST_P(Reentrancy, ClearByATimerDuringTheWait)
{
    server.answerRaw({ScriptServer::Step::pause(20),
                      ScriptServer::Step::bytes(ScriptServer::httpAnswer(200, GetParam().answer))});
    QTimer timer;
    timer.setInterval(0);
    int cleared = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        data.clear();
        ++cleared;
    });
    duringTheWait([&timer] { timer.start(); });
    EXPECT_TRUE(GetParam().succeeds(data));
    EXPECT_GT(cleared, 0);
}

TEST_P(Reentrancy, TheSameOperationDuringTheWait)
{
    answer(2);
    bool inner = false;
    duringTheWait([&] { inner = GetParam().succeeds(data); });
    EXPECT_TRUE(GetParam().succeeds(data));
    EXPECT_TRUE(inner);
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_P(Reentrancy, AFillingPageDuringTheWait)
{
    answer(1);
    QList<RKMonitoring> page;
    duringTheWait([&] {
        // Answered by a server of its own, as the script of the first one is taken in order.
        ScriptServer other;
        RKBaseApi::GetInstance().setBaseApi(other.baseAddress());
        other.answerJson(200, R"([{"_id":"c1"},{"_id":"c2"},{"_id":"c5","name":"Five"}])");
        EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 10, page));
        EXPECT_TRUE(other.isUsedUp());
        RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    });
    EXPECT_TRUE(GetParam().succeeds(data));
    EXPECT_EQ(page.size(), 3);
}

TEST_P(Reentrancy, EveryOtherOperationDuringTheWait)
{
    for (const Operation& inner : allOperations()) {
        SCOPED_TRACE(inner.name);
        data.clear();
        answer(1);
        // Answered by a server of its own, as the script of the first one is taken in order.
        ScriptServer other;
        other.answerJson(200, inner.answer);
        bool succeeded = false;
        server.onRequest = [&] {
            RKBaseApi::GetInstance().setBaseApi(other.baseAddress());
            succeeded = inner.succeeds(data);
            RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
        };
        EXPECT_TRUE(GetParam().succeeds(data));
        EXPECT_TRUE(succeeded);
        EXPECT_TRUE(other.isUsedUp());
    }
}

TEST_P(Reentrancy, AbortDuringTheWaitIsAFailure)
{
    server.neverAnswer();
    duringTheWait([] { NetworkManager::instance().abortAll(); });
    EXPECT_TRUE(GetParam().fails(data));

    server.answerJson(200, GetParam().answer);
    EXPECT_TRUE(GetParam().succeeds(data));
}

TEST_P(Reentrancy, AbortOfTwoNestedWaitsIsTwoFailures)
{
    server.neverAnswer();
    server.neverAnswer();
    bool innerFailed = false;
    server.onRequest = [&] {
        if (server.requestCount() == 1) {
            innerFailed = GetParam().fails(data);
        } else {
            NetworkManager::instance().abortAll();
        }
    };
    EXPECT_TRUE(GetParam().fails(data));
    EXPECT_TRUE(innerFailed);
}

TEST_P(Reentrancy, QuitDuringTheWaitIsAFailure)
{
    server.neverAnswer();
    duringTheWait([] { QCoreApplication::quit(); });
    EXPECT_TRUE(GetParam().fails(data));

    // What an application still does while it closes works again.
    server.answerJson(200, GetParam().answer);
    EXPECT_TRUE(GetParam().succeeds(data));
}

TEST_P(Reentrancy, QuitOfARunningApplicationDuringTheWaitIsAFailure)
{
    server.neverAnswer();
    duringTheWait([] { QCoreApplication::quit(); });
    bool failed = false;
    QTimer::singleShot(0, [&] { failed = GetParam().fails(data); });
    QCoreApplication::exec();
    EXPECT_TRUE(failed);
}

TEST_P(Reentrancy, QuitWithTheAnswerUnderWayIsNoFalseSuccess)
{
    answer(1);
    duringTheWait([] { QCoreApplication::quit(); });
    // The answer may or may not have arrived by then: the operation says which.
    const bool succeeded = GetParam().succeeds(data);
    if (!succeeded) {
        data.clear();
        server.answerJson(200, GetParam().answer);
        EXPECT_TRUE(GetParam().succeeds(data));
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, Reentrancy, testing::ValuesIn(allOperations()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

// ---- What a single operation depends on

class ReentrantUpdate : public LibraryTest
{
};

TEST_F(ReentrantUpdate, ComparesWithTheRecordCachedBeforeTheWait)
{
    RKMonitoring monitoring;
    server.answerJson(200, R"({"_id":"c1","name":"Pit","category":"pit"})");
    ASSERT_TRUE(data.getMonitoringById("c1"_q, monitoring, false));

    monitoring.name = "Pit K2"_q;
    server.answerJson(200, R"({"_id":"c1","name":"Pit K2","category":"pit"})");
    server.onRequest = [this] {
        data.clear();
    };
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(lastBody(), (QJsonObject{{"name"_q, "Pit K2"_q}}));
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit K2"_q)
        << "cached after the clear, as its success came later";
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(ReentrantUpdate, AKeyThatAnEventChangesIsTheOneAskedFor)
{
    QString id = "c1"_q;
    RKMonitoring monitoring;
    server.answerJson(200, R"({"_id":"c1","name":"Pit"})");
    server.onRequest = [&id] {
        id = "c2"_q;
    };
    EXPECT_TRUE(data.getMonitoringById(id, monitoring, false));
    EXPECT_EQ(data.getMonitoringName("c1"_q), "Pit"_q);
    EXPECT_EQ(server.requestCount(), 1);
}

} // namespace
