#include "ServiceProcess.h"
#include "service/http/RawClient.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>

#include <fstream>

namespace monitorservice {
namespace {

using test::RawAnswer;
using test::RawClient;
using test::ServiceProcess;
using ::testing::AllOf;
using ::testing::HasSubstr;

class ServeCommand : public ::testing::Test
{
protected:
    ServeCommand()
    {
        project = admin({"project", "create", "--name", "Pit", "--time-zone", "UTC"});
        admin({"category", "add", "Settlement"});
        simdjson::dom::parser parser;
        const simdjson::dom::element created =
            parser.parse(admin({"token", "create", "--owner", "Ada", "--json"}));
        token = created["token"].get_string().value();
        tokenId = created["_id"].get_string().value();
        admin({"grant", "--token", tokenId, "--project", project, "--role", "editor"});
    }

    std::string admin(const std::vector<std::string>& arguments) const
    {
        const test::CommandResult result = test::runAdmin(file, arguments);
        EXPECT_EQ(result.exitCode, 0) << result.error;
        return result.line();
    }

    std::vector<std::string> serving(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments{"serve", "--data", file, "--listen", "127.0.0.1:0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    // The port in the line that the service prints when it is ready.
    static std::uint16_t portOf(const ServiceProcess& service)
    {
        const std::string line = service.readLine();
        const std::string begin = "monitor-service listening on http://127.0.0.1:";
        if (line.substr(0, begin.size()) != begin || line.back() != '/') {
            throw std::runtime_error("not ready: " + line);
        }
        return static_cast<std::uint16_t>(std::stoul(line.substr(begin.size())));
    }

    RawAnswer call(RawClient& client, const std::string& method, const std::string& path,
                   const std::string& body = {}) const
    {
        client.send(method + " /monitor-service/" + path + " HTTP/1.1\r\nHost: h\r\nAuthorization: Bearer " +
                    token + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        return client.readAnswer();
    }

    std::string cellBody() const
    {
        return R"({"projectId":")" + project + R"(","name":"Tower","category":"Settlement"})";
    }

    test::TemporaryFolder folder;
    std::string file = folder.file("data.db").string();
    std::string project;
    std::string token;
    std::string tokenId;
};

TEST_F(ServeCommand, StopsCleanlyOnASignal)
{
    for (const int number : {SIGTERM, SIGINT}) {
        ServiceProcess service(serving());
        RawClient client(portOf(service));
        EXPECT_EQ(call(client, "POST", "cells", cellBody()).status, 201U);
        service.signal(number);
        EXPECT_EQ(service.wait(), 0);
        EXPECT_FALSE(std::filesystem::exists(file + "-wal"));
    }
}

TEST_F(ServeCommand, WhatWasAnsweredSurvivesAKill)
{
    std::vector<std::string> answered;
    for (int i = 0; i < 3; ++i) {
        ServiceProcess service(serving());
        RawClient client(portOf(service));
        for (const std::string& document : answered) {
            const std::string id = document.substr(8, 24); // {"_id":"...
            EXPECT_EQ(call(client, "GET", "cells/" + id).body, document);
        }
        const RawAnswer answer = call(client, "POST", "cells", cellBody());
        EXPECT_EQ(answer.status, 201U);
        answered.push_back(answer.body);
        service.signal(SIGKILL);
        EXPECT_EQ(service.wait(), -SIGKILL);
    }
}

TEST_F(ServeCommand, AdministrationTakesEffectOnOpenConnections)
{
    ServiceProcess service(serving());
    RawClient client(portOf(service));
    EXPECT_EQ(call(client, "GET", "categories").body, R"(["Settlement"])");
    admin({"category", "add", "Inclinometer"});
    EXPECT_EQ(call(client, "GET", "categories").body, R"(["Settlement","Inclinometer"])");
    admin({"token", "revoke", tokenId});
    EXPECT_EQ(call(client, "GET", "categories").status, 401U);
}

TEST_F(ServeCommand, LogHoldsNeitherTokenNorQuery)
{
    ServiceProcess service(serving({"--log"}));
    RawClient client(portOf(service));
    call(client, "GET", "projects/" + project + "/cells?where=%7B%22name%22:%22hidden%22%7D");
    service.signal(SIGTERM);
    const std::string log = service.readErrors();
    EXPECT_THAT(log, HasSubstr("GET /monitor-service/projects/" + project + "/cells 200"));
    EXPECT_THAT(log, ::testing::Not(HasSubstr("hidden")));
    EXPECT_THAT(log, ::testing::Not(HasSubstr(token)));
    EXPECT_EQ(service.wait(), 0);
}

TEST_F(ServeCommand, LogTellsWhoAsked)
{
    ServiceProcess service(serving({"--log"}));
    RawClient client(portOf(service));
    call(client, "GET", "categories");
    client.send("GET /healthz HTTP/1.1\r\nHost: h\r\n\r\n");
    client.readAnswer();
    call(client, "GET", "nothing");
    admin({"token", "revoke", tokenId});
    call(client, "GET", "projects");
    service.signal(SIGTERM);
    const std::string log = service.readErrors();
    EXPECT_THAT(log, HasSubstr("Z 127.0.0.1 " + tokenId + " GET /monitor-service/categories 200 "));
    EXPECT_THAT(log, HasSubstr("Z 127.0.0.1 - GET /healthz 200 "));
    EXPECT_THAT(log, HasSubstr("Z 127.0.0.1 " + tokenId + " GET /monitor-service/nothing 404 "));
    EXPECT_THAT(log, HasSubstr("Z 127.0.0.1 " + tokenId + " GET /monitor-service/projects 401 "));
    EXPECT_EQ(service.wait(), 0);
}

TEST_F(ServeCommand, SaysOnceThatNobodyIsToldAndNothingElseWithoutLog)
{
    ServiceProcess service(serving());
    RawClient client(portOf(service));
    call(client, "GET", "categories");
    service.signal(SIGTERM);
    EXPECT_EQ(service.readErrors(), "monitor-service: alarms are only stored: nobody is told of them without "
                                    "--smtp-url or --alarm-webhook\n");
    EXPECT_EQ(service.wait(), 0);
}

TEST_F(ServeCommand, MakesAMissingFileAndSaysSo)
{
    file = folder.file("new.db").string();
    ServiceProcess service(serving());
    portOf(service);
    service.signal(SIGTERM);
    EXPECT_THAT(service.readErrors(), AllOf(HasSubstr(file), HasSubstr("holds no data yet; they are made")));
    EXPECT_EQ(service.wait(), 0);
}

TEST_F(ServeCommand, WarnsWhenItIsReachableFromOutside)
{
    ServiceProcess service({"serve", "--data", file, "--listen", "0.0.0.0:0"});
    EXPECT_THAT(service.readLine(), HasSubstr("http://0.0.0.0:"));
    service.signal(SIGTERM);
    EXPECT_THAT(service.readErrors(), HasSubstr("warning: 0.0.0.0 can be reached from other machines"));
    EXPECT_EQ(service.wait(), 0);
}

TEST_F(ServeCommand, FailureToStartIsExplained)
{
    const auto failure = [](const std::vector<std::string>& arguments) {
        const test::CommandResult result = test::run(arguments);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        return result.error;
    };
    EXPECT_THAT(failure({"serve", "--data", file, "--listen", "nowhere"}), HasSubstr("nowhere"));
    EXPECT_THAT(failure({"serve", "--data", folder.path().string(), "--listen", "127.0.0.1:0"}),
                HasSubstr("is a folder"));
    std::ofstream(folder.file("notes.txt")) << std::string(5000, 'x');
    EXPECT_THAT(failure({"serve", "--data", folder.file("notes.txt").string(), "--listen", "127.0.0.1:0"}),
                HasSubstr("not a database"));
    ServiceProcess service(serving());
    const std::string address = "127.0.0.1:" + std::to_string(portOf(service));
    const std::string other = folder.file("other.db").string();
    EXPECT_THAT(failure({"serve", "--data", other, "--listen", address}),
                HasSubstr("cannot listen on " + address));
}

} // namespace
} // namespace monitorservice
