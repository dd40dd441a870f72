#include "ApiFixture.h"
#include "api/Resources.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <thread>

namespace monitorservice {
namespace {

using test::member;
using test::RawAnswer;
using test::RawClient;
using test::requestText;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ApiTest : public test::ApiFixture
{
protected:
    RawAnswer authorized(const std::string& authorization) const
    {
        return raw(requestText("GET", "/monitor-service/categories", authorization, ""));
    }

    RawAnswer raw(const std::string& request) const
    {
        RawClient client(server.port());
        client.send(request);
        return client.readAnswer();
    }
};

TEST_F(ApiTest, HealthAndReadinessNeedNoToken)
{
    for (const char* const path : {"/healthz", "/readyz"}) {
        const RawAnswer answer = raw(requestText("GET", path, "", ""));
        EXPECT_EQ(answer.status, 200U) << path;
        EXPECT_EQ(answer.body, R"({"status":"ok"})");
    }
}

TEST_F(ApiTest, MetricsCountAnswers)
{
    get("categories");
    const RawAnswer answer = raw(requestText("GET", "/metrics", "", ""));
    EXPECT_EQ(answer.status, 200U);
    EXPECT_THAT(answer.fields.at("content-type"), StartsWith("text/plain"));
    EXPECT_THAT(answer.body, HasSubstr("\nmonitor_service_answers_total{status=\"2xx\"} 1\n"));
    EXPECT_THAT(answer.body, HasSubstr("\nmonitor_service_requests_total 2\n"));
}

TEST_F(ApiTest, OperatorsResourcesOnlyAnswerGet)
{
    const RawAnswer answer = raw(requestText("POST", "/healthz", "", "{}"));
    EXPECT_EQ(answer.status, 405U);
    EXPECT_EQ(answer.fields.at("allow"), "GET");
}

TEST_F(ApiTest, DescriptionNamesEveryRouteAndNoOther)
{
    const RawAnswer answer = raw(requestText("GET", "/openapi.json", "", ""));
    EXPECT_EQ(answer.status, 200U);
    std::set<std::string> described;
    simdjson::dom::parser parser;
    const simdjson::dom::object paths = parser.parse(answer.body)["paths"];
    for (const auto path : paths) {
        const simdjson::dom::object methods = path.value;
        for (const auto method : methods) {
            if (method.key != "parameters") {
                std::string pattern(path.key);
                for (std::size_t begin = 0; (begin = pattern.find('{')) != std::string::npos;) {
                    pattern.replace(begin, pattern.find('}') - begin + 1, "*");
                }
                described.insert(std::string(method.key) + " " + pattern);
            }
        }
    }
    std::set<std::string> routed;
    for (const Route& route : allRoutes()) {
        std::string pattern;
        for (const std::string_view segment : route.path) {
            pattern += '/';
            pattern += segment;
        }
        for (const auto& [method, handler] : route.methods) {
            std::string name(method);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return std::tolower(c); });
            routed.insert(name + " " + pattern);
        }
    }
    EXPECT_EQ(described, routed);
}

TEST_F(ApiTest, BearerIsLetInWhateverTheSchemesCase)
{
    for (const char* const scheme : {"Bearer ", "bearer ", "BEARER ", "Bearer   "}) {
        EXPECT_EQ(authorized(scheme + editor).status, 200U) << scheme;
    }
}

TEST_F(ApiTest, NobodyElseIsLetIn)
{
    for (const std::string& authorization :
         std::vector<std::string>{"", "Bearer", "Bearer ", "Bearer rkm_unknown", "Basic " + editor, editor,
                                  "Bearer " + editor + "x", "Bearer " + editor.substr(0, editor.size() - 1),
                                  "Bearer Bearer " + editor, "Bearer" + editor}) {
        const RawAnswer answer = authorized(authorization);
        EXPECT_EQ(answer.status, 401U) << authorization;
        EXPECT_EQ(answer.fields.at("www-authenticate"), "Bearer") << authorization;
        EXPECT_EQ(member(answer.body, "status"), "401");
    }
}

TEST_F(ApiTest, TokenInTheQueryIsNotLookedAt)
{
    for (const char* const name : {"access_token", "token"}) {
        EXPECT_EQ(
            call("", "GET", std::string("categories?") + name + "=" + test::percentEncoded(editor)).status,
            401U);
        EXPECT_EQ(get(std::string("categories?") + name + "=x").status, 400U);
    }
}

TEST_F(ApiTest, ExpiredTokenIsRefusedFromItsEndOn)
{
    const std::string token = newToken("Brief", now + 10);
    EXPECT_EQ(call(token, "GET", "categories").status, 200U);
    now += 9;
    EXPECT_EQ(call(token, "GET", "categories").status, 200U);
    now += 1;
    EXPECT_THAT(refusal(call(token, "GET", "categories")), HasSubstr("401 the token has expired"));
}

TEST_F(ApiTest, TokenRevokedDuringAConnectionIsRefusedAtItsNextRequest)
{
    const std::string request = requestText("GET", "/monitor-service/categories", "Bearer " + editor, "");
    RawClient client(server.port());
    client.send(request);
    EXPECT_EQ(client.readAnswer().status, 200U);
    // As another process would: through a store of its own.
    const std::unique_ptr<Store> administrator = openStore(testStore.location());
    const auto session = administrator->write();
    session->tokens().revoke(editor.substr(4), 1);
    session->commit();
    client.send(request);
    const RawAnswer answer = client.readAnswer();
    EXPECT_EQ(answer.status, 401U);
    EXPECT_THAT(answer.body, HasSubstr("revoked"));
}

TEST_F(ApiTest, RevokedGrantIsGoneAtTheNextRequest)
{
    const std::string token = newToken("Reader");
    const std::string id = grant(token, "p2", std::nullopt, Right::Read);
    EXPECT_EQ(call(token, "GET", "projects/p2/cells").status, 200U);
    write([&](Session& session) { session.grants().remove(id); });
    EXPECT_EQ(call(token, "GET", "projects/p2/cells").status, 404U);
}

TEST_F(ApiTest, ReadsAreAnsweredHoweverManyWritesWaitForTheirTurn)
{
    const std::string path = "/monitor-service/cells/" + newCell("Tower");
    const std::size_t writes = HttpLimits().readerThreads + 2 * HttpLimits().writerThreads;
    std::vector<RawClient> writers;
    auto longWrite = store.write();
    for (std::size_t i = 0; i < writes; ++i) {
        writers.emplace_back(server.port())
            .send(requestText("PUT", path, "Bearer " + editor, R"({"name":"T)" + std::to_string(i) + "\"}"));
    }
    while (counters->requestsInProgress != writes) {
        std::this_thread::yield();
    }
    const RawAnswer read = raw(requestText("GET", path, "Bearer " + editor, ""));
    EXPECT_EQ(read.status, 200U);
    EXPECT_EQ(member(read.body, "name"), "Tower");

    longWrite.reset();
    for (RawClient& writer : writers) {
        EXPECT_EQ(writer.readAnswer().status, 200U);
    }
}

TEST_F(ApiTest, UnknownPathsAreNotFound)
{
    for (const char* const path : {"", "nothing", "cells/a/b", "cells/", "projects/", "projects/p1/",
                                   "projects//cells", "projects/p1/cells/", "projects/p1/../p1/cells",
                                   "./cells/x", "projects/p1%2Fcells", "categories/x/y", "Categories"}) {
        EXPECT_EQ(get(path).status, 404U) << path;
    }
    EXPECT_EQ(raw(requestText("GET", "/", "", "")).status, 404U);
    EXPECT_EQ(raw(requestText("GET", "/monitor-service", "Bearer " + editor, "")).status, 404U);
    EXPECT_EQ(raw(requestText("GET", "//monitor-service/categories", "Bearer " + editor, "")).status, 404U);
}

TEST_F(ApiTest, TokenIsAskedForBeforeAnythingIsTold)
{
    EXPECT_EQ(call("", "GET", "nothing").status, 401U);
    EXPECT_EQ(call("", "PATCH", "categories").status, 401U);
    EXPECT_EQ(call("", "GET", "projects/p1/cells?skip=x").status, 401U);
}

TEST_F(ApiTest, UnknownMethodsAreRefusedWithTheKnownOnes)
{
    struct Case
    {
        const char* path;
        const char* method;
        const char* allow;
    };
    for (const Case& one :
         {Case{"cells", "GET", "POST"}, Case{"cells/x", "POST", "GET, PUT, DELETE"},
          Case{"cells/x", "PATCH", "GET, PUT, DELETE"}, Case{"projects/p1/cells", "POST", "GET"},
          Case{"categories", "PUT", "GET, POST"}, Case{"categories/x", "GET", "PATCH, DELETE"},
          Case{"projects", "PATCH", "GET, POST"}, Case{"projects/p1", "PUT", "GET, PATCH, DELETE"},
          Case{"projects/p1/subCategories", "DELETE", "GET, POST"},
          Case{"subCategories/x", "PUT", "GET, PATCH, DELETE"}, Case{"changes", "POST", "GET"},
          Case{"projects/p1/auth", "POST", "GET"}}) {
        const RawAnswer answer = call(editor, one.method, one.path);
        EXPECT_EQ(answer.status, 405U) << one.method << ' ' << one.path;
        EXPECT_EQ(answer.fields.at("allow"), one.allow) << one.method << ' ' << one.path;
    }
}

TEST_F(ApiTest, HeadAnswersLikeGetWithoutTheBody)
{
    RawClient client(server.port());
    client.send(requestText("HEAD", "/monitor-service/categories", "Bearer " + editor, ""));
    const RawAnswer answer = client.readAnswer(false);
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(answer.fields.at("content-length"), std::to_string(get("categories").body.size()));
}

} // namespace
} // namespace monitorservice
