#include "ScriptServer.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <RKBaseApi.h>

#include <gmock/gmock.h>

TEST(NetworkManager, GetsAnObject)
{
    ScriptServer server;
    server.answerJson(200, R"({"a":1})");
    RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    NetworkEventLoop wait(NetworkManager::instance().get(server.baseAddress() + QStringLiteral("x y")),
                          nullptr);
    EXPECT_EQ(wait.exec(QEventLoop::AllEvents), 0);
    EXPECT_TRUE(wait.isSuccessful());
    EXPECT_EQ(wait.object().value(QLatin1String("a")).toInt(), 1);
    ASSERT_EQ(server.requestCount(), 1);
    EXPECT_EQ(server.requests().first().target, "/x%20y");
    EXPECT_TRUE(server.isUsedUp());
}
