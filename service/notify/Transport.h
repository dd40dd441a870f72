#pragma once

#include "notify/Notification.h"

#include <atomic>
#include <string>

namespace monitorservice {

/// What became of a message.
struct SendResult
{
    enum class Outcome
    {
        Accepted, ///< the server has said so
        Failed,   ///< refused, or it is not known what became of it
        Stopped   ///< given up because the service ends
    };

    Outcome outcome = Outcome::Failed;
    std::string reason = {}; ///< of a failure, for the operator
};

/// Takes messages to those who are to have them.
class Transport
{
public:
    Transport() = default;
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;
    virtual ~Transport() = default;

    /// Whether anything can be sent to an entry of "alarmTo".
    virtual bool reaches(const std::string& recipient) const = 0;
    /// Waits for the server's answer, but no more than a few seconds once `stop` is true.
    virtual SendResult send(const Notification& notification, const std::atomic<bool>& stop) = 0;
};

} // namespace monitorservice
