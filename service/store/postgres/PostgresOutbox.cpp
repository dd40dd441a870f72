#include "store/postgres/PostgresOutbox.h"

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

void PostgresOutbox::note(const std::string& alarm, Channel channel, const std::string& recipient)
{
    if (m_channels.count(channel) == 0) {
        return;
    }
    // -1 is no project: the reference to the alarm fails then.
    m_connection.post(
        "INSERT INTO outbox AS held (project_number, alarm, channel, recipient, due, attempts, told) VALUES "
        "(coalesce((SELECT project_number FROM alarms WHERE id = $1), -1), $1, $2, $3, $4, 0, $5) "
        "ON CONFLICT (project_number, alarm, channel, recipient) DO UPDATE SET due = excluded.due "
        "WHERE held.due IS NULL OR held.due > excluded.due + $6",
        alarm, nameOf(channel), recipient, m_now, Notice().told, longestWait);
}

std::optional<Notice> PostgresOutbox::nextDue(Channel channel, Instant now) const
{
    const PostgresResult found =
        m_connection.run("SELECT alarm, recipient, due, attempts, told FROM outbox WHERE channel = $1 "
                         "AND due <= $2 ORDER BY due, alarm, recipient LIMIT 1",
                         nameOf(channel), now);
    if (found.isEmpty()) {
        return std::nullopt;
    }
    return Notice{found.text(0, 0),    channel,         found.text(0, 1), found.optionalInteger(0, 2),
                  found.integer(0, 3), found.text(0, 4)};
}

std::vector<Notice> PostgresOutbox::ofAlarm(const std::string& alarm) const
{
    return m_connection
        .run("SELECT channel, recipient, due, attempts, told FROM outbox WHERE project_number = "
             "(SELECT project_number FROM alarms WHERE id = $1) AND alarm = $1 ORDER BY channel, recipient",
             alarm)
        .each([&alarm](const PostgresResult& found, int row) {
            return Notice{alarm,
                          channelOf(found.view(row, 0)),
                          found.text(row, 1),
                          found.optionalInteger(row, 2),
                          found.integer(row, 3),
                          found.text(row, 4)};
        });
}

void PostgresOutbox::update(const Notice& notice)
{
    m_connection.post("UPDATE outbox SET due = $1, attempts = $2, told = $3 WHERE alarm = $4 AND "
                      "channel = $5 AND recipient = $6",
                      notice.due, notice.attempts, notice.told, notice.alarm, nameOf(notice.channel),
                      notice.recipient);
}

} // namespace monitorservice
