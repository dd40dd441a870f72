#pragma once

#include "store/Outbox.h"
#include "store/sqlite/SqliteConnection.h"

#include <set>
#include <string>
#include <vector>

namespace monitorservice {

class SqliteOutbox final : public Outbox
{
public:
    /// `channels` outlives the outbox.
    SqliteOutbox(SqliteConnection& connection, Instant now, const std::set<Channel>& channels)
        : m_connection(connection), m_now(now), m_channels(channels)
    {
    }

    void note(const std::string& alarm, Channel channel, const std::string& recipient) override;
    std::optional<Notice> nextDue(Channel channel, Instant now) const override;
    std::vector<Notice> ofAlarm(const std::string& alarm) const override;
    void update(const Notice& notice) override;

private:
    SqliteConnection& m_connection;
    Instant m_now;
    const std::set<Channel>& m_channels;
};

} // namespace monitorservice
