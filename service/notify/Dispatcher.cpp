#include "notify/Dispatcher.h"

#include "domain/Document.h"
#include "notify/MailEncoding.h"
#include "notify/Pacing.h"

#include <utility>

namespace monitorservice {

namespace {

std::string nameOf(const Notice& notice)
{
    const std::string to =
        notice.channel == Channel::Mail ? "mail to " + inOneLine(notice.recipient) : "webhook";
    return to + ", alarm " + notice.alarm;
}

} // namespace

Dispatcher::Dispatcher(Store& store, Channel channel, std::unique_ptr<Transport> transport, NotifyLog log)
    : m_store(store), m_channel(channel), m_transport(std::move(transport)), m_log(std::move(log))
{
}

bool Dispatcher::sendNext(const std::atomic<bool>& stop)
{
    // Asked of a session that only reads: most of the time nothing is due.
    if (!isAnyDue()) {
        return false;
    }
    const std::optional<Taken> taken = take();
    if (taken) {
        settle(taken->notice, taken->notification.news, m_transport->send(taken->notification, stop));
    }
    return true;
}

bool Dispatcher::isAnyDue() const
{
    const auto session = m_store.read();
    return session->outbox().nextDue(m_channel, session->now()).has_value();
}

// That nothing is new is found and written in one transaction: news that come meanwhile wait for it, and make
// the notice due again.
std::optional<Dispatcher::Taken> Dispatcher::take()
{
    const auto session = m_store.write();
    std::optional<Notice> due = session->outbox().nextDue(m_channel, session->now());
    if (!due) {
        return std::nullopt;
    }
    Notice notice = *due;
    std::optional<Notification> notification;
    try {
        notification = messageOf(*session, notice);
        notice.due = notification ? std::optional(session->now() + timeToSend) : std::nullopt;
    } catch (const DamagedDocument& error) {
        fail(notice, session->now(), error.what());
    }
    session->outbox().update(notice);
    session->commit();
    return notification ? std::optional(Taken{notice, std::move(*notification)}) : std::nullopt;
}

// Nothing when there is nothing to send; the notice knows then what is left of what was told.
std::optional<Notification> Dispatcher::messageOf(const Session& session, Notice& notice)
{
    if (!m_transport->reaches(notice.recipient)) {
        explainUnreachable(notice.recipient);
        return std::nullopt;
    }
    std::optional<Notification> notification = notificationOf(session, notice);
    if (notification && notification->news.points.empty()) {
        notice.told = toText(notification->news.told);
        notice.attempts = 0;
        return std::nullopt;
    }
    return notification;
}

void Dispatcher::settle(Notice notice, const News& news, const SendResult& result)
{
    const auto session = m_store.write();
    const Instant now = session->now();
    switch (result.outcome) {
    case SendResult::Outcome::Accepted:
        notice.told = toText(news.told);
        notice.attempts = 0;
        notice.due = now + timeBetweenMessages;
        break;
    case SendResult::Outcome::Failed:
        fail(notice, now, result.reason);
        break;
    case SendResult::Outcome::Stopped:
        notice.due = now; // the next service does it at once
        break;
    }
    session->outbox().update(notice);
    session->commit();
}

void Dispatcher::fail(Notice& notice, Instant now, const std::string& reason) const
{
    constexpr Instant millisecondsPerSecond = 1000;
    ++notice.attempts;
    const Instant pause = pauseAfter(notice.attempts);
    notice.due = now + pause;
    m_log(nameOf(notice) + ": " + reason + "; tried again in " +
          std::to_string(pause / millisecondsPerSecond) + " s");
}

void Dispatcher::explainUnreachable(const std::string& recipient)
{
    if (m_unreachable.insert(recipient).second) {
        m_log("\"" + inOneLine(recipient) + "\" is to be told of alarms, but is no mail address");
    }
}

} // namespace monitorservice
