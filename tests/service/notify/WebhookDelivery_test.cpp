#include "AlarmedSite.h"
#include "TestServers.h"
#include "notify/Dispatcher.h"
#include "notify/WebhookTransport.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>

namespace monitorservice {
namespace {

using test::excessOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr Instant second = 1000;
constexpr Instant minute = 60 * second;

class WebhookDelivery : public ::testing::Test
{
protected:
    void start(const std::vector<std::string>& options = {}, Instant clockError = 0)
    {
        std::vector<std::string> all{"--secret", "top secret", "--now",
                                     std::to_string((site.now() + clockError) / second)};
        all.insert(all.end(), options.begin(), options.end());
        receiver.start(all);
    }

    void send(const std::string& secret = "top secret")
    {
        const std::string url = "http://127.0.0.1:" + std::to_string(receiver.port()) + "/alarms?from=site";
        Dispatcher dispatcher(site.store(), Channel::Webhook,
                              std::make_unique<WebhookTransport>(WebhookSettings{url, secret}),
                              [this](const std::string& line) { log.push_back(line); });
        const std::atomic<bool> stop{false};
        while (dispatcher.sendNext(stop)) {
        }
    }

    const test::TemporaryFolder folder;
    test::AlarmedSite site{folder.file("data.db").string(), {"ada@site.example"}};
    test::TestServer receiver{std::string(SERVERS_FOLDER) + "webhook_receiver.py", folder.file("posts")};
    std::vector<std::string> log;
};

TEST_F(WebhookDelivery, PostIsSignedAndTellsOfThePoints)
{
    start();
    site.alarm("a1", {excessOf("Häuser", 2.25)});
    send();
    EXPECT_THAT(log, IsEmpty());
    ASSERT_THAT(receiver.kept(), SizeIs(1));
    const std::string post = receiver.kept().front();
    const std::size_t end = post.find('\n');
    EXPECT_EQ(post.substr(0, end), "/alarms?from=site application/json");
    simdjson::dom::parser parser;
    const simdjson::dom::element body = parser.parse(post.substr(end + 1));
    EXPECT_EQ(body["project"].get_string().value(), "Hafentunnel");
    EXPECT_EQ(body["alarm"]["_id"].get_string().value(), "a1");
    const simdjson::dom::element point = body["points"].at(0);
    EXPECT_EQ(point["pointName"].get_string().value(), "Häuser");
    EXPECT_EQ(point["alarmDetails"].at(0)["totalBeyound"].get_double().value(), 2.25);
}

TEST_F(WebhookDelivery, PostWithTheWrongSecretOrALongPastTimeIsNotBelieved)
{
    start();
    site.alarm("a1", {excessOf("S1", 1)});
    send("another secret");
    EXPECT_THAT(log, ElementsAre(HasSubstr("webhook, alarm a1: The requested URL returned error: 401")));
    start({}, 10 * minute);
    site.pass(10 * second);
    send();
    EXPECT_THAT(log, SizeIs(2));
    EXPECT_THAT(receiver.kept(), IsEmpty());
    start();
    site.pass(20 * second);
    send();
    EXPECT_THAT(receiver.kept(), SizeIs(1));
    EXPECT_THAT(log, SizeIs(2));
}

TEST_F(WebhookDelivery, OnlySuccessIsAccepted)
{
    site.alarm("a1", {excessOf("S1", 1)});
    send(); // nobody listens
    EXPECT_THAT(log.back(), HasSubstr("in 10 s"));
    Instant pause = 10 * second;
    for (const char* const status : {"500", "404", "302"}) {
        start({"--status", status});
        site.pass(pause);
        pause *= 2;
        send();
        EXPECT_THAT(log.back(), HasSubstr(status));
        EXPECT_THAT(log.back(), HasSubstr("in " + std::to_string(pause / second) + " s"));
    }
    EXPECT_THAT(receiver.kept(), SizeIs(3)); // each was posted once
    start();
    site.pass(pause);
    send();
    EXPECT_THAT(log, SizeIs(4));
    EXPECT_THAT(receiver.kept(), SizeIs(4));
    for (const std::string& post : receiver.kept()) {
        EXPECT_THAT(post, StartsWith("/alarms?from=site "));
    }
}

} // namespace
} // namespace monitorservice
