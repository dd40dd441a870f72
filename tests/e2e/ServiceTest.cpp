#include "ServiceTest.h"

#include "Text.h"

std::unique_ptr<MonitorService> ServiceTest::s_service;

void ServiceTest::SetUpTestSuite()
{
    s_service = std::make_unique<MonitorService>();
    s_service->admin(QStringList{"category"_q, "add"_q} + categories());
    ASSERT_TRUE(s_service->start());
}

void ServiceTest::TearDownTestSuite()
{
    s_service.reset();
}

QStringList ServiceTest::categories()
{
    return {"Slope"_q, "Pit"_q, QString::fromUtf8("Böschung & \"Hang\" 50%1")};
}

ServiceTest::ServiceTest()
{
    project = service().createProject("Bluff"_q);
    editor = service().createToken("Ana"_q, project, "editor"_q);
    reader = service().createToken("Ben"_q, project, "reader"_q);
}
