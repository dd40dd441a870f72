#include "extensions/ServiceAbout.h"

#include "ScriptedExtensions.h"

#include <NetworkManager.h>

namespace {

using Step = ScriptServer::Step;

class ServiceAboutTest : public ScriptedExtensions
{
protected:
    ~ServiceAboutTest() override { NetworkManager::instance().setDeadline(std::chrono::seconds(30)); }

    void answerPage(int status, const QByteArray& body)
    {
        server.answerRaw({Step::bytes(ScriptServer::httpAnswer(status, body, {"Content-Type: text/html"}))});
    }
};

} // namespace

TEST_F(ServiceAboutTest, IsAskedForOnceAndNotBeforeItIsNeeded)
{
    EXPECT_EQ(server.requestCount(), 0);
    server.answerJson(200, R"({"name":"monitor-service","version":"1.2.3","extensions":["about","new"],
        "owner":"Ana","rights":[{"projectId":"p7","category":null,"rights":["read","create"]},
        {"projectId":"p8","category":"Pit","rights":[]},
        {"projectId":null,"category":null,"rights":["administer"]}]})");
    EXPECT_TRUE(service.has(Extension::About));
    EXPECT_EQ(lastRequest(), "GET about");
    EXPECT_FALSE(service.has(Extension::Changes));
    const ServiceAbout about = service.about();
    EXPECT_EQ(about.version, "1.2.3"_q);
    EXPECT_EQ(about.extensions, (QStringList{"about"_q, "new"_q}));
    EXPECT_EQ(about.owner, "Ana"_q);
    ASSERT_EQ(about.rights.size(), 3);
    EXPECT_EQ(about.rights[0].project, "p7"_q);
    EXPECT_EQ(about.rights[0].category, std::nullopt);
    EXPECT_EQ(about.rights[0].rights, (QStringList{"read"_q, "create"_q}));
    EXPECT_EQ(about.rights[1].category, "Pit"_q);
    EXPECT_TRUE(about.rights[1].rights.isEmpty());
    EXPECT_EQ(about.rights[2].project, std::nullopt);
    EXPECT_EQ(about.rights[2].rights, QStringList{"administer"_q});
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(ServiceAboutTest, ThatIsNotThereMeansNoExtensions)
{
    const std::vector<std::function<void()>> answers{
        [&] { server.answerJson(404, R"({"message":"there is no such resource","status":404})"); },
        [&] { answerPage(404, "<html>not here</html>"); },
        [&] { server.answerRaw({Step::bytes(ScriptServer::httpAnswer(404, {}, {}))}); },
        [&] { server.answerJson(405, R"({"message":"GET is not possible here"})"); },
        [&] { answerPage(501, "<html>not implemented</html>"); },
        [&] { answerPage(200, "<html>welcome</html>"); },
        [&] { server.answerJson(200, "[]"); },
        [&] { server.answerJson(200, R"([{"extensions":["about"]}])"); },
        [&] { server.answerJson(200, "{}"); },
        [&] { server.answerJson(200, R"({"name":"another service","version":"7"})"); },
    };
    for (std::size_t i = 0; i < answers.size(); ++i) {
        answers[i]();
        ServiceExtensions other(session);
        EXPECT_FALSE(other.has(Extension::About)) << i;
        EXPECT_FALSE(other.has(Extension::PointChanges)) << i;
        EXPECT_EQ(failureOf([&] { other.about(); }), FailureKind::Other) << i;
        EXPECT_EQ(server.requestCount(), static_cast<int>(i) + 1) << "asked more than once";
    }
}

TEST_F(ServiceAboutTest, FailsAsEveryRequestDoesAndIsAskedAgain)
{
    const QByteArray whole = ScriptServer::httpAnswer(200, about(R"("about")"));
    const QByteArray absent = ScriptServer::httpAnswer(404, R"({"message":"there is no such resource"})");
    const std::vector<std::pair<std::function<void()>, FailureKind>> rows{
        {[&] { server.answerJson(401, R"({"message":"no"})"); }, FailureKind::NotPermitted},
        {[&] { server.answerJson(403, R"({"message":"no"})"); }, FailureKind::NotPermitted},
        {[&] { server.answerJson(400, R"({"message":"no"})"); }, FailureKind::Refused},
        {[&] { server.answerJson(500, R"({"message":"no"})"); }, FailureKind::Refused},
        {[&] { server.answerJson(503, R"({"message":"busy"})"); }, FailureKind::Refused},
        {[&] { answerPage(302, "<html>log in</html>"); }, FailureKind::Refused},
        {[&] {
             server.answerRaw({Step::bytes(whole.chopped(9)), Step::fin()});
         },
         FailureKind::NoConnection},
        {[&] {
             server.answerRaw({Step::bytes(absent.chopped(9)), Step::fin()});
         },
         FailureKind::NoConnection},
        {[&] {
             server.answerRaw(
                 {Step::bytes(ScriptServer::httpAnswer(200, "no gzip", {"Content-Encoding: gzip"}))});
         },
         FailureKind::BadAnswer},
        {[&] { server.answerRaw({Step::bytes(ScriptServer::httpAnswer(200, {}))}); }, FailureKind::BadAnswer},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].first();
        EXPECT_EQ(failureOf([&] { service.has(Extension::About); }), rows[i].second) << i;
    }
    server.answerJson(200, about(R"("about")"));
    EXPECT_TRUE(service.has(Extension::About));
}

TEST_F(ServiceAboutTest, ThatDoesNotComeInTimeIsAFailure)
{
    NetworkManager::instance().setDeadline(std::chrono::milliseconds(50));
    server.neverAnswer();
    EXPECT_EQ(failureOf([&] { service.has(Extension::About); }), FailureKind::NoConnection);
    NetworkManager::instance().setDeadline(std::chrono::seconds(30));
    server.answerJson(404, "{}");
    EXPECT_FALSE(service.has(Extension::About));
}

TEST_F(ServiceAboutTest, IsCheckedMemberByMember)
{
    const auto has = [&] {
        service.has(Extension::About);
    };
    expectMembersAreChecked(jsonObject(R"({"version":"1","extensions":["about"],"owner":"Ana","rights":[]})"),
                            [&](const QJsonObject& document) { answer(document); }, has, {},
                            {"extensions"_q});
    expectMembersAreChecked(
        jsonObject(R"({"projectId":"p7","category":null,"rights":["read"]})"),
        [&](const QJsonObject& rights) {
            QJsonObject document = jsonObject(R"({"version":"1","extensions":["about"],"owner":"Ana"})");
            document.insert("rights"_q, QJsonArray{rights});
            answer(document);
        },
        has);
    server.answerJson(200, about(R"("about")"));
    EXPECT_TRUE(service.has(Extension::About)) << "a document that was wrong is remembered";
}

TEST_F(ServiceAboutTest, OfAnUnreachableServiceIsAFailure)
{
    server.setArrival(ScriptServer::Arrival::Refused);
    EXPECT_EQ(failureOf([&] { service.has(Extension::About); }), FailureKind::NoConnection);
}
