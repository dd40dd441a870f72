#include "AlarmedSite.h"
#include "KeptMail.h"
#include "TestServers.h"
#include "service/admin/ServiceProcess.h"
#include "support/TemporaryFolder.h"
#include "wire/faults/TestCertificates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace monitorservice {
namespace {

namespace fs = std::filesystem;
using test::excessOf;
using test::ServiceProcess;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class NotifyingService : public ::testing::Test
{
protected:
    std::string file(const std::string& name, const std::string& content) const
    {
        const fs::path path = folder.file(name);
        std::ofstream(path, std::ios::binary) << content;
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
        return path.string();
    }

    std::vector<std::string> serving(const std::vector<std::string>& more) const
    {
        std::vector<std::string> arguments{"serve", "--data", data, "--listen", "127.0.0.1:0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    std::vector<std::string> mailing() const
    {
        return serving({"--smtp-url", "smtp://127.0.0.1:" + std::to_string(mails.port()), "--smtp-from",
                        "alarms@site.example"});
    }

    /// The message of a service that does not start.
    static std::string refusal(const std::vector<std::string>& arguments)
    {
        const test::CommandResult result = test::run(arguments);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.out, IsEmpty());
        return result.error;
    }

    const test::TemporaryFolder folder;
    const std::string data = folder.file("data.db").string();
    test::TestServer mails{std::string(SERVERS_FOLDER) + "mail_server.py", folder.file("mails")};
};

TEST_F(NotifyingService, TellsByMailAndWebhookWithTheFilesItIsGiven)
{
    const TestAuthority authority;
    const TestCertificate issued = authority.issue("IP:127.0.0.1");
    const std::string certificate =
        file("server.pem", (issued.certificate.toPem() + issued.key.toPem()).toStdString());
    test::AlarmedSite site(data, {"ada@site.example", "+43 1 234"});
    test::TestServer posts(std::string(SERVERS_FOLDER) + "webhook_receiver.py", folder.file("posts"));
    mails.start({"--login", "ada:right", "--certificate", certificate});
    posts.start({"--secret", "top secret", "--now", std::to_string(systemNow() / 1000)});
    ServiceProcess service(serving(
        {"--smtp-url", "smtps://127.0.0.1:" + std::to_string(mails.port()), "--smtp-from",
         "alarms@site.example", "--smtp-credentials-file", file("login", "ada:right\n"), "--alarm-webhook",
         "http://127.0.0.1:" + std::to_string(posts.port()) + "/", "--alarm-webhook-secret-file",
         file("secret", "top secret\n"), "--notify-ca-file", file("ca.pem", authority.pem().toStdString())}));
    EXPECT_THAT(service.readLine(), StartsWith("monitor-service listening"));
    site.alarm("a1", {excessOf("S1", 1)});
    EXPECT_TRUE(test::comesTrue([&] { return !mails.kept().empty() && !posts.kept().empty(); }));
    service.signal(SIGTERM);
    EXPECT_EQ(service.readErrors(),
              "monitor-service: \"+43 1 234\" is to be told of alarms, but is no mail address\n");
    EXPECT_EQ(service.wait(), 0);
    EXPECT_THAT(mails.kept(), SizeIs(1));
    EXPECT_THAT(posts.kept(), SizeIs(1));
}

TEST_F(NotifyingService, EndsSoonWhileAMailIsStuckAndSendsItWhenItIsBack)
{
    test::AlarmedSite site(data, {"ada@site.example"});
    site.alarm("a1", {excessOf("S1", 1)});
    mails.start({"--stall"});
    {
        ServiceProcess service(mailing());
        ASSERT_TRUE(test::comesTrue([this] { return mails.has("stalled"); }));
        const auto begin = std::chrono::steady_clock::now();
        service.signal(SIGTERM);
        EXPECT_EQ(service.wait(), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
        EXPECT_THAT(service.readErrors(), IsEmpty());
    }
    mails.start();
    ServiceProcess service(mailing());
    EXPECT_TRUE(test::comesTrue([this] { return !test::mailsOf(mails).empty(); }));
    service.signal(SIGTERM);
    EXPECT_EQ(service.wait(), 0);
    EXPECT_THAT(test::mailsOf(mails), SizeIs(1));
}

TEST_F(NotifyingService, DoesNotStartWithOptionsThatCannotWork)
{
    EXPECT_THAT(refusal(serving({"--smtp-url", "https://mail.example", "--smtp-from", "a@site.example"})),
                StartsWith("monitor-service: --smtp-url: \"https\" is neither smtp nor smtps"));
    EXPECT_THAT(refusal(serving({"--smtp-url", "smtps://mail.example"})), HasSubstr("needs --smtp-from"));
    const std::string login = file("login", "ada:hidden\n");
    fs::permissions(login, fs::perms::others_read, fs::perm_options::add);
    EXPECT_THAT(refusal(serving({"--smtp-url", "smtps://mail.example", "--smtp-from", "a@site.example",
                                 "--smtp-credentials-file", login})),
                AllOf(HasSubstr("--smtp-credentials-file: " + login + " can be read by every user"),
                      Not(HasSubstr("hidden"))));
    EXPECT_THAT(refusal(serving({"--alarm-webhook", "https://site.example"})),
                HasSubstr("needs --alarm-webhook-secret-file"));
    EXPECT_FALSE(fs::exists(data));
}

} // namespace
} // namespace monitorservice
