#pragma once

#include "notify/Transport.h"
#include "store/Store.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace monitorservice {

/// Takes a line for the operator.
using NotifyLog = std::function<void(const std::string& line)>;

/// Sends the notices of one channel. A notice is taken for a time before its message is sent, so that no
/// other service of the same store sends it as well, and is told only when the server has accepted it: what
/// happens in between may send a message twice, and loses none. No session is open while a message is on its
/// way.
class Dispatcher
{
public:
    /// The store outlives the dispatcher.
    Dispatcher(Store& store, Channel channel, std::unique_ptr<Transport> transport, NotifyLog log);

    /// Deals with the notice that has been due for longest; false when there is none. Throws StoreError.
    bool sendNext(const std::atomic<bool>& stop);

private:
    struct Taken
    {
        Notice notice;
        Notification notification;
    };

    bool isAnyDue() const;
    std::optional<Taken> take();
    std::optional<Notification> messageOf(const Session& session, Notice& notice);
    void settle(Notice notice, const News& news, const SendResult& result);
    void fail(Notice& notice, Instant now, const std::string& reason) const;
    void explainUnreachable(const std::string& recipient);

    Store& m_store;
    Channel m_channel;
    std::unique_ptr<Transport> m_transport;
    NotifyLog m_log;
    std::set<std::string> m_unreachable; ///< of which the operator was told
};

} // namespace monitorservice
