// A process without an application object has no events to wait with: operations fail at once and send
// nothing.

#include "../../support/Operations.h"
#include "../../support/PlainServer.h"

#include <QCoreApplication>
#include <RKBaseApi.h>
#include <RKSoftCache.h>

#include <gtest/gtest.h>

namespace {

class NoApplication : public testing::TestWithParam<Operation>
{
protected:
    NoApplication()
    {
        RKBaseApi::GetInstance().setBaseApi(QString::fromLatin1(server.baseAddress()));
        GetSoftCache()->setProjectId("p7"_q);
        data.clear();
    }

    PlainServer server{GetParam().answer};
    RKMonitoringData& data = *RKMonitoringData::instance();
};

TEST_P(NoApplication, AnOperationFails)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_TRUE(GetParam().fails(data));
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_P(NoApplication, AnOperationFailsWhenTheApplicationHasEnded)
{
    {
        int count = 1;
        char name[] = "test";
        char* arguments[] = {name, nullptr};
        const QCoreApplication application(count, arguments);
        EXPECT_TRUE(GetParam().succeeds(data));
        EXPECT_EQ(server.requestCount(), 1);
    }
    data.clear();
    EXPECT_TRUE(GetParam().fails(data));
    EXPECT_EQ(server.requestCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(Operations, NoApplication, testing::ValuesIn(allOperations()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace
