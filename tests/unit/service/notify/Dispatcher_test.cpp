#include "notify/Dispatcher.h"

#include "AlarmedSite.h"
#include "notify/Pacing.h"
#include "support/TestStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using test::excessOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr Instant second = 1000;
constexpr Instant minute = 60 * second;

// Keeps what it is given, and answers as it is told.
class RecordingTransport final : public Transport
{
public:
    struct Record
    {
        std::vector<std::string> sent; ///< "recipient: points"
        std::vector<std::string> ids;
        SendResult answer{SendResult::Outcome::Accepted};
        std::function<void()> whileSending = [] {
        };
    };

    explicit RecordingTransport(Record& record) : m_record(record) {}

    bool reaches(const std::string& recipient) const override
    {
        return recipient.empty() || recipient.find('@') != std::string::npos;
    }

    SendResult send(const Notification& notification, const std::atomic<bool>& /*stop*/) override
    {
        std::string line = notification.recipient + ':';
        for (const PointNews& point : notification.news.points) {
            line += ' ' + point.point;
        }
        m_record.sent.push_back(line);
        m_record.ids.push_back(notification.id);
        m_record.whileSending();
        return m_record.answer;
    }

private:
    Record& m_record;
};

class Dispatching : public ::testing::Test
{
protected:
    Dispatcher dispatcher(Channel channel = Channel::Mail) { return dispatcher(site.store(), channel); }
    Dispatcher dispatcher(Store& store, Channel channel)
    {
        return {store, channel, std::make_unique<RecordingTransport>(record),
                [this](const std::string& line) {
                    log.push_back(line);
                }};
    }

    /// What is sent now.
    std::vector<std::string> sent(Channel channel = Channel::Mail)
    {
        Dispatcher sending = dispatcher(channel);
        return sentBy(sending);
    }

    std::vector<std::string> sentBy(Dispatcher& sending)
    {
        record.sent.clear();
        while (sending.sendNext(stop)) {
        }
        return record.sent;
    }

    const test::TestStore data;
    test::AlarmedSite site{data.location(), {"ada@site"}};
    RecordingTransport::Record record;
    std::vector<std::string> log;
    const std::atomic<bool> stop{false};
};

TEST_F(Dispatching, FirstMessageGoesAtOnceToEachRecipientOnce)
{
    site.setRecipients({"ada@site", "bob@site"});
    site.alarm("a1", {excessOf("S1", 1)});
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1", "bob@site: S1"));
    EXPECT_THAT(sent(Channel::Webhook), ElementsAre(": S1"));
    site.pass(24 * 60 * minute);
    EXPECT_THAT(sent(), IsEmpty());
    EXPECT_THAT(sent(Channel::Webhook), IsEmpty());
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(Dispatching, NewsOfTenMinutesAreOneMessage)
{
    site.alarm("a1", {excessOf("S1", 1)});
    sent();
    for (int i = 2; i < 10; ++i) {
        site.pass(minute);
        std::vector<AlarmDetail> details{excessOf("S1", 1)};
        for (int j = 2; j <= i; ++j) {
            details.push_back(excessOf("S" + std::to_string(j), 1));
        }
        site.alarm("a1", details);
        EXPECT_THAT(sent(), IsEmpty());
    }
    site.pass(2 * minute - 1);
    EXPECT_THAT(sent(), IsEmpty());
    site.pass(1);
    EXPECT_THAT(sent(), ElementsAre("ada@site: S2 S3 S4 S5 S6 S7 S8 S9"));
}

TEST_F(Dispatching, NewsAfterAQuietTimeGoAtOnce)
{
    site.alarm("a1", {excessOf("S1", 1)});
    sent();
    site.pass(11 * minute);
    EXPECT_THAT(sent(), IsEmpty());
    site.pass(minute);
    site.alarm("a1", {excessOf("S1", 1), excessOf("S2", 1)});
    EXPECT_THAT(sent(), ElementsAre("ada@site: S2"));
}

TEST_F(Dispatching, WhatIsNotNewIsNotSent)
{
    site.alarm("a1", {excessOf("S1", 1)});
    sent();
    for (const double excess : {1.0, 1.5, 0.5, 1.9}) {
        site.pass(11 * minute);
        site.alarm("a1", {excessOf("S1", excess)});
        EXPECT_THAT(sent(), IsEmpty());
    }
    site.pass(11 * minute);
    site.alarm("a1", {excessOf("S1", 2)});
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
}

TEST_F(Dispatching, AlarmsArePacedEachForItself)
{
    site.alarm("a1", {excessOf("S1", 1)});
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
    site.alarm("a2", {excessOf("S1", 1)});
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
}

TEST_F(Dispatching, FailuresAreTriedAgainWithGrowingPausesAcrossRestarts)
{
    site.alarm("a1", {excessOf("S1", 1)});
    record.answer = {SendResult::Outcome::Failed, "refused"};
    for (const Instant pause : {10 * second, 20 * second, 40 * second, 80 * second}) {
        EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
        EXPECT_EQ(log.back(), "mail to ada@site, alarm a1: refused; tried again in " +
                                  std::to_string(pause / second) + " s");
        site.reopen();
        site.pass(pause - 1);
        EXPECT_THAT(sent(), IsEmpty());
        site.pass(1);
    }
    site.alarm("a1", {excessOf("S1", 1), excessOf("S2", 1)}); // what has come meanwhile is told as well
    record.answer = {SendResult::Outcome::Accepted};
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1 S2"));
    site.pass(11 * minute);
    EXPECT_THAT(sent(), IsEmpty());
    record.answer = {SendResult::Outcome::Failed, "refused"};
    site.alarm("a1", {excessOf("S3", 1)});
    sent();
    EXPECT_THAT(log.back(), HasSubstr("in 10 s")); // counted anew
}

TEST_F(Dispatching, NewsThatComeWhileSendingAreToldNext)
{
    site.alarm("a1", {excessOf("S1", 1)});
    record.whileSending = [this] {
        site.alarm("a1", {excessOf("S1", 1), excessOf("S2", 1)});
        record.whileSending = [] {
        };
    };
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
    site.pass(10 * minute);
    EXPECT_THAT(sent(), ElementsAre("ada@site: S2"));
}

TEST_F(Dispatching, NobodyElseSendsWhatIsOnItsWay)
{
    site.alarm("a1", {excessOf("S1", 1)});
    const std::unique_ptr<Store> store = site.openedAgain();
    Dispatcher ofThisService = dispatcher();
    Dispatcher ofAnotherService = dispatcher(*store, Channel::Mail);
    int looks = 0;
    record.whileSending = [&] {
        EXPECT_FALSE(ofThisService.sendNext(stop));
        EXPECT_FALSE(ofAnotherService.sendNext(stop));
        ++looks;
    };
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
    EXPECT_EQ(looks, 1);
    EXPECT_FALSE(ofAnotherService.sendNext(stop));
    EXPECT_EQ(record.sent.size(), 1U);
}

// A service that was killed while it sent.
TEST_F(Dispatching, WhatWasTakenAndNeverSettledIsSentAgain)
{
    site.alarm("a1", {excessOf("S1", 1)});
    record.whileSending = [] {
        throw std::runtime_error("killed");
    };
    EXPECT_THROW(sent(), std::runtime_error);
    record.whileSending = [] {
    };
    site.reopen();
    EXPECT_THAT(sent(), IsEmpty());
    site.pass(timeToSend);
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
    ASSERT_EQ(record.ids.size(), 2U);
    EXPECT_EQ(record.ids[0], record.ids[1]); // whoever got both can tell
}

TEST_F(Dispatching, WhatWasStoppedIsSentAtOnceByTheNextService)
{
    site.alarm("a1", {excessOf("S1", 1)});
    record.answer = {SendResult::Outcome::Stopped};
    Dispatcher stopping = dispatcher();
    EXPECT_TRUE(stopping.sendNext(stop));
    site.reopen();
    record.answer = {SendResult::Outcome::Accepted};
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(Dispatching, AlarmThatIsGoneIsNotTold)
{
    site.alarm("a1", {excessOf("S1", 1)});
    site.removeAlarm("a1");
    EXPECT_THAT(sent(), IsEmpty());
    site.alarm("a2", {excessOf("S1", 1)});
    record.whileSending = [this] {
        site.removeAlarm("a2");
    };
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
    site.pass(24 * 60 * minute);
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Dispatching, WhoWasTakenOffTheListIsNotTold)
{
    site.setRecipients({"ada@site", "bob@site"});
    site.alarm("a1", {excessOf("S1", 1)});
    site.setRecipients({"bob@site"});
    EXPECT_THAT(sent(), ElementsAre("bob@site: S1"));
}

TEST_F(Dispatching, EntriesThatAreNoAddressAreSkippedAndLoggedOnce)
{
    site.setRecipients({"site\r\noffice", "bob@site"});
    Dispatcher sending = dispatcher();
    for (const char* const alarm : {"a1", "a2"}) {
        site.alarm(alarm, {excessOf("S1", 1)});
        EXPECT_THAT(sentBy(sending), ElementsAre("bob@site: S1"));
    }
    EXPECT_THAT(log, ElementsAre("\"site  office\" is to be told of alarms, but is no mail address"));
}

TEST_F(Dispatching, DamagedNoticeDoesNotHoldUpTheOthers)
{
    site.setRecipients({"ada@site", "bob@site"});
    site.alarm("a1", {excessOf("S1", 1)});
    site.write([&](Session& session) {
        session.outbox().update({"a1", Channel::Mail, "ada@site", session.now(), 0, "[]"});
    });
    EXPECT_THAT(sent(), ElementsAre("bob@site: S1"));
    EXPECT_THAT(log, ElementsAre(HasSubstr("mail to ada@site, alarm a1: what was told of an alarm:")));
}

TEST_F(Dispatching, NoSessionIsOpenWhileSending)
{
    site.alarm("a1", {excessOf("S1", 1)});
    record.whileSending = [this] {
        site.write([](Session& session) { session.categories().add("Inclinometer"); });
    };
    EXPECT_THAT(sent(), ElementsAre("ada@site: S1"));
}

} // namespace
} // namespace monitorservice
