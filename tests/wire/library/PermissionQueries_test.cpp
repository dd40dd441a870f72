#include "../../support/LibraryTest.h"

namespace {

class PermissionQueries : public LibraryTest
{
};

TEST_F(PermissionQueries, AskForTheCategoryAndTheAction)
{
    const auto expectQuery = [this](const QString& key) {
        EXPECT_EQ(lastMethod(), "GET");
        EXPECT_EQ(lastPath(), "projects/p7/auth"_q);
        EXPECT_EQ(lastQuery(), (Query{{"category"_q, "Q"_q}, {"key"_q, key}}));
    };
    server.answerJson(200, R"({"value":"true"})");
    EXPECT_TRUE(data.canCreateMonitoring("Q"_q));
    expectQuery("create"_q);
    server.answerJson(200, R"({"value":"true"})");
    EXPECT_TRUE(data.canDeleteMonitoring("Q"_q));
    expectQuery("delete"_q);
    server.answerJson(200, R"({"value":"true"})");
    EXPECT_TRUE(data.canEditMonitoring("Q"_q));
    expectQuery("edit"_q);
    EXPECT_EQ(server.requestCount(), 3);
}

TEST_F(PermissionQueries, OnlyTheTextTruePermits)
{
    for (const char* answer : {R"({"value":"True"})", R"({"value":true})", R"({"value":"true "})",
                               R"({"value":1})", R"({"value":"false"})", "{}", R"(["true"])"}) {
        server.answerJson(200, answer);
        EXPECT_FALSE(data.canCreateMonitoring("Q"_q)) << answer;
    }
}

TEST_F(PermissionQueries, AFailureRefuses)
{
    for (const int status : {401, 403, 404, 500, 503}) {
        server.answerJson(status, R"({"message":"no","status":0})");
        EXPECT_FALSE(data.canEditMonitoring("Q"_q)) << status;
    }
    server.answerRaw({ScriptServer::Step::bytes("HTTP/1.1 200 OK\r\nContent-Length: 16\r\n\r\n{\"value\":"),
                      ScriptServer::Step::fin()});
    EXPECT_FALSE(data.canEditMonitoring("Q"_q));
}

TEST_F(PermissionQueries, AnEmptyCategoryIsAnEmptyValue)
{
    server.answerJson(200, R"({"value":"false"})");
    EXPECT_FALSE(data.canCreateMonitoring(QString()));
    EXPECT_TRUE(lastRequest().target.endsWith("auth?category=&key=create"))
        << lastRequest().target.constData();
}

TEST_F(PermissionQueries, TheCategoryArrivesAsTyped)
{
    const QString category = QString::fromUtf8("R&D #1 + 50%1 = \"pit\" / 基坑?&key=x");
    server.answerJson(200, R"({"value":"true"})");
    EXPECT_TRUE(data.canDeleteMonitoring(category));
    EXPECT_EQ(lastQuery(), (Query{{"category"_q, category}, {"key"_q, "delete"_q}}));
}

TEST_F(PermissionQueries, TouchNoCache)
{
    server.answerJson(200, R"({"value":"true"})");
    server.answerJson(200, R"({"value":"false"})");
    EXPECT_TRUE(data.canCreateMonitoring("Q"_q));
    EXPECT_FALSE(data.canCreateMonitoring("Q"_q));
    EXPECT_EQ(server.requestCount(), 2);
}

} // namespace
