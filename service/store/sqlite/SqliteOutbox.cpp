#include "store/sqlite/SqliteOutbox.h"

namespace monitorservice {

namespace {

std::string nameOf(Channel channel)
{
    return channel == Channel::Mail ? "mail" : "webhook";
}

Channel channelOf(std::string_view name)
{
    return name == nameOf(Channel::Mail) ? Channel::Mail : Channel::Webhook;
}

} // namespace

void SqliteOutbox::note(const std::string& alarm, Channel channel, const std::string& recipient)
{
    if (m_channels.count(channel) == 0) {
        return;
    }
    m_connection
        .statement("INSERT INTO outbox AS held (alarm, channel, recipient, due, attempts, told) VALUES "
                   "(?, ?, ?, ?, 0, ?) ON CONFLICT (alarm, channel, recipient) DO UPDATE SET "
                   "due = excluded.due WHERE held.due IS NULL OR held.due > excluded.due + ?")
        .bind(alarm, nameOf(channel), recipient, m_now, Notice().told, longestWait)
        .run();
}

std::optional<Notice> SqliteOutbox::nextDue(Channel channel, Instant now) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT alarm, recipient, due, attempts, told FROM outbox WHERE channel = ? "
                               "AND due <= ? ORDER BY due, alarm, recipient LIMIT 1");
    statement.bind(nameOf(channel), now);
    if (!statement.step()) {
        return std::nullopt;
    }
    return Notice{statement.text(0),    channel,          statement.text(1), statement.optionalInteger(2),
                  statement.integer(3), statement.text(4)};
}

std::vector<Notice> SqliteOutbox::ofAlarm(const std::string& alarm) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT channel, recipient, due, attempts, told FROM outbox WHERE alarm = ? "
                               "ORDER BY channel, recipient");
    statement.bind(alarm);
    std::vector<Notice> notices;
    while (statement.step()) {
        notices.push_back({alarm, channelOf(statement.view(0)), statement.text(1),
                           statement.optionalInteger(2), statement.integer(3), statement.text(4)});
    }
    return notices;
}

void SqliteOutbox::update(const Notice& notice)
{
    m_connection
        .statement("UPDATE outbox SET due = ?, attempts = ?, told = ? WHERE alarm = ? AND channel = ? AND "
                   "recipient = ?")
        .bind(notice.due, notice.attempts, notice.told, notice.alarm, nameOf(notice.channel),
              notice.recipient)
        .run();
}

} // namespace monitorservice
