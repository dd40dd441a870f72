#pragma once

#include "store/Channel.h"
#include "time/Instant.h"

#include <chrono>
#include <set>

namespace monitorservice {

/// How a store is opened.
struct StoreOptions
{
    /// Makes the data where there are none; otherwise that is StoreFailure::CannotOpen.
    bool createIfMissing = false;
    /// How long a write waits for writers of this and other processes.
    std::chrono::milliseconds patience{5000};
    Clock clock = systemNow;
    /// Opened by a service, where the store is for one service at a time: StoreFailure::CannotOpen when
    /// another one has it. Commands of administration do not ask for it.
    bool forService = false;
    /// Opened to go on with a copy; otherwise that a copy is unfinished is StoreFailure::CannotOpen.
    bool mayBeUnfinished = false;
    /// Those by which people are told. Of the others the outbox keeps nothing: whoever is told by mail from
    /// now on does not want the alarms of the year before.
    std::set<Channel> channels = {};
};

} // namespace monitorservice
