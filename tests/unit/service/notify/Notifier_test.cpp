#include "notify/Notifier.h"

#include "AlarmedSite.h"
#include "store/StoreError.h"
#include "support/TestStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Lines that come from another thread.
class Lines
{
public:
    void add(const std::string& line)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_lines.push_back(line);
        }
        m_added.notify_all();
    }

    // Waits for so many; fewer after a time that only a fault takes.
    std::vector<std::string> first(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_added.wait_for(lock, std::chrono::minutes(1), [&] { return m_lines.size() >= count; });
        return m_lines;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_added;
    std::vector<std::string> m_lines;
};

class NotingTransport final : public Transport
{
public:
    explicit NotingTransport(Lines& sent, bool isStuck = false) : m_sent(sent), m_isStuck(isStuck) {}

    bool reaches(const std::string& /*recipient*/) const override { return true; }

    SendResult send(const Notification& notification, const std::atomic<bool>& stop) override
    {
        m_sent.add(notification.recipient + ' ' + notification.alarm.id);
        while (m_isStuck && !stop) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return {m_isStuck ? SendResult::Outcome::Stopped : SendResult::Outcome::Accepted};
    }

private:
    Lines& m_sent;
    bool m_isStuck;
};

class BrokenStore final : public Store
{
public:
    std::unique_ptr<const Session> read(const Expectations& /*expected*/) override
    {
        throw StoreError(StoreFailure::InputOutput, "the disk is gone");
    }
    std::unique_ptr<Session> write(const Claim& /*claim*/, const Expectations& /*expected*/) override
    {
        throw StoreError(StoreFailure::InputOutput, "the disk is gone");
    }
    void checkReady() override { throw StoreError(StoreFailure::InputOutput, "the disk is gone"); }
};

class Notifying : public ::testing::Test
{
protected:
    Dispatcher dispatcher(Store& store, bool isStuck = false)
    {
        return {store, Channel::Mail, std::make_unique<NotingTransport>(sent, isStuck), toLog()};
    }
    NotifyLog toLog()
    {
        return [this](const std::string& line) {
            log.add(line);
        };
    }

    const test::TestStore data;
    test::AlarmedSite site{data.location(), {"ada@site"}};
    Lines sent;
    Lines log;
};

TEST_F(Notifying, SendsWhatWasThereAndWhatComes)
{
    site.alarm("a1", {test::excessOf("S1", 1)});
    const Notifier notifier(dispatcher(site.store()), toLog());
    EXPECT_THAT(sent.first(1), ElementsAre("ada@site a1"));
    site.alarm("a2", {test::excessOf("S1", 1)});
    EXPECT_THAT(sent.first(2), ElementsAre("ada@site a1", "ada@site a2"));
    EXPECT_THAT(log.first(0), IsEmpty());
}

TEST_F(Notifying, EndsWhileAMessageIsStuckWhichTheNextOneSends)
{
    site.alarm("a1", {test::excessOf("S1", 1)});
    {
        const Notifier notifier(dispatcher(site.store(), true), toLog());
        sent.first(1);
    }
    const Notifier notifier(dispatcher(site.store()), toLog());
    EXPECT_THAT(sent.first(2), ElementsAre("ada@site a1", "ada@site a1"));
}

TEST_F(Notifying, StoreThatFailsIsLoggedAndEndsNothing)
{
    BrokenStore broken;
    const Notifier notifier(dispatcher(broken), toLog());
    EXPECT_THAT(log.first(1), ElementsAre("notifications: the disk is gone"));
}

} // namespace
} // namespace monitorservice
