#include "ServiceTest.h"
#include "Text.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <QFile>
#include <QJsonArray>
#include <QTcpServer>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

#include <gmock/gmock.h>

#ifdef Q_OS_UNIX

// scripts/contract.sh against a service that others work with.

namespace {

using testing::HasSubstr;
using testing::Not;

class ContractScript : public ServiceTest
{
protected:
    struct Result
    {
        int code = -1;
        std::string output;
        std::string messages;
    };

    ContractScript()
    {
        subCategory = service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q,
                                       "Pit"_q, "--name"_q, "Settlement"_q, "--alias"_q, "ST"_q});
        RKBaseApi::GetInstance().setBaseApi(service().baseAddress());
        GetSoftCache()->setProjectId(project);
        EXPECT_TRUE(NetworkManager::instance().setBearerToken(editor.text));
        writeSomething();
    }

    // What was there before: a monitoring with a group, two deliveries and an alarm.
    void writeSomething()
    {
        RKMonitoringData& data = *RKMonitoringData::instance();
        RKMonitoring monitoring;
        monitoring.name = "contract VH"_q;
        monitoring.category = "Pit"_q;
        ASSERT_TRUE(data.createMonitoring(monitoring));
        PointLocSetting group;
        group.cellId = monitoring.id;
        group.subCategoryId = subCategory;
        group.groupName = "Corner"_q;
        group.groupPoint = QStringList{"S1"_q};
        group.totalVar = 5;
        ASSERT_TRUE(data.createGroup(group));
        RKPointLocation point;
        point.cellId = monitoring.id;
        point.subCategoryId = subCategory;
        point.name = "S1"_q;
        point.links = {{"model"_q, {"m1"_q}}};
        point.data.append(RKPointLocationData());
        for (int day = 18; day < 20; ++day) {
            point.data.first().time = QDateTime(QDate(2015, 12, day), QTime(12, 0), Qt::UTC);
            point.data.first().value = 20 - day;
            point.data.first().count = day;
            point.initialValue = 100;
            ASSERT_TRUE(data.createPointLocation({point}));
        }
    }

    // Everything that the project holds, as the service words it.
    QList<QJsonArray> holdings() const
    {
        QList<QJsonArray> lists;
        for (const char* resource : {"cells", "pointLocations", "groupSettings", "dataManages",
                                     "alarmManages", "subCategories", "normal_statistics"}) {
            NetworkEventLoop answer(NetworkManager::instance().get("%1monitor-service/projects/%2/%3"_q.arg(
                service().baseAddress(), project, QLatin1String(resource))));
            answer.exec();
            EXPECT_TRUE(answer.isSuccessful()) << resource;
            EXPECT_FALSE(answer.array().isEmpty()) << resource;
            lists.append(answer.array());
        }
        return lists;
    }

    QString tokenFile(const MonitorService::Token& token) const
    {
        QFile file("%1/%2.token"_q.arg(service().folder(), token.id));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(token.text.toUtf8() + '\n');
        return file.fileName();
    }

    Result run(const QStringList& arguments) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("RKMON_PROJECT"_q);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(service().folder());
        process.start(QStringLiteral(RK_SCRIPTS "/contract.sh"),
                      QStringList{"--build-dir"_q, QStringLiteral(RK_BUILD)} + arguments);
        EXPECT_TRUE(process.waitForFinished(-1)); // the test's own time limit ends it
        // CTest would take this test for one that was skipped itself, should it fail and show the output.
        QString output = QString::fromUtf8(process.readAllStandardOutput());
        output.replace("[  SKIPPED ]"_q, "[ left out ]"_q);
        return {process.exitCode(), output.toStdString(), process.readAllStandardError().toStdString()};
    }

    QStringList here(const MonitorService::Token& token) const
    {
        return {"--base-api"_q, service().baseAddress(), "--project"_q,
                project,        "--token-file"_q,        tokenFile(token)};
    }

    QString subCategory;
};

} // namespace

TEST_F(ContractScript, PassesAndLeavesTheProjectAsItWas)
{
    const QList<QJsonArray> before = holdings();
    const Result result = run(here(editor) + QStringList{"--reader-token-file"_q, tokenFile(reader)});
    EXPECT_EQ(result.code, 0) << result.output << result.messages;
    EXPECT_THAT(result.output, HasSubstr("[  PASSED  ]"));
    EXPECT_THAT(result.output, Not(HasSubstr("RefusalContract.ReaderChangesNoMonitoring\n[ left out")));
    EXPECT_EQ(holdings(), before);
}

TEST_F(ContractScript, SaysWhatAReaderIsMissingFor)
{
    const Result result = run(here(editor) + QStringList{"--"_q, "--gtest_filter=*Reader*"_q});
    EXPECT_EQ(result.code, 0) << result.output << result.messages;
    EXPECT_THAT(result.output, HasSubstr("needs a token that may only read"));
}

// Where the reader may write, the contract is broken: what it has written goes too.
TEST_F(ContractScript, FailsAndStillLeavesTheProjectAsItWas)
{
    const QList<QJsonArray> before = holdings();
    const Result result = run(here(editor) + QStringList{"--reader-token-file"_q, tokenFile(editor)});
    EXPECT_EQ(result.code, 1) << result.output << result.messages;
    EXPECT_THAT(result.output, HasSubstr("RefusalContract.ReaderDeliversAndLinksNothing"));
    EXPECT_EQ(holdings(), before);
}

TEST_F(ContractScript, DiesAndStillLeavesTheProjectAsItWas)
{
    const QList<QJsonArray> before = holdings();
    const Result result = run(here(editor) + QStringList{"--reader-token-file"_q, tokenFile(editor), "--"_q,
                                                         "--gtest_break_on_failure"_q});
    EXPECT_GE(result.code, 128) << result.output << result.messages;
    EXPECT_THAT(result.messages, HasSubstr("ended early"));
    EXPECT_EQ(holdings(), before);
}

TEST_F(ContractScript, NoAnswer)
{
    QTcpServer nobody;
    ASSERT_TRUE(nobody.listen(QHostAddress::LocalHost));
    const QString address = "http://127.0.0.1:%1"_q.arg(nobody.serverPort());
    nobody.close();
    QStringList arguments = here(editor);
    arguments[1] = address;
    const Result result = run(arguments);
    EXPECT_EQ(result.code, 5) << result.messages;
    EXPECT_THAT(result.messages, HasSubstr("no answer from " + address.toStdString()));
    EXPECT_EQ(result.output, "");
}

TEST_F(ContractScript, RefusedToken)
{
    const Result result = run(here({"unknown"_q, "no-such-token"_q}));
    EXPECT_EQ(result.code, 3) << result.messages;
    EXPECT_THAT(result.messages, HasSubstr("refuses the token"));
    EXPECT_THAT(result.messages, Not(HasSubstr("no-such-token")));
    EXPECT_EQ(result.output, "");
}

TEST_F(ContractScript, TokenThatMayNotWrite)
{
    const Result result = run(here(reader));
    EXPECT_EQ(result.code, 3) << result.messages;
    EXPECT_THAT(result.messages, HasSubstr("in no category of project"));
}

TEST_F(ContractScript, AddressOfSomethingElse)
{
    QStringList arguments = here(editor);
    arguments[1] += "elsewhere"_q;
    const Result result = run(arguments);
    EXPECT_EQ(result.code, 1) << result.messages;
    EXPECT_THAT(result.messages, HasSubstr("does not answer as a monitoring service"));
}

TEST_F(ContractScript, WrongOptions)
{
    EXPECT_EQ(run({"--help"_q}).code, 0);
    EXPECT_THAT(run({"--help"_q}).output, HasSubstr("--base-api URL"));
    EXPECT_EQ(run({"--no-such"_q}).code, 2);
    EXPECT_EQ(run({"--base-api"_q}).code, 2);
    EXPECT_EQ(run({}).code, 2);
    QStringList arguments = here(editor);
    arguments.last() = "no such file"_q;
    const Result result = run(arguments);
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.messages, HasSubstr("\"no such file\""));
}

#endif
