#pragma once

#include "store/Claim.h"
#include "store/Expectations.h"
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
    virtual std::unique_ptr<const Session> read(const Expectations& expected) = 0;
    std::unique_ptr<const Session> read() { return read(Expectations()); }
    /// A session that may write what it claims, and add to the audit trail. It waits for those whose claims
    /// have a target in common with its own, in the order of asking, no longer than the patience of the
    /// store, then StoreFailure::Busy; others may write beside it, or not, as the store can. So what it reads
    /// stays as it is until it ends, but for what is delivered for targets that it has not claimed. A thread
    /// has one at a time.
    virtual std::unique_ptr<Session> write(const Claim& claim, const Expectations& expected) = 0;
    std::unique_ptr<Session> write(const Claim& claim) { return write(claim, Expectations()); }
    /// A session that has everything to itself.
    std::unique_ptr<Session> write() { return write(Claim()); }
    /// Throws StoreError when a service on this store had better get no requests: the data cannot be read,
    /// lie on a server that takes no writes, or were brought to another version since the store was opened.
    virtual void checkReady() = 0;
};

} // namespace monitorservice
