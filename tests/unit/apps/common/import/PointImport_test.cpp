#include "import/PointImport.h"

#include "ScriptedSession.h"

#include <NetworkManager.h>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>

// The import as an application calls it: without a terminal, with callbacks, a result and kinds of failure.

namespace {

using testing::ElementsAre;
using testing::Pair;

const QByteArray header = "name,depth,time,count,value\n";
const QByteArray firstDay = header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n";
const QByteArray secondDay = header + "W1,20,2015-12-19T00:00:00-08:00,2,0.5\n"
                                      "W2,20,2015-12-19T00:00:00-08:00,1,0.75\n";

class PointImport : public ScriptedSession
{
protected:
    PointImport()
    {
        callbacks.onProgress = [this](int delivered, int total) {
            progress.emplace_back(delivered, total);
        };
        callbacks.onNote = [this](const ImportNote& note) {
            (note.kind == ImportNote::Kind::Warning ? warnings : information).append(note.text);
        };
    }

    QString write(const char* name, const QByteArray& content) const
    {
        QFile file(folder.filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    FileImport orderOf(const QStringList& files) const
    {
        FileImport order;
        order.files = files;
        order.monitoring = "VH"_q;
        order.subCategory = "SM"_q;
        return order;
    }

    ImportResult import(const FileImport& order) { return importFiles(session, order, callbacks); }

    void answerPlaces()
    {
        server.answerJson(200, R"([{"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"}])");
        server.answerJson(200, R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])");
    }

    // The service can nothing beyond what every one can, and holds nothing of the monitoring yet.
    void answerNoData()
    {
        if (!isAbout) {
            server.answerJson(404, R"({"message":"no such resource","status":404})");
            isAbout = true; // is asked once
        }
        server.answerJson(200, "[]");
        server.answerJson(200, R"({"count":0})");
    }

    void answerRight(bool isHeld)
    {
        server.answerJson(200, isHeld ? R"({"value":"true"})" : R"({"value":"false"})");
    }

    QTemporaryDir folder;
    bool isAbout = false;
    ImportCallbacks callbacks;
    std::vector<std::pair<int, int>> progress;
    QStringList warnings;
    QStringList information;
};

} // namespace

TEST_F(PointImport, DeliversAndTellsHowFarItIs)
{
    answerPlaces();
    answerNoData();
    server.answerJson(200, "[]");
    server.answerJson(200, "[]");
    const ImportResult result = import(orderOf({write("a.csv", firstDay), write("b.csv", secondDay)}));
    EXPECT_TRUE(result.badRows.isEmpty());
    EXPECT_EQ(result.files, 2);
    EXPECT_EQ(result.points, 2);
    EXPECT_EQ(result.newPoints.size(), 2);
    EXPECT_FALSE(result.outcome); // is not told
    EXPECT_EQ(result.samples, 3);
    EXPECT_EQ(result.deliveries, 2);
    EXPECT_TRUE(result.isSent);
    EXPECT_THAT(progress, ElementsAre(Pair(0, 3), Pair(1, 3), Pair(3, 3)));
    EXPECT_TRUE(warnings.isEmpty() && information.isEmpty());
    const QJsonArray body = QJsonDocument::fromJson(server.requests().last().body).array();
    EXPECT_EQ(body[0].toArray().size(), 2);
}

TEST_F(PointImport, BadRowsAreAResultAndNothingIsAsked)
{
    const QString bad = write("bad.csv", header + "W1,20,2015-12-18T00:00:00,1,0.25\n"
                                                  "W1,20,2015-12-19T00:00:00Z,2,NaN\n");
    const ImportResult result = import(orderOf({write("a.csv", firstDay), bad}));
    EXPECT_EQ(result.badRows,
              (QStringList{bad + ":2: time \"2015-12-18T00:00:00\" has no offset from UTC, as "
                                 "2015-12-18T00:15:00-08:00 has"_q,
                           bad + ":3: value \"NaN\" is not a number"_q}));
    EXPECT_TRUE(result.unclear.utcOffset);
    EXPECT_FALSE(result.unclear.decimalSign);
    EXPECT_FALSE(result.isSent);
    EXPECT_EQ(result.samples, 0);
    EXPECT_TRUE(progress.empty());
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(PointImport, FilesThatContradictEachOtherAreNotSent)
{
    answerPlaces();
    QByteArray other = firstDay;
    const ImportResult result =
        import(orderOf({write("a.csv", firstDay), write("b.csv", other.replace("0.25", "0.26"))}));
    EXPECT_EQ(result.badRows.size(), 1);
    EXPECT_FALSE(result.isSent);
    EXPECT_TRUE(progress.empty());
}

TEST_F(PointImport, DryRunSendsNothing)
{
    answerPlaces();
    answerNoData();
    answerRight(true);
    FileImport order = orderOf({write("a.csv", firstDay)});
    order.isDryRun = true;
    const ImportResult result = import(order);
    EXPECT_EQ(result.samples, 1);
    ASSERT_EQ(result.newPoints.size(), 1);
    EXPECT_EQ(result.newPoints[0].name, "W1"_q);
    EXPECT_EQ(result.newPoints[0].depth, "20"_q);
    ASSERT_TRUE(result.outcome);
    EXPECT_EQ(result.outcome->inserted, 1);
    EXPECT_TRUE(result.missingRights.isEmpty());
    EXPECT_FALSE(result.isSent);
    EXPECT_TRUE(progress.empty());
    for (const ScriptServer::Request& request : server.requests()) {
        EXPECT_EQ(request.method, "GET");
    }
}

TEST_F(PointImport, APointThatTheServiceTellsKeepsItsInitialValueHoweverItsDepthIsSpelled)
{
    answerPlaces();
    server.answerJson(200, R"({"name":"monitor-service","version":"1.2.3","extensions":["pointSummaries"],
        "owner":"Ana","rights":[]})");
    server.answerJson(200, R"([{"_id":"p1","cellId":"0123456789abcdef01234567",
        "subCategoryId":"0123456789abcdef01234568","name":"W1","depth":"20.0","alias":"","dataType":0,
        "initialValue":0,"hasInitialValue":true,"offsetDirection":"","insertCount":1,
        "lastDate":"2015-12-17T08:00:00.000Z","category":"Slope","reference":0,"data":[]}])");
    server.answerJson(200, R"({"count":1})");
    server.answerJson(200, "[]");
    const ImportResult result =
        import(orderOf({write("a.csv", firstDay + "W1,30,2015-12-18T00:00:00-08:00,1,7\n")}));
    ASSERT_EQ(result.newPoints.size(), 1);
    EXPECT_EQ(result.newPoints[0].depth, "30"_q);
    const QJsonArray body = QJsonDocument::fromJson(server.requests().last().body).array();
    const QJsonArray points = body[0].toArray();
    ASSERT_EQ(points.size(), 2);
    EXPECT_EQ(points[0].toObject().value("depth"_q), "20"_q);
    EXPECT_EQ(points[0].toObject().value("initialValue"_q).toDouble(-1), 0.0); // which leaves it as it is
    EXPECT_EQ(points[1].toObject().value("initialValue"_q).toDouble(-1), 7.0);
}

TEST_F(PointImport, DryRunNamesRightsThatAreMissing)
{
    answerPlaces();
    answerNoData();
    answerRight(false);
    FileImport order = orderOf({write("a.csv", firstDay)});
    order.isDryRun = true;
    EXPECT_EQ(import(order).missingRights,
              QStringList{"the token may not create data of category \"Slope\": the "
                          "service would refuse this import"_q});
}

TEST_F(PointImport, EndsBetweenTwoRequestsWhenItIsCancelled)
{
    answerPlaces();
    answerNoData();
    server.answerJson(200, "[]");
    callbacks.isCancelled = [this] {
        return server.requestCount() > 5; // the first delivery was the sixth
    };
    try {
        import(orderOf({write("a.csv", firstDay), write("b.csv", secondDay)}));
        FAIL() << "a cancelled import was taken for a success";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::Cancelled);
        EXPECT_EQ(failure.message(),
                  "the import was cancelled; 1 of 3 samples are in; the import can be repeated safely"_q);
    }
    EXPECT_THAT(progress, ElementsAre(Pair(0, 3), Pair(1, 3)));
}

TEST_F(PointImport, EndsARequestThatIsCancelled)
{
    answerPlaces();
    answerNoData();
    server.answerJson(200, "[]");
    server.neverAnswer();
    QTimer cancel;
    QObject::connect(&cancel, &QTimer::timeout, [this] {
        if (server.requestCount() == 7) { // the second delivery
            NetworkManager::instance().abortAll();
        }
    });
    cancel.start(10);
    try {
        import(orderOf({write("a.csv", firstDay), write("b.csv", secondDay)}));
        FAIL() << "a cancelled import was taken for a success";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::Cancelled);
        EXPECT_TRUE(
            failure.message().endsWith("b.csv: it was cancelled; 1 of 3 samples are in, and the 2 under way "
                                       "may be; the import can be repeated safely"_q))
            << failure.what();
    }
}

TEST_F(PointImport, NotesWhatIsOdd)
{
    answerPlaces();
    FileImport order = orderOf({write("a.csv", "name,depth,time,count,value,who\n"
                                               "W1,,2015-12-18T00:00:00Z,1,0.25,ana\n"
                                               "W1,,2015-12-18T00:00:00Z,1,0.25,ben\n")});
    answerNoData();
    answerRight(true);
    order.isDryRun = true;
    import(order);
    EXPECT_EQ(warnings, QStringList{order.files[0] + ": the column \"who\" is not read"_q});
    EXPECT_EQ(information, QStringList{order.files[0] + ": duplicate rows left out: 1"_q});
}

TEST_F(PointImport, NeedsNoCallbacks)
{
    answerPlaces();
    answerNoData();
    server.answerJson(200, "[]");
    EXPECT_TRUE(importFiles(session, orderOf({write("a.csv", firstDay)})).isSent);
}

TEST_F(PointImport, FailuresHaveTheirKinds)
{
    const QString file = write("a.csv", firstDay);
    const auto failure = [&](const QStringList& files) {
        return failureOf([&] { import(orderOf(files)); });
    };
    EXPECT_EQ(failure({folder.filePath("missing.csv"_q)}), FailureKind::BadInput);
    EXPECT_EQ(failure({file, file}), FailureKind::BadInput);

    server.answerJson(200, "[]");
    EXPECT_EQ(failure({file}), FailureKind::NotFound);

    answerPlaces();
    answerNoData();
    server.answerJson(403, R"({"message":"readers may not","status":403})");
    EXPECT_EQ(failure({file}), FailureKind::NotPermitted);

    answerPlaces();
    answerNoData();
    server.answerRaw({ScriptServer::Step::reset()});
    EXPECT_EQ(failure({file}), FailureKind::NoConnection);
}

TEST_F(PointImport, RefusedDeliveryNamesItsFile)
{
    answerPlaces();
    answerNoData();
    server.answerJson(500, R"({"message":"[0][0].data[0].time is in the future","status":500})");
    const QString file = write("a.csv", firstDay);
    try {
        import(orderOf({file}));
        FAIL() << "a refused delivery was taken for a success";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::Refused);
        EXPECT_EQ(failure.message(),
                  "the service refused %1: [0][0].data[0].time is in the future ([0] is %1)"_q.arg(file));
    }
    EXPECT_THAT(progress, ElementsAre(Pair(0, 1)));
}

TEST_F(PointImport, BreakTellsWhatWasDeliveredBefore)
{
    answerPlaces();
    answerNoData();
    server.answerJson(200, "[]");
    server.answerRaw({ScriptServer::Step::reset()});
    try {
        import(orderOf({write("a.csv", firstDay), write("b.csv", secondDay)}));
        FAIL() << "a broken import was taken for a success";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::NoConnection);
        EXPECT_TRUE(failure.message().endsWith(
            "; 1 of 3 samples had been delivered before; the import can be repeated safely"_q))
            << failure.what();
    }
    EXPECT_THAT(progress, ElementsAre(Pair(0, 3), Pair(1, 3)));
}

TEST_F(PointImport, ProjectFileSaysWhereFilesBelong)
{
    const QString plan = write("project.json", R"({"categories": ["Slope"],
        "subCategories": [{"category": "Slope", "name": "Soil moisture", "alias": "SM"}],
        "monitorings": [{"name": "VH", "category": "Slope"}], "groups": [],
        "files": [{"file": "a.csv", "monitoring": "VH", "subCategory": "SM"}]})");
    write("a.csv", firstDay);
    const auto answerCategories = [&] {
        server.answerJson(200, R"(["Slope"])");
        server.answerJson(200, R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])");
        server.answerJson(200, "[]"); // no monitoring yet
    };
    ProjectImport order;
    order.projectFile = plan;
    order.isDryRun = true;
    answerCategories();
    answerRight(true);
    EXPECT_EQ(importProject(session, order, callbacks).missingMonitorings, QStringList{"VH"_q});
    EXPECT_TRUE(information.isEmpty());

    order.isDryRun = false;
    session.data().clear();
    answerCategories();
    server.answerJson(200, R"({"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"})");
    server.answerJson(200, "[]"); // groups
    answerNoData();
    server.answerJson(200, "[]");
    EXPECT_TRUE(importProject(session, order, callbacks).isSent);
    EXPECT_EQ(information, QStringList{"created monitoring \"VH\" (0123456789abcdef01234567)"_q});
}

TEST_F(PointImport, MissingCategoryNamesTheAdministratorsCommand)
{
    const QString plan = write("project.json", R"({"categories": ["Dam"]})");
    server.answerJson(200, R"(["Slope"])");
    ProjectImport order;
    order.projectFile = plan;
    try {
        importProject(session, order, callbacks);
        FAIL() << "a missing category was taken for a success";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::Other);
        EXPECT_TRUE(failure.message().contains("category add 'Dam'"_q)) << failure.what();
    }
}
