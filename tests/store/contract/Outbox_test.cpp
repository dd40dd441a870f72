#include "StoreContract.h"
#include "domain/Alarm.h"
#include "domain/Cell.h"
#include "domain/SubCategory.h"

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OutboxContract : public StoreContract
{
protected:
    OutboxContract()
    {
        store = open(withChannels({Channel::Mail, Channel::Webhook}));
        write([](Session& session) {
            session.projects().insert({"p1", "Pit", "UTC", 1});
            session.categories().add("Settlement");
            Cell cell;
            cell.id = "c1";
            cell.project = "p1";
            cell.category = "Settlement";
            cell.stamp = stamp();
            session.documents(DocumentKind::Cell).insert("p1", "c1", toDocument(cell));
            const SubCategory subCategory{"s1", "p1", "Level", "Settlement", ""};
            session.documents(DocumentKind::SubCategory).insert("p1", "s1", toDocument(subCategory));
            insertAlarm(session, "a1");
            insertAlarm(session, "a2");
        });
    }

    static Stamp stamp() { return Stamp::of({"Ada", "2015-12-21T00:00:00.000Z"}); }

    static void insertAlarm(Session& session, const std::string& id)
    {
        Alarm alarm;
        alarm.id = id;
        alarm.project = "p1";
        alarm.cell = "c1";
        alarm.subCategory = "s1";
        alarm.raisedAt = stamp().createdAt;
        alarm.stamp = stamp();
        session.documents(DocumentKind::Alarm).insert("p1", id, toDocument(alarm));
    }

    StoreOptions withChannels(const std::set<Channel>& channels)
    {
        StoreOptions options = creating();
        options.channels = channels;
        options.clock = [this] {
            return now;
        };
        return options;
    }

    void note(const std::string& alarm, Channel channel, const std::string& recipient)
    {
        write([&](Session& session) { session.outbox().note(alarm, channel, recipient); });
    }

    void update(const Notice& notice)
    {
        write([&notice](Session& session) { session.outbox().update(notice); });
    }

    /// All that is due, as "alarm recipient due attempts told"; they rest afterwards.
    std::vector<std::string> taken(Channel channel, Instant by)
    {
        std::vector<std::string> lines;
        write([&](Session& session) {
            while (std::optional<Notice> notice = session.outbox().nextDue(channel, by)) {
                lines.push_back(notice->alarm + ' ' + notice->recipient + ' ' + std::to_string(*notice->due) +
                                ' ' + std::to_string(notice->attempts) + ' ' + notice->told);
                notice->due = std::nullopt;
                session.outbox().update(*notice);
            }
        });
        return lines;
    }

    Instant now = 1000;
};

TEST_P(OutboxContract, NoticeIsDueWhenItIsMade)
{
    note("a1", Channel::Mail, "ada@site");
    EXPECT_FALSE(store->read()->outbox().nextDue(Channel::Mail, 999));
    const std::optional<Notice> notice = store->read()->outbox().nextDue(Channel::Mail, 1000);
    ASSERT_TRUE(notice);
    EXPECT_EQ(notice->alarm, "a1");
    EXPECT_EQ(notice->channel, Channel::Mail);
    EXPECT_EQ(notice->recipient, "ada@site");
    EXPECT_EQ(notice->due, std::optional<Instant>(1000));
    EXPECT_EQ(notice->attempts, 0);
    EXPECT_EQ(notice->told, "{}");
}

TEST_P(OutboxContract, NoticesOfAnotherChannelAreNotGiven)
{
    note("a1", Channel::Webhook, "");
    EXPECT_THAT(taken(Channel::Mail, 2000), IsEmpty());
    EXPECT_THAT(taken(Channel::Webhook, 2000), ElementsAre("a1  1000 0 {}"));
}

TEST_P(OutboxContract, LongestDueComesFirstThenAlarmAndRecipient)
{
    note("a2", Channel::Mail, "b@site");
    note("a2", Channel::Mail, "a@site");
    note("a1", Channel::Mail, "c@site");
    now = 500;
    note("a2", Channel::Mail, "z@site");
    EXPECT_THAT(taken(Channel::Mail, 1000), ElementsAre("a2 z@site 500 0 {}", "a1 c@site 1000 0 {}",
                                                        "a2 a@site 1000 0 {}", "a2 b@site 1000 0 {}"));
}

TEST_P(OutboxContract, NewsMakeARestingNoticeDueAndKeepWhatWasTold)
{
    note("a1", Channel::Mail, "ada@site");
    update({"a1", Channel::Mail, "ada@site", std::nullopt, 3, R"({"S1":[1,2]})"});
    EXPECT_FALSE(store->read()->outbox().nextDue(Channel::Mail, 1'000'000));
    now = 5000;
    note("a1", Channel::Mail, "ada@site");
    EXPECT_THAT(taken(Channel::Mail, 5000), ElementsAre(R"(a1 ada@site 5000 3 {"S1":[1,2]})"));
}

TEST_P(OutboxContract, NewsDoNotHastenANoticeThatWaits)
{
    note("a1", Channel::Mail, "ada@site");
    update({"a1", Channel::Mail, "ada@site", 9000, 1, "{}"});
    now = 5000;
    note("a1", Channel::Mail, "ada@site");
    EXPECT_THAT(taken(Channel::Mail, 8999), IsEmpty());
    EXPECT_THAT(taken(Channel::Mail, 9000), ElementsAre("a1 ada@site 9000 1 {}"));
}

TEST_P(OutboxContract, NoticeOfAClockThatWasAheadDoesNotWaitForIt)
{
    note("a1", Channel::Mail, "ada@site");
    update({"a1", Channel::Mail, "ada@site", now + longestWait + 2, 1, "{}"});
    now += 1;
    note("a1", Channel::Mail, "ada@site");
    EXPECT_THAT(taken(Channel::Mail, now), ElementsAre("a1 ada@site 1001 1 {}"));
    update({"a1", Channel::Mail, "ada@site", now + longestWait, 1, "{}"});
    note("a1", Channel::Mail, "ada@site");
    EXPECT_THAT(taken(Channel::Mail, now), IsEmpty());
}

TEST_P(OutboxContract, NoticeIsThereAfterReopeningUnlessItWasNotCommitted)
{
    note("a1", Channel::Mail, "ada@site");
    store->write()->outbox().note("a2", Channel::Mail, "ada@site");
    store.reset();
    store = open(withChannels({Channel::Mail}));
    EXPECT_THAT(taken(Channel::Mail, 1000), ElementsAre("a1 ada@site 1000 0 {}"));
}

TEST_P(OutboxContract, NothingIsKeptForAChannelThatTheStoreWasNotOpenedFor)
{
    store = open(withChannels({Channel::Webhook}));
    note("a1", Channel::Mail, "ada@site");
    note("a1", Channel::Webhook, "");
    EXPECT_THAT(taken(Channel::Mail, 1000), IsEmpty());
    EXPECT_THAT(taken(Channel::Webhook, 1000), ElementsAre("a1  1000 0 {}"));
}

TEST_P(OutboxContract, NoticesGoWithTheirAlarm)
{
    note("a1", Channel::Mail, "ada@site");
    note("a2", Channel::Mail, "ada@site");
    write([](Session& session) { session.documents(DocumentKind::Alarm).remove("p1", "a1"); });
    update({"a1", Channel::Mail, "ada@site", 1, 0, "{}"}); // whoever was sending it did not know
    EXPECT_THAT(taken(Channel::Mail, 1000), ElementsAre("a2 ada@site 1000 0 {}"));
    note("a2", Channel::Mail, "ada@site");
    write([](Session& session) { session.measurements().removeDelivered("c1", "s1"); });
    EXPECT_THAT(taken(Channel::Mail, 1000), IsEmpty());
}

TEST_P(OutboxContract, NoticeOfAnAlarmThatDoesNotExistIsAConflict)
{
    EXPECT_EQ(failureOf([this] { note("a9", Channel::Mail, "ada@site"); }), "conflict");
}

RK_EVERY_STORE(OutboxContract);

} // namespace
} // namespace monitorservice::test
