#pragma once

#include "store/Outbox.h"
#include "store/postgres/PostgresConnection.h"

#include <set>
#include <string>
#include <vector>

namespace monitorservice {

class PostgresOutbox final : public Outbox
{
public:
    /// `channels` outlives the outbox.
    PostgresOutbox(PostgresConnection& connection, Instant now, const std::set<Channel>& channels)
        : m_connection(connection), m_now(now), m_channels(channels)
    {
    }

    void note(const std::string& alarm, Channel channel, const std::string& recipient) override;
    std::optional<Notice> nextDue(Channel channel, Instant now) const override;
    std::vector<Notice> ofAlarm(const std::string& alarm) const override;
    void update(const Notice& notice) override;

private:
    PostgresConnection& m_connection;
    Instant m_now;
    const std::set<Channel>& m_channels;
};

} // namespace monitorservice
