#include "notify/NoteNews.h"

#include "AlarmedSite.h"
#include "store/StoreError.h"
#include "support/TestStore.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using test::AlarmedSite;
using test::excessOf;

std::vector<std::string> dueOf(AlarmedSite& site, Channel channel)
{
    std::vector<std::string> recipients;
    site.write([&](Session& session) {
        while (std::optional<Notice> notice = session.outbox().nextDue(channel, session.now())) {
            recipients.push_back(notice->recipient);
            notice->due = std::nullopt;
            session.outbox().update(*notice);
        }
    });
    return recipients;
}

TEST(NoteNews, EveryRecipientAndTheWebhookHaveANotice)
{
    const test::TestStore data;
    AlarmedSite site(data.location(), {"b@example.org", "a@example.org", "site office"});
    site.alarm("a1", {excessOf("S1", 1)});
    EXPECT_EQ(dueOf(site, Channel::Mail),
              (std::vector<std::string>{"a@example.org", "b@example.org", "site office"}));
    EXPECT_EQ(dueOf(site, Channel::Webhook), std::vector<std::string>{""});
}

TEST(NoteNews, IsPartOfTheTransaction)
{
    const test::TestStore data;
    AlarmedSite site(data.location(), {"a@example.org"});
    site.alarm("a1", {excessOf("S1", 1)});
    dueOf(site, Channel::Mail);
    noteNews(*site.store().write(), "a1");
    EXPECT_TRUE(dueOf(site, Channel::Mail).empty());
}

TEST(NoteNews, AlarmMustExist)
{
    const test::TestStore data;
    AlarmedSite site(data.location(), {});
    EXPECT_THROW(noteNews(*site.store().write(), "a1"), StoreError);
}

} // namespace
} // namespace monitorservice
