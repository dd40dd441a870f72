// The manager outlives the application object; these tests make and destroy one themselves.

#include "NetworkFixture.h"

#include <QCoreApplication>

#include <memory>

namespace {

using Step = ScriptServer::Step;

class Application
{
public:
    Application() : m_application(m_count, m_arguments) {}

private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application;
};

// Its server is made when the application is there.
bool operationSucceeds()
{
    ScriptServer server;
    server.answerJson(200, R"({"a":1})");
    NetworkEventLoop wait(NetworkManager::instance().get(server.baseAddress()), nullptr);
    wait.exec(QEventLoop::AllEvents);
    EXPECT_TRUE(server.isUsedUp());
    return wait.isSuccessful() && wait.object().size() == 1;
}

} // namespace

TEST(NetworkLifetime, WithoutAnApplicationAnOperationFailsAtOnce)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    int observed = 0;
    const NetworkObservation observation =
        NetworkManager::instance().addObserver([&](const NetworkExchange& exchange) {
            ++observed;
            EXPECT_NE(exchange.error, QNetworkReply::NoError);
        });
    NetworkEventLoop wait(NetworkManager::instance().get(QStringLiteral("http://127.0.0.1:1/")), nullptr);
    EXPECT_EQ(observed, 1);
    wait.exec(QEventLoop::AllEvents);
    EXPECT_FALSE(wait.isSuccessful());
    EXPECT_NE(wait.error(), QNetworkReply::NoError);
    EXPECT_TRUE(wait.object().isEmpty());
    EXPECT_EQ(observed, 1);
}

TEST(NetworkLifetime, OperationsWorkInOneApplicationAfterAnother)
{
    for (int i = 0; i < 3; ++i) {
        const Application application;
        EXPECT_TRUE(operationSucceeds());
        EXPECT_TRUE(operationSucceeds());
    }
}

TEST(NetworkLifetime, AReplyMayOutliveTheApplication)
{
    std::unique_ptr<QNetworkReply> running;
    std::unique_ptr<QNetworkReply> notSent;
    {
        const Application application;
        ScriptServer server;
        server.neverAnswer();
        running.reset(NetworkManager::instance().get(server.baseAddress()));
        notSent.reset(NetworkManager::instance().get(QStringLiteral("ftp://h")));
        NetworkEventLoop wait(notSent.get(), nullptr);
        EXPECT_TRUE(ScriptServer::runEventsUntil([&] { return server.requestCount() == 1; }));
        static_cast<void>(notSent.release()); // the wait owns it
        EXPECT_TRUE(server.isUsedUp());
    }
    EXPECT_FALSE(running->isFinished());
    running->abort();
    EXPECT_TRUE(running->isFinished());
    EXPECT_NE(running->error(), QNetworkReply::NoError);
}

TEST(NetworkLifetime, AWaitForAReplyOfAnEndedApplicationFails)
{
    std::unique_ptr<NetworkEventLoop> wait;
    {
        const Application application;
        wait = std::make_unique<NetworkEventLoop>(
            NetworkManager::instance().get(QStringLiteral("http://127.0.0.1:1/")), nullptr);
    }
    EXPECT_EQ(wait->exec(QEventLoop::AllEvents), -1);
    EXPECT_FALSE(wait->isSuccessful());
    EXPECT_EQ(wait->error(), QNetworkReply::OperationCanceledError);
}
