#pragma once

#include "store/Session.h"
#include "store/StoreError.h"
#include "store/StoreInterface.h"

#include <memory>

namespace monitorservice {

/// All that the service keeps. Safe to use from several threads, and the data from several processes, at
/// once.
class Store : public StoreInterface
{
public:
    /// A session that only reads: it sees what was committed, neither waits for writers nor holds them up,
    /// and is not changed by them. There may be any number.
    virtual std::unique_ptr<const Session> read() = 0;
    /// A session that may write. What it reads stays as it is until it ends: whoever would change that waits
    /// for the turn, in the order of asking, no longer than the patience of the store, then
    /// StoreFailure::Busy. A thread has one at a time.
    virtual std::unique_ptr<Session> write() = 0;
    /// Throws StoreError when a service on this store had better get no requests: the data cannot be read,
    /// lie on a server that takes no writes, or were brought to another version since the store was opened.
    virtual void checkReady() = 0;
};

} // namespace monitorservice
