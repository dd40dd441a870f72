#include "AlarmedSite.h"
#include "KeptMail.h"
#include "TestServers.h"
#include "notify/Dispatcher.h"
#include "notify/SmtpTransport.h"
#include "support/TemporaryFolder.h"
#include "wire/faults/TestCertificates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <map>

namespace monitorservice {
namespace {

using test::excessOf;
using test::KeptMail;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr Instant second = 1000;
constexpr Instant minute = 60 * second;

class MailDelivery : public ::testing::Test
{
protected:
    SmtpSettings settings(const std::string& scheme = "smtp") const
    {
        SmtpSettings settings;
        settings.url = scheme + "://127.0.0.1:" + std::to_string(server.port());
        settings.from = "alarms@site.example";
        settings.isLocal = true;
        return settings;
    }

    /// Sends all that is due now.
    void send(const SmtpSettings& by)
    {
        Dispatcher dispatcher(site.store(), Channel::Mail, std::make_unique<SmtpTransport>(by),
                              [this](const std::string& line) { log.push_back(line); });
        const std::atomic<bool> stop{false};
        while (dispatcher.sendNext(stop)) {
        }
    }
    void send() { send(settings()); }

    /// A certificate of 127.0.0.1 with its key; what trusts it is written beside it.
    std::string certificate() const
    {
        const TestAuthority authority;
        const TestCertificate issued = authority.issue("IP:127.0.0.1");
        std::ofstream(caFile()) << authority.pem().toStdString();
        const std::string file = folder.file("server.pem").string();
        std::ofstream(file) << issued.certificate.toPem().toStdString() << issued.key.toPem().toStdString();
        return file;
    }
    std::string caFile() const { return folder.file("ca.pem").string(); }

    std::vector<KeptMail> mails() const { return test::mailsOf(server); }

    const test::TemporaryFolder folder;
    test::AlarmedSite site{folder.file("data.db").string(), {"ada@site.example"}};
    test::TestServer server{std::string(SERVERS_FOLDER) + "mail_server.py", folder.file("mails")};
    std::vector<std::string> log;
};

TEST_F(MailDelivery, MailIsReadAsItWasMeant)
{
    server.start();
    AlarmDetail detail = excessOf("Häuser – Süd", 2.25);
    detail.unit = "µm";
    detail.groupName = ".";
    site.alarm("a1", {detail, excessOf("S2", 1)});
    send();
    ASSERT_THAT(mails(), SizeIs(1)) << ::testing::PrintToString(log);
    const KeptMail mail = mails().front();
    EXPECT_THAT(mail.envelope, ElementsAre("alarms@site.example", "ada@site.example"));
    EXPECT_EQ(mail.from, "alarms@site.example");
    EXPECT_EQ(mail.to, "ada@site.example");
    EXPECT_EQ(mail.subject, "Alarm: Turm 1, Bodenhöhe: 2 points beyond their limits");
    EXPECT_THAT(mail.id, HasSubstr("@site.example>"));
    EXPECT_EQ(mail.time, site.now() / second);
    EXPECT_THAT(mail.body, AllOf(HasSubstr("Project: Hafentunnel\nMonitoring: Turm 1, Bodenhöhe\n"),
                                 HasSubstr("Häuser – Süd, new\n"), HasSubstr("2.25 µm beyond\n")));
    EXPECT_THAT(mail.defects, IsEmpty());
    EXPECT_TRUE(mail.isAscii);
    EXPECT_THAT(log, IsEmpty());
}

// An hour in which something new comes each minute, and the server is away most of the time.
TEST_F(MailDelivery, NothingIsLostOrSentTooOftenByAServerThatComesAndGoes)
{
    site.setRecipients({"ada@site.example", "bob@site.example"});
    std::vector<AlarmDetail> details;
    for (int i = 0; i < 60; ++i) {
        if (i % 15 == 0) {
            server.kill();
        } else if (i % 15 == 9) {
            server.start();
        }
        details.push_back(excessOf("S" + std::to_string(i), 1));
        site.alarm("a1", details);
        site.pass(minute);
        send();
    }
    for (int i = 0; i < 60; ++i) {
        site.pass(minute);
        send();
    }
    EXPECT_FALSE(log.empty());
    std::map<std::string, std::multiset<std::string>> told;
    std::map<std::string, std::int64_t> last;
    for (const KeptMail& mail : mails()) {
        const std::set<std::string> points = mail.points();
        EXPECT_FALSE(points.empty());
        told[mail.to].insert(points.begin(), points.end());
        if (last.count(mail.to) > 0) {
            EXPECT_GE(mail.time - last[mail.to], 600);
        }
        last[mail.to] = mail.time;
    }
    std::multiset<std::string> all;
    for (const AlarmDetail& detail : details) {
        all.insert(detail.point);
    }
    EXPECT_THAT(told, ElementsAre(::testing::Pair("ada@site.example", all),
                                  ::testing::Pair("bob@site.example", all)));
}

TEST_F(MailDelivery, MailWhoseAnswerIsLostIsSentAgainAsTheSame)
{
    server.start({"--die"});
    site.alarm("a1", {excessOf("S1", 1)});
    send();
    server.wait();
    EXPECT_THAT(log, SizeIs(1));
    server.start();
    site.pass(10 * second);
    send();
    ASSERT_THAT(mails(), SizeIs(2));
    EXPECT_EQ(mails()[0].id, mails()[1].id);
    site.pass(24 * 60 * minute);
    send();
    EXPECT_THAT(mails(), SizeIs(2));
}

TEST_F(MailDelivery, BadCredentialsAreAFailureThatIsTriedAgain)
{
    server.start({"--login", "ada:right"});
    site.alarm("a1", {excessOf("S1", 1)});
    SmtpSettings login = settings();
    login.user = "ada";
    login.password = "wrong";
    send(login);
    EXPECT_THAT(
        log, ElementsAre(AllOf(HasSubstr("mail to ada@site.example, alarm a1: "), HasSubstr("Login denied"),
                               HasSubstr("; tried again in 10 s"), ::testing::Not(HasSubstr("wrong")))));
    EXPECT_THAT(mails(), IsEmpty());
    login.password = "right";
    site.pass(10 * second);
    send(login);
    EXPECT_THAT(mails(), SizeIs(1));
}

TEST_F(MailDelivery, CertificateMustBeTrusted)
{
    server.start({"--certificate", certificate()});
    site.alarm("a1", {excessOf("S1", 1)});
    SmtpSettings trusting = settings("smtps");
    send(trusting);
    EXPECT_THAT(log, ElementsAre(HasSubstr("SSL certificate problem")));
    EXPECT_THAT(mails(), IsEmpty());
    trusting.caFile = caFile();
    site.pass(10 * second);
    send(trusting);
    EXPECT_THAT(mails(), SizeIs(1));
    // By its name as well.
    trusting.url = "smtps://localhost:" + std::to_string(server.port());
    site.alarm("a2", {excessOf("S1", 1)});
    send(trusting);
    EXPECT_THAT(log.back(), HasSubstr("localhost"));
    EXPECT_THAT(mails(), SizeIs(1));
}

TEST_F(MailDelivery, PasswordIsSentUnderTlsAlone)
{
    SmtpSettings login = settings();
    login.user = "ada";
    login.password = "right";
    login.isLocal = false;
    login.caFile = caFile();
    const std::string file = certificate();
    server.start({"--login", "ada:right"});
    site.alarm("a1", {excessOf("S1", 1)});
    send(login);
    EXPECT_THAT(log, ElementsAre(HasSubstr("STARTTLS")));
    EXPECT_THAT(mails(), IsEmpty());
    server.start({"--login", "ada:right", "--certificate", file, "--starttls"});
    site.pass(10 * second);
    send(login);
    EXPECT_THAT(mails(), SizeIs(1)) << ::testing::PrintToString(log);
}

TEST_F(MailDelivery, TlsThatIsOfferedIsTakenButNotOnThisMachine)
{
    server.start({"--certificate", certificate(), "--starttls"});
    SmtpSettings plain = settings();
    plain.isLocal = false;
    site.alarm("a1", {excessOf("S1", 1)});
    send(plain);
    EXPECT_THAT(log, ElementsAre(HasSubstr("SSL certificate problem")));
    EXPECT_THAT(mails(), IsEmpty());
    plain.isLocal = true;
    site.pass(10 * second);
    send(plain);
    EXPECT_THAT(mails(), SizeIs(1));
}

// Taken for refused, the mail would come again and again.
TEST_F(MailDelivery, MailThatWasAcceptedIsToldWhateverComesAfterwards)
{
    server.start({"--mute"});
    site.alarm("a1", {excessOf("S1", 1)});
    SmtpSettings impatient = settings();
    impatient.answerSeconds = 1;
    send(impatient);
    EXPECT_THAT(log, IsEmpty());
    site.pass(24 * 60 * minute);
    send();
    EXPECT_THAT(mails(), SizeIs(1));
}

TEST_F(MailDelivery, StopsWhileTheServerIsSilent)
{
    server.start({"--stall"});
    site.alarm("a1", {excessOf("S1", 1)});
    Dispatcher dispatcher(site.store(), Channel::Mail, std::make_unique<SmtpTransport>(settings()),
                          [this](const std::string& line) { log.push_back(line); });
    std::atomic<bool> stop{false};
    auto sending = std::async(std::launch::async, [&] { return dispatcher.sendNext(stop); });
    ASSERT_TRUE(test::comesTrue([this] { return server.has("stalled"); }));
    stop = true;
    EXPECT_EQ(sending.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_TRUE(sending.get());
    EXPECT_THAT(log, IsEmpty());
    server.start();
    send();
    EXPECT_THAT(mails(), SizeIs(1));
}

} // namespace
} // namespace monitorservice
