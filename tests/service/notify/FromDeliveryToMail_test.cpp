#include "KeptMail.h"
#include "TestServers.h"
#include "service/admin/ServiceProcess.h"
#include "service/http/RawClient.h"
#include "support/TemporaryFolder.h"
#include "time/Instant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>

#include <fstream>
#include <memory>

namespace monitorservice {
namespace {

namespace fs = std::filesystem;
using test::KeptMail;
using test::ServiceProcess;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::string member(const std::string& json, std::string_view name)
{
    simdjson::dom::parser parser;
    return std::string(parser.parse(json)[name].get_string().value());
}

std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

// The whole way: the service as it is run, with a project made by its commands, and requests over HTTP.
class FromDeliveryToMail : public ::testing::Test
{
protected:
    FromDeliveryToMail()
    {
        project = admin({"project", "create", "--name", "Harbour tunnel", "--time-zone", "Europe/Vienna"});
        admin({"category", "add", "Settlement"});
        subCategory = admin({"subcategory", "create", "--project", project, "--category", "Settlement",
                             "--name", "Ground level", "--kind", "settlement", "--unit", "mm"});
        const std::string created = admin({"token", "create", "--owner", "Ada", "--json"});
        token = member(created, "token");
        admin({"grant", "--token", member(created, "_id"), "--project", project, "--role", "editor"});
    }

    std::string admin(const std::vector<std::string>& arguments) const
    {
        const test::CommandResult result = test::runAdmin(data, arguments);
        EXPECT_EQ(result.exitCode, 0) << result.error;
        return result.line();
    }

    // Starts both servers, and the service that tells them.
    void serve()
    {
        mails.start();
        posts.start({"--secret", "top secret", "--now", std::to_string(systemNow() / 1000)});
        const std::string secret = folder.file("secret").string();
        std::ofstream(secret) << "top secret\n";
        fs::permissions(secret, fs::perms::owner_read | fs::perms::owner_write);
        service = std::make_unique<ServiceProcess>(std::vector<std::string>{
            "serve", "--data", data, "--listen", "127.0.0.1:0", "--smtp-url",
            "smtp://127.0.0.1:" + std::to_string(mails.port()), "--smtp-from", "alarms@site.example",
            "--alarm-webhook", "http://127.0.0.1:" + std::to_string(posts.port()) + "/",
            "--alarm-webhook-secret-file", secret});
        const std::string line = service->readLine(); // ends with ":PORT/"
        port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    }

    // The answer to a request that must succeed.
    std::string sent(const std::string& method, const std::string& path, const std::string& body) const
    {
        test::RawClient client(port);
        client.send(method + " /monitor-service/" + path +
                    " HTTP/1.1\r\nHost: localhost\r\nAuthorization: Bearer " + token +
                    "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        const test::RawAnswer answer = client.readAnswer();
        EXPECT_EQ(answer.status / 100, 2) << answer.body;
        return answer.body;
    }

    // A monitoring whose points S1 and S2 have limits.
    std::string limitedMonitoring(const std::string& name, const std::string& alarmTo) const
    {
        const std::string cell =
            member(sent("POST", "cells",
                        R"({"projectId":)" + quoted(project) + R"(,"category":"Settlement","name":)" +
                            quoted(name) + R"(,"alarmTo":[)" + quoted(alarmTo) + "]}"),
                   "_id");
        sent("POST", "groupSettings",
             R"({"projectId":)" + quoted(project) + R"(,"cellId":)" + quoted(cell) + R"(,"subCategoryId":)" +
                 quoted(subCategory) +
                 R"(,"groupName":"Corner","groupPoint":["S1","S2"],"totalVar":10,"dayVarValue":2.5})");
        return cell;
    }

    // Delivers a point with readings of two mornings that follow each other.
    std::string deliver(const std::string& cell, const std::string& point, const std::string& first,
                        const std::string& second) const
    {
        return sent("POST", "pointLocations",
                    R"([{"cellId":)" + quoted(cell) + R"(,"subCategoryId":)" + quoted(subCategory) +
                        R"(,"name":)" + quoted(point) +
                        R"(,"initialValue":12.5,"data":[{"count":1,"time":"2026-03-02T08:00:00.000+01:00",)" +
                        R"("value":)" + first + R"(},{"count":2,"time":"2026-03-03T08:00:00.000+01:00",)" +
                        R"("value":)" + second + "}]}]");
    }

    // Waits for so many mails, and as many posts.
    bool areTold(std::size_t messages) const
    {
        return test::comesTrue(
            [&] { return test::mailsOf(mails).size() >= messages && posts.kept().size() >= messages; });
    }

    void stop()
    {
        service->signal(SIGTERM);
        EXPECT_THAT(service->readErrors(), IsEmpty());
        EXPECT_EQ(service->wait(), 0);
    }

    const test::TemporaryFolder folder;
    const std::string data = folder.file("data.db").string();
    test::TestServer mails{std::string(SERVERS_FOLDER) + "mail_server.py", folder.file("mails")};
    test::TestServer posts{std::string(SERVERS_FOLDER) + "webhook_receiver.py", folder.file("posts")};
    std::unique_ptr<ServiceProcess> service;
    std::uint16_t port = 0;
    std::string project;
    std::string subCategory;
    std::string token;
};

TEST_F(FromDeliveryToMail, ExcessIsToldOnceWithItsAmounts)
{
    serve();
    const std::string tower = limitedMonitoring("Tower 1", "ada@site.example");
    deliver(tower, "S2", "12.5", "13.5");
    deliver(tower, "S1", "13", "24.75");
    ASSERT_TRUE(areTold(1));
    stop();
    ASSERT_THAT(test::mailsOf(mails), SizeIs(1));
    const KeptMail mail = test::mailsOf(mails).front();
    EXPECT_THAT(mail.envelope, ElementsAre("alarms@site.example", "ada@site.example"));
    EXPECT_EQ(mail.subject, "Alarm: Tower 1, Ground level: S1 beyond its limit");
    EXPECT_THAT(mail.points(), ElementsAre("S1"));
    EXPECT_THAT(
        mail.body,
        AllOf(HasSubstr("Project: Harbour tunnel\nMonitoring: Tower 1, Ground level\n"),
              HasSubstr("S1, new\n"
                        "  2026-03-03T08:00:00.000+01:00: 24.75 mm, counted from 12.5 mm; limits of Corner\n"
                        "    total variation 12.25 mm, limit 10 mm: 2.25 mm beyond\n"
                        "    daily variation 11.75 mm, limit 2.5 mm: 9.25 mm beyond\n")));
    EXPECT_THAT(mail.defects, IsEmpty());
    ASSERT_THAT(posts.kept(), SizeIs(1));
    EXPECT_THAT(posts.kept().front(), AllOf(HasSubstr(R"("pointName":"S1","isNew":true)"),
                                            HasSubstr(R"("totalBeyound":2.25,"dayBeyound":9.25)"),
                                            HasSubstr(R"("pointCount":1,"pointsLeft":0)")));
}

TEST_F(FromDeliveryToMail, ARepeatedDeliveryTellsNobody)
{
    serve();
    const std::string tower = limitedMonitoring("Tower 1", "ada@site.example");
    EXPECT_THAT(deliver(tower, "S1", "13", "24.75"), HasSubstr(R"("inserted":2)"));
    ASSERT_TRUE(areTold(1));
    // Who has not been told of anything is told of news at once.
    sent("PUT", "cells/" + tower, R"({"alarmTo":["ada@site.example","ben@site.example"]})");
    EXPECT_THAT(deliver(tower, "S1", "13", "24.75"),
                AllOf(HasSubstr(R"("unchanged":2)"), HasSubstr(R"("alarmId":"")")));
    // What comes later is told later, so nothing is left to be told when this is.
    const std::string other = limitedMonitoring("Tower 2", "ben@site.example");
    deliver(other, "S2", "13", "24.75");
    ASSERT_TRUE(areTold(2));
    stop();
    std::vector<std::string> told;
    for (const KeptMail& mail : test::mailsOf(mails)) {
        told.push_back(mail.to + ": " + mail.subject);
    }
    EXPECT_THAT(told, ::testing::UnorderedElementsAre(
                          "ada@site.example: Alarm: Tower 1, Ground level: S1 beyond its limit",
                          "ben@site.example: Alarm: Tower 2, Ground level: S2 beyond its limit"));
    EXPECT_THAT(posts.kept(), SizeIs(2));
}

} // namespace
} // namespace monitorservice
