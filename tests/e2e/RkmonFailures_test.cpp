#include "RkmonTest.h"
#include "ScriptServer.h"
#include "Text.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <gmock/gmock.h>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

// What rkmon says, and the status it ends with, when something is wrong: the wrong address, the wrong token,
// a service that breaks off, is silent or talks nonsense.

namespace {

const QString anIdentifier = QStringLiteral("0123456789abcdef01234567");

class RkmonFailures : public RkmonTest
{
protected:
    RkmonFailures() { actAs(editor); }

    // Every command that asks a service something that all of them can.
    static QList<QStringList> requests()
    {
        return {{"monitoring"_q, "list"_q},
                {"monitoring"_q, "list"_q, "--all"_q},
                {"monitoring"_q, "count"_q},
                {"monitoring"_q, "ids"_q},
                {"monitoring"_q, "show"_q, anIdentifier},
                {"monitoring"_q, "name"_q, anIdentifier},
                {"monitoring"_q, "create"_q, "--name"_q, "VH"_q, "--category"_q, "Slope"_q},
                {"monitoring"_q, "update"_q, anIdentifier, "--name"_q, "VH"_q},
                {"monitoring"_q, "delete"_q, "--yes"_q, anIdentifier},
                {"category"_q},
                {"subcategory"_q, "list"_q},
                {"subcategory"_q, "list"_q, "Slope"_q},
                {"subcategory"_q, "show"_q, anIdentifier},
                {"point"_q, "list"_q, "--cell"_q, anIdentifier},
                {"point"_q, "list"_q, "--cell"_q, "VH"_q},
                {"point"_q, "show"_q, anIdentifier},
                {"point"_q, "latest"_q, "--cell"_q, anIdentifier},
                {"point"_q, "find"_q, "u1"_q},
                {"point"_q, "link"_q, "--cell"_q, anIdentifier, "--every-point"_q, "--no-links"_q},
                {"stats"_q, "normal"_q, "--cell"_q, anIdentifier},
                {"stats"_q, "depth"_q, "--cell"_q, anIdentifier, "--draw"_q},
                {"group"_q, "list"_q},
                {"group"_q, "create"_q, "--cell"_q, anIdentifier, "--sub-category"_q, "SM"_q, "--name"_q,
                 "Probes"_q, "--point"_q, "W1"_q},
                {"group"_q, "update"_q, anIdentifier, "--name"_q, "Probes"_q},
                {"group"_q, "delete"_q, "--yes"_q, anIdentifier},
                {"data"_q, "list"_q},
                {"data"_q, "list"_q, "--all"_q},
                {"data"_q, "history"_q, anIdentifier},
                {"data"_q, "delete"_q, "--yes"_q, anIdentifier},
                {"alarm"_q, "list"_q},
                {"alarm"_q, "list"_q, "--all"_q},
                {"alarm"_q, "detail"_q, anIdentifier},
                {"alarm"_q, "depths"_q, anIdentifier},
                {"ping"_q},
                {"can"_q, "create"_q, "Slope"_q},
                {"can"_q, "edit"_q, "Slope"_q},
                {"can"_q, "delete"_q, "Slope"_q}};
    }

    // Those that ask something that some services cannot.
    static QList<QStringList> extendedRequests()
    {
        return {{"project"_q, "list"_q},
                {"project"_q, "show"_q},
                {"project"_q, "use"_q, "Bluff"_q},
                {"whoami"_q},
                {"changes"_q},
                {"point"_q, "reference"_q, anIdentifier},
                {"point"_q, "delete"_q, "--yes"_q, anIdentifier},
                {"sample"_q, "delete"_q, "--yes"_q, anIdentifier, "--count"_q, "1"_q},
                {"data"_q, "undo"_q, "--yes"_q, anIdentifier}};
    }

    // Expects `code`, no output and one line that contains `words`, whatever is asked.
    void expectAlways(
        int code, const QString& words, const QStringList& more = {},
        const std::function<void()>& prepare = [] {})
    {
        for (const QStringList& request : requests()) {
            prepare();
            const Result result = rkmon.run(request + more);
            const std::string what = request.join(QLatin1Char(' ')).toStdString();
            EXPECT_EQ(result.code, code) << what << ": " << result.messages.toStdString();
            EXPECT_EQ(result.output, QString()) << what;
            EXPECT_TRUE(result.messages.startsWith("rkmon: "_q)) << what;
            EXPECT_EQ(result.messages.count(QLatin1Char('\n')), 1) << what;
            EXPECT_TRUE(result.messages.contains(words)) << what << ": " << result.messages.toStdString();
        }
    }
};

} // namespace

TEST_F(RkmonFailures, WrongAddress)
{
    rkmon.setVariable("RKMON_BASE_API"_q, "http://127.0.0.1:1/"_q);
    expectAlways(5, "cannot reach http://127.0.0.1:1/ (connection refused); is monitor-service running?"_q);
}

TEST_F(RkmonFailures, WrongToken)
{
    rkmon.configure(service().baseAddress(), project, "rkm_wrong"_q);
    expectAlways(3, "does not accept the token in "_q + rkmon.folder());
}

TEST_F(RkmonFailures, WhatOnlySomeServicesCanFailsAlike)
{
    for (const QStringList& request : extendedRequests()) {
        const std::string what = request.join(QLatin1Char(' ')).toStdString();
        rkmon.configure(service().baseAddress(), project, "rkm_wrong"_q);
        EXPECT_EQ(rkmon.run(request).code, 3) << what;
        rkmon.configure("http://127.0.0.1:1/"_q, project, editor.text);
        EXPECT_EQ(rkmon.run(request).code, 5) << what;
        rkmon.configure(service().baseAddress(), project, editor.text);
    }
}

TEST_F(RkmonFailures, UnknownIdentifier)
{
    for (const QStringList& request :
         {QStringList{"show"_q, anIdentifier}, QStringList{"name"_q, anIdentifier},
          QStringList{"update"_q, anIdentifier, "--name"_q, "x"_q},
          QStringList{"delete"_q, "--yes"_q, anIdentifier}}) {
        const Result result = rkmon.run(QStringList{"monitoring"_q} + request);
        EXPECT_EQ(result.code, 4) << result.messages.toStdString();
        EXPECT_TRUE(result.messages.contains(anIdentifier)) << result.messages.toStdString();
    }
}

TEST_F(RkmonFailures, UnknownProject)
{
    rkmon.configure(service().baseAddress(), anIdentifier, editor.text);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "list"_q}).code, 4);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "count"_q}).code, 4);
}

TEST_F(RkmonFailures, RefusedPatternTellsTheServicesWords)
{
    const Result result = rkmon.run({"monitoring"_q, "list"_q, "--name"_q, "(x"_q});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(result.messages.startsWith("rkmon: cannot list monitorings: "_q))
        << result.messages.toStdString();
}

TEST_F(RkmonFailures, UnknownCategoryIsRefused)
{
    const Result result =
        rkmon.run({"monitoring"_q, "create"_q, "--name"_q, "VH"_q, "--category"_q, "none"_q});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.messages.contains("none"_q)) << result.messages.toStdString();
}

TEST_F(RkmonFailures, GarbageForAnAnswer)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    const QList<QByteArray> garbage{"what?\r\n\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n<html",
                                    ScriptServer::httpAnswer(200, "[{\"_id\": "),
                                    ScriptServer::httpAnswer(200, "\xff\xfe"),
                                    ScriptServer::httpAnswer(200, "7")};
    for (const QByteArray& answer : garbage) {
        expectAlways(1, "makes no sense"_q, {}, [&] {
            server.answerRaw({ScriptServer::Step::bytes(answer), ScriptServer::Step::fin()});
        });
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, AnswerWithoutContent)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    for (const QStringList& request : requests()) {
        if (request.contains("delete"_q) && request.contains("--yes"_q)) {
            continue; // needs none
        }
        server.answerRaw({ScriptServer::Step::bytes(ScriptServer::httpAnswer(200, ""))});
        const Result result = rkmon.run(request);
        EXPECT_EQ(result.code, 1) << request.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(result.output, QString());
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, RecordOfAnotherMonitoring)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, R"({"_id": "ffffffffffffffffffffffff", "name": "another"})");
    const Result result = rkmon.run({"monitoring"_q, "show"_q, anIdentifier});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, Redirect)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerRaw({ScriptServer::Step::bytes(
        "HTTP/1.1 302 Found\r\nLocation: http://elsewhere.example/\r\nContent-Length: 0\r\n\r\n")});
    const Result result = rkmon.run({"monitoring"_q, "list"_q});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.messages.contains("elsewhere.example"_q)) << result.messages.toStdString();
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, ConnectionThatBreaksInTheAnswer)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    const QByteArray cut = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n[";
    expectAlways(5, "broke before the answer was complete"_q, {}, [&] {
        server.answerRaw({ScriptServer::Step::bytes(cut), ScriptServer::Step::fin()});
    });
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, NoAnswerWithinTheDeadline)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    expectAlways(5, "did not answer within the deadline"_q, {"--deadline"_q, "0.1"_q},
                 [&] { server.neverAnswer(); });
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, LostChangeMayHaveBeenCarriedOut)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerRaw({ScriptServer::Step::fin()});
    const Result result =
        rkmon.run({"monitoring"_q, "create"_q, "--name"_q, "VH"_q, "--category"_q, "Slope"_q});
    EXPECT_EQ(result.code, 5);
    EXPECT_TRUE(result.messages.contains("may have been carried out"_q)) << result.messages.toStdString();
    EXPECT_EQ(server.requestCount(), 1);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, UpdateThatFailsAfterReading)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    const QByteArray stored = QByteArray(R"({"_id": ")") + anIdentifier.toUtf8() + R"(", "name": "VH"})";
    server.answerJson(200, stored);
    server.answerJson(409, R"({"message": "changed meanwhile", "status": 409})");
    const Result result = rkmon.run({"monitoring"_q, "update"_q, anIdentifier, "--name"_q, "new"_q});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.messages, "rkmon: cannot update monitoring %1: changed meanwhile\n"_q.arg(anIdentifier));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, SecondPageThatFailsLeavesNothing)
{
    // Sub-categories of two categories are asked for one after the other.
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, R"(["Slope", "Pit"])");
    server.answerJson(200, R"([{"_id": "a", "name": "Rain", "category": "Slope", "alias": "R"}])");
    server.answerJson(503, R"({"message": "busy", "status": 503})");
    const Result result = rkmon.run({"subcategory"_q, "list"_q});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(result.messages.contains("busy"_q));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, ServicesWordsCannotSteerTheTerminal)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(400, R"({"message": "bad\u001b[2J\nrkmon: done", "status": 400})");
    const Result result = rkmon.run({"monitoring"_q, "list"_q});
    EXPECT_EQ(result.messages, "rkmon: cannot list monitorings: bad\\x1b[2J\\nrkmon: done\n"_q);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, TokenIsSentButNeverShown)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, "rkm_secret"_q);
    server.answerJson(401, R"({"message": "unknown token", "status": 401})");
    const Result result = rkmon.run({"monitoring"_q, "list"_q});
    ASSERT_EQ(server.requestCount(), 1);
    EXPECT_EQ(server.requests().first().header("Authorization"), "Bearer rkm_secret");
    EXPECT_EQ(result.code, 3);
    EXPECT_FALSE((result.output + result.messages).contains("rkm_secret"_q));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonFailures, ListThatKeepsChanging)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    for (int attempt = 0; attempt < 3; ++attempt) {
        server.answerJson(200, R"([{"_id": "a", "name": "VH"}])");
        server.answerJson(200, R"({"count": 2})");
    }
    const Result result = rkmon.run({"monitoring"_q, "list"_q, "--all"_q});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(result.messages.contains("kept changing"_q)) << result.messages.toStdString();
    EXPECT_TRUE(server.isUsedUp());
}

#ifdef Q_OS_UNIX
TEST_F(RkmonFailures, ServiceKilledWhileRkmonWaits)
{
    MonitorService doomed;
    const QString itsProject = doomed.createProject("Bluff"_q);
    const MonitorService::Token token = doomed.createToken("Ana"_q, itsProject, "editor"_q);
    ASSERT_TRUE(doomed.start());
    rkmon.configure(doomed.baseAddress(), itsProject, token.text);
    doomed.freeze();
    QTimer end;
    end.setSingleShot(true);
    QObject::connect(&end, &QTimer::timeout, &end, [&] { doomed.kill(); });
    const Result result = rkmon.run({"monitoring"_q, "list"_q}, [&](QProcess&) { end.start(300); });
    EXPECT_EQ(result.code, 5) << result.messages.toStdString();
    EXPECT_EQ(result.output, QString());
}

TEST(ServiceProcess, MayBeStoppedAsSoonAsItIsThere)
{
    MonitorService brief;
    for (int i = 0; i < 10; ++i) {
        ASSERT_TRUE(brief.start());
        EXPECT_EQ(brief.stop(), 0);
    }
}

TEST_F(RkmonFailures, ControlCEndsWith130)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.neverAnswer();
    const Result result = rkmon.run({"monitoring"_q, "list"_q}, [&](QProcess& process) {
        server.onRequest = [&] {
            ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        };
    });
    EXPECT_EQ(result.code, 130);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.messages, QString());
    server.onRequest = nullptr;
}

TEST_F(RkmonFailures, ControlCDuringAnImportTellsWhatIsIn)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    const auto write = [&](const char* name, const QByteArray& row) {
        QFile file(QDir(rkmon.folder()).filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("name,depth,time,count,value\n" + row);
        return file.fileName();
    };
    const QString first = write("a.csv", "W1,,2015-12-18T00:00:00Z,1,0.25\n");
    const QString second = write("b.csv", "W1,,2015-12-19T00:00:00Z,2,0.5\n");
    server.answerJson(200, R"([{"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"}])");
    server.answerJson(200, R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])");
    server.answerJson(404, R"({"message":"no such resource","status":404})");
    server.answerJson(200, "[]"); // no data held
    server.answerJson(200, R"({"count":0})");
    server.answerJson(200, "[]"); // the first delivery
    server.neverAnswer();
    const int secondDelivery = 7;
    const Result result =
        rkmon.run({"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, first, second},
                  [&](QProcess& process) {
                      server.onRequest = [&] {
                          if (server.requestCount() == secondDelivery) {
                              ::kill(static_cast<pid_t>(process.processId()), SIGINT);
                          }
                      };
                  });
    server.onRequest = nullptr;
    EXPECT_EQ(result.code, 130);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.messages,
              "rkmon: cannot deliver %1: it was cancelled; 1 of 2 samples are in, and the 1 under way "
              "may be; the import can be repeated safely\n"_q.arg(second));
}
#endif

// ---- Usage and configuration ----------------------------------------------------------------------------

TEST_F(RkmonFailures, UsageErrorsSendNothing)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    const QList<QStringList> wrong{
        {},
        {"monitoring"_q},
        {"moniotring"_q, "list"_q},
        {"monitoring"_q, "lst"_q},
        {"monitoring"_q, "list"_q, "--nam"_q, "x"_q},
        {"monitoring"_q, "list"_q, "--limit"_q, "0"_q},
        {"monitoring"_q, "list"_q, "--limit"_q, "2147483648"_q},
        {"monitoring"_q, "list"_q, "--limit"_q, "ten"_q},
        {"monitoring"_q, "list"_q, "--skip"_q, "-1"_q},
        {"monitoring"_q, "list"_q, "--all"_q, "--limit"_q, "5"_q},
        {"monitoring"_q, "list"_q, "--name"_q, ""_q},
        {"monitoring"_q, "list"_q, "--name"_q, "a"_q, "--exact-name"_q, "b"_q},
        {"monitoring"_q, "list"_q, "--since"_q, "soon"_q},
        {"monitoring"_q, "list"_q, "--until"_q, "2026-01-01T00:00:00"_q},
        {"monitoring"_q, "list"_q, "--model"_q, "m%1"_q},
        {"monitoring"_q, "list"_q, "--json"_q, "--csv"_q},
        {"monitoring"_q, "list"_q, "extra"_q},
        {"monitoring"_q, "show"_q},
        {"point"_q, "show"_q, "../projects/1/cells"_q},
        {"point"_q, "show"_q, "a?where={}"_q},
        {"monitoring"_q, "create"_q, "--name"_q, "x"_q},
        {"monitoring"_q, "create"_q, "--name"_q, "x"_q, "--category"_q, "y"_q, "--alarm-to"_q, "a,,b"_q},
        {"monitoring"_q, "update"_q, "a"_q},
        {"monitoring"_q, "update"_q, "a"_q, "--alarm-to"_q, "a,"_q},
        {"monitoring"_q, "update"_q, "a"_q, "--alarm-to"_q, "b"_q, "--no-alarm-to"_q},
        {"monitoring"_q, "delete"_q, "a"_q},
        {"can"_q, "read"_q, "Slope"_q},
        {"can"_q, "create"_q},
        {"category"_q, "list"_q, "--deadline"_q, "soon"_q},
        {"category"_q, "list"_q, "--base-api"_q, "nowhere"_q},
        {"category"_q, "list"_q, "--token-file"_q, "missing"_q},
        {"category"_q, "list"_q, "--config"_q, "missing"_q}};
    for (const QStringList& words : wrong) {
        const Result result = rkmon.run(words);
        const std::string what = words.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(result.code, 2) << what << ": " << result.messages.toStdString();
        EXPECT_EQ(result.output, QString()) << what;
        EXPECT_TRUE(result.messages.startsWith("rkmon: "_q)) << what;
        EXPECT_EQ(result.messages.count(QLatin1Char('\n')), 1) << what;
    }
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(RkmonFailures, UnknownCommandSuggests)
{
    EXPECT_EQ(rkmon.run({"moniotring"_q}).messages,
              "rkmon: unknown command \"moniotring\"; did you mean \"monitoring\"? (see rkmon --help)\n"_q);
    EXPECT_EQ(
        rkmon.run({"monitoring"_q, "list"_q, "--nmae=x"_q}).messages,
        "rkmon: unknown option \"--nmae\"; did you mean \"--name\"? (see rkmon monitoring list --help)\n"_q);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "crate"_q}).messages,
              "rkmon: unknown command \"crate\"; did you mean \"create\"? (see rkmon monitoring --help)\n"_q);
}

TEST_F(RkmonFailures, MissingSettingsNameTheThreeWays)
{
    for (const QString& variable : {"RKMON_BASE_API"_q, "RKMON_PROJECT"_q, "RKMON_TOKEN_FILE"_q}) {
        actAs(editor);
        rkmon.removeVariable(variable);
        const Result result = rkmon.run({"monitoring"_q, "list"_q});
        EXPECT_EQ(result.code, 2);
        EXPECT_TRUE(result.messages.contains(variable)) << result.messages.toStdString();
        EXPECT_TRUE(result.messages.contains("--"_q));
        EXPECT_TRUE(result.messages.contains("rkmon/config.ini"_q));
    }
}

TEST_F(RkmonFailures, FlagsWinOverVariables)
{
    rkmon.setVariable("RKMON_BASE_API"_q, "http://127.0.0.1:1/"_q);
    rkmon.setVariable("RKMON_PROJECT"_q, anIdentifier);
    const Result result = rkmon.run(
        {"--base-api"_q, service().baseAddress(), "monitoring"_q, "count"_q, "--project"_q, project});
    EXPECT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_EQ(result.output, "0\n"_q);
}

TEST_F(RkmonFailures, ConfigurationFileIsRead)
{
    const QString file = rkmon.folder() + "/site.ini"_q;
    QFile config(file);
    ASSERT_TRUE(config.open(QIODevice::WriteOnly));
    config.write(
        "base-api=%1\nproject=%2\ntoken-file=token\n"_q.arg(service().baseAddress(), project).toUtf8());
    config.close();
    for (const QString& variable : {"RKMON_BASE_API"_q, "RKMON_PROJECT"_q, "RKMON_TOKEN_FILE"_q}) {
        rkmon.removeVariable(variable);
    }
    const Result result = rkmon.run({"monitoring"_q, "count"_q, "--config"_q, file});
    EXPECT_EQ(result.code, 0) << result.messages.toStdString();
}

#ifdef Q_OS_UNIX
TEST_F(RkmonFailures, WarnsOfATokenThatOthersCanRead)
{
    QFile::setPermissions(rkmon.folder() + "/token"_q,
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    const Result result = rkmon.run({"monitoring"_q, "count"_q});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.output, "0\n"_q);
    EXPECT_TRUE(result.messages.startsWith("rkmon: warning: the token file "_q))
        << result.messages.toStdString();
}
#endif
