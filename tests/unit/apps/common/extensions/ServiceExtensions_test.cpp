#include "extensions/ServiceExtensions.h"

#include "ScriptedExtensions.h"

#include <QTimer>

#include <utility>

namespace {

using testing::HasSubstr;

struct Member
{
    const char* name;
    Extension extension;
    const char* operation;
    std::function<void(ServiceExtensions&)> use;
};

class ServiceExtensionsTest : public ScriptedExtensions
{
protected:
    static std::vector<Member> members()
    {
        return {
            {"about", Extension::About, "GET about",
             [](auto& it) {
                 it.about();
             }},
            {"projects", Extension::Projects, "GET projects",
             [](auto& it) {
                 it.projects();
             }},
            {"project", Extension::Projects, "GET projects",
             [](auto& it) {
                 it.project("p7"_q);
             }},
            {"subCategories", Extension::SubCategoryKinds, "kinds and units of sub-categories",
             [](auto& it) {
                 it.subCategories("p7"_q);
             }},
            {"pointSummaries", Extension::PointSummaries, "GET projects/{project}/pointLocations",
             [](auto& it) {
                 it.pointSummaries("p7"_q, {}, 0, 1);
             }},
            {"pointSummaryCount", Extension::PointSummaries, "GET projects/{project}/pointLocations",
             [](auto& it) {
                 it.pointSummaryCount("p7"_q, {});
             }},
            {"changePoint", Extension::PointChanges, "PATCH pointLocations/{id}",
             [](auto& it) {
                 it.changePoint("x1"_q, {});
             }},
            {"deletePoint", Extension::PointDeletion, "DELETE pointLocations/{id}",
             [](auto& it) {
                 it.deletePoint("x1"_q);
             }},
            {"deleteSamples", Extension::PointDeletion, "DELETE pointLocations/{id}",
             [](auto& it) {
                 it.deleteSamples("x1"_q, {});
             }},
            {"changes", Extension::Changes, "GET projects/{project}/changes",
             [](auto& it) {
                 it.changes("p7"_q, {}, 0, 1);
             }},
            {"changeCount", Extension::Changes, "GET projects/{project}/changes",
             [](auto& it) {
                 it.changeCount("p7"_q, {});
             }},
            {"openAlarms", Extension::OpenAlarms, "GET projects/{project}/alarmManages",
             [](auto& it) {
                 it.openAlarms("p7"_q);
             }},
            {"alarmReasons", Extension::AlarmReasons, "reasons in alarm details",
             [](auto& it) {
                 it.alarmReasons("x1"_q);
             }},
            {"groupSides", Extension::GroupSides, "sides and warning levels of groups",
             [](auto& it) {
                 it.groupSides("x1"_q);
             }},
            {"changeGroupSides", Extension::GroupSides, "sides and warning levels of groups",
             [](auto& it) {
                 it.changeGroupSides("x1"_q, {});
             }},
            {"deliveries", Extension::DeliveryUndo, "DELETE historyDatas/{id}",
             [](auto& it) {
                 it.deliveries("x1"_q, 0, 1);
             }},
            {"undoDelivery", Extension::DeliveryUndo, "DELETE historyDatas/{id}",
             [](auto& it) {
                 it.undoDelivery("x1"_q);
             }},
        };
    }
};

} // namespace

TEST_F(ServiceExtensionsTest, ThatAreMissingAreNamedAndNothingIsSent)
{
    server.answerJson(404, R"({"message":"there is no such resource","status":404})");
    for (const Member& member : members()) {
        EXPECT_EQ(failureOf([&] { member.use(service); }), FailureKind::Other) << member.name;
        const std::string message = messageOf([&] { member.use(service); });
        EXPECT_THAT(message, HasSubstr("the service at " + server.baseAddress().toStdString() +
                                       " cannot do that, it has no " + member.operation))
            << member.name;
        EXPECT_THAT(message, HasSubstr('"' + nameOf(member.extension).toStdString() + '"')) << member.name;
    }
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(ServiceExtensionsTest, AreAskedForOneByOne)
{
    server.answerJson(200, about(R"("about","projects","undoingDeliveries")"));
    server.answerJson(200, R"({"_id":"p7","name":"Tunnel","timeZone":"UTC"})");
    EXPECT_EQ(service.project("p7"_q).name, "Tunnel"_q);
    for (const Member& member : members()) {
        const bool isThere = member.extension == Extension::About || member.extension == Extension::Projects;
        EXPECT_EQ(service.has(member.extension), isThere) << member.name;
    }
    EXPECT_EQ(messageOf([&] { service.undoDelivery("h1"_q); }),
              "cannot undo delivery h1: the service at " + server.baseAddress().toStdString() +
                  " cannot do that, it has no DELETE historyDatas/{id} (\"deliveryUndo\" is not among its "
                  "extensions)");
    EXPECT_EQ(server.requestCount(), 2);
}

TEST_F(ServiceExtensionsTest, FailWithTheirRequests)
{
    announceAll();
    for (const Member& member : members()) {
        if (member.extension == Extension::About) {
            continue; // answered from memory
        }
        const auto use = [&] {
            member.use(service);
        };
        server.answerJson(401, R"({"message":"no","status":401})");
        EXPECT_EQ(failureOf(use), FailureKind::NotPermitted) << member.name;
        server.answerJson(404, R"({"message":"there is none","status":404})");
        EXPECT_EQ(failureOf(use), FailureKind::NotFound) << member.name;
        server.answerJson(409, R"({"message":"it stands on it","status":409})");
        EXPECT_THAT(messageOf(use), HasSubstr(": it stands on it")) << member.name;
        server.answerJson(503, R"({"message":"busy","status":503})");
        EXPECT_EQ(failureOf(use), FailureKind::Refused) << member.name;
        server.answerRaw({ScriptServer::Step::bytes("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{\"a\""),
                          ScriptServer::Step::fin()});
        EXPECT_EQ(failureOf(use), FailureKind::NoConnection) << member.name;
        for (const char* const answer : {"{}", "[7]", "<html>", ""}) {
            server.answerJson(200, answer);
            EXPECT_EQ(failureOf(use), FailureKind::BadAnswer) << member.name << ": " << answer;
        }
    }
}

TEST_F(ServiceExtensionsTest, ReachNoOtherResourceByWhatIsNoIdentifier)
{
    announceAll();
    const int before = server.requestCount();
    for (const QString& id : {QString(), "x1/samples"_q, ".."_q, "a b"_q, "x?where={}"_q, "%1"_q}) {
        EXPECT_EQ(failureOf([&] { service.deletePoint(id); }), FailureKind::BadInput) << id.toStdString();
        EXPECT_EQ(failureOf([&] { service.deleteSamples(id, {}); }), FailureKind::BadInput);
        EXPECT_EQ(failureOf([&] { service.undoDelivery(id); }), FailureKind::BadInput);
        EXPECT_EQ(failureOf([&] { service.deliveries(id, 0, 1); }), FailureKind::BadInput);
        EXPECT_EQ(failureOf([&] { service.changes(id, {}, 0, 1); }), FailureKind::BadInput);
    }
    EXPECT_EQ(server.requestCount(), before);
}

TEST_F(ServiceExtensionsTest, SendTheBearersTokenAndTheConditionAsItIs)
{
    announceAll();
    server.answerJson(200, "[]");
    AuditQuery query;
    query.where = QJsonObject{{"name"_q, "50 % & \"é\" %1?limit=3&samples=x"_q}};
    service.changes("p7"_q, query, 0, 1);
    EXPECT_EQ(server.requests().constLast().header("Authorization"), "Bearer rkm_secret");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, compact(query.where)}, {"skip"_q, "0"_q}, {"limit"_q, "1"_q}}));
}

TEST_F(ServiceExtensionsTest, MayBeUsedByWhatRunsWhileTheyWait)
{
    std::vector<QString> names;
    const auto read = [&] {
        names.push_back(service.project("p7"_q).name);
    };
    // Within the wait for GET about, so that both ask for it.
    bool isFirst = true;
    server.onRequest = [&] {
        if (std::exchange(isFirst, false)) {
            QTimer::singleShot(0, &server, read);
        }
    };
    server.answerRaw({ScriptServer::Step::pause(20),
                      ScriptServer::Step::bytes(ScriptServer::httpAnswer(200, about(R"("projects")")))});
    server.answerJson(200, about(R"("projects")"));
    server.answerJson(200, R"({"_id":"p7","name":"inner","timeZone":"UTC"})");
    server.answerJson(200, R"({"_id":"p7","name":"outer","timeZone":"UTC"})");
    read();
    EXPECT_EQ(names, (std::vector<QString>{"inner"_q, "outer"_q}));
    server.onRequest = nullptr;
}

TEST_F(ServiceExtensionsTest, TellTheirOwnFailureWhateverRunsWhileTheyWait)
{
    announceAll();
    bool isFirst = true;
    server.onRequest = [&] {
        if (std::exchange(isFirst, false)) {
            QTimer::singleShot(0, &server, [&] { EXPECT_EQ(service.project("p7"_q).name, "inner"_q); });
        }
    };
    server.answerRaw({ScriptServer::Step::pause(20), ScriptServer::Step::bytes(ScriptServer::httpAnswer(
                                                         403, R"({"message":"not yours","status":403})"))});
    server.answerRaw({ScriptServer::Step::pause(50),
                      ScriptServer::Step::bytes(
                          ScriptServer::httpAnswer(200, R"({"_id":"p7","name":"inner","timeZone":"UTC"})"))});
    EXPECT_EQ(messageOf([&] { service.project("p8"_q); }),
              "cannot read project p8: not permitted (not yours)");
    server.onRequest = nullptr;
}
