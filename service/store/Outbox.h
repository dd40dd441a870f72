#pragma once

#include "store/Channel.h"
#include "store/StoreInterface.h"
#include "time/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// What one recipient is told of one alarm, over as many messages as it takes.
struct Notice
{
    std::string alarm;
    Channel channel = Channel::Mail;
    std::string recipient;      ///< as the monitoring's "alarmTo" has it; empty for the webhook
    std::optional<Instant> due; ///< when it is to be looked at; nothing: it rests until something is new
    std::int64_t attempts = 0;  ///< those that failed since the last message that was accepted
    std::string told = "{}";    ///< JSON object; what it says is the sender's matter
};

/// No notice waits for longer. One that seems to was written by a clock that has been set back since.
constexpr Instant longestWait = 60 * 60'000;

/// The notices: written in the transaction of what they tell of, sent afterwards. A notice goes with its
/// alarm. Every member may throw StoreError.
class Outbox : public StoreInterface
{
public:
    /// Something of the alarm is new: a notice that rests, or that there is none of yet, is due at the time
    /// of the session, and so is one that would wait for longer than the longest wait; any other one stays
    /// as it is, as it will be looked at anyway. Nothing is kept for a channel that the store was not opened
    /// for. StoreFailure::Conflict when there is no such alarm.
    virtual void note(const std::string& alarm, Channel channel, const std::string& recipient) = 0;
    /// The notice of the channel that has been due for longest at that time; ties go by alarm and recipient.
    virtual std::optional<Notice> nextDue(Channel channel, Instant now) const = 0;
    /// All notices of an alarm, those that rest included, in the order of channels and recipients.
    virtual std::vector<Notice> ofAlarm(const std::string& alarm) const = 0;
    /// Gives the notice of this alarm, channel and recipient the other members. Nothing is changed when there
    /// is none: its alarm is gone.
    virtual void update(const Notice& notice) = 0;
};

} // namespace monitorservice
