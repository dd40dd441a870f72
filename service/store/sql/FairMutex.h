#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>

namespace monitorservice {

/// A mutex that is given to those who wait in the order in which they came; std::timed_mutex goes to whoever
/// is fastest, so that somebody may wait without end. For std::unique_lock with a time to wait.
class FairMutex
{
public:
    FairMutex() = default;
    FairMutex(const FairMutex&) = delete;
    FairMutex& operator=(const FairMutex&) = delete;
    ~FairMutex() = default;

    /// False when it was not to be had within that time.
    bool try_lock_for(std::chrono::milliseconds patience);
    void unlock();

    /// How many wait at present.
    std::size_t waiting() const;

private:
    struct Waiter
    {
        std::condition_variable wake;
        bool isOwner = false;
    };

    mutable std::mutex m_guard; ///< of what follows
    bool m_isLocked = false;
    std::list<Waiter*> m_waiters; ///< the longest waiting first
};

} // namespace monitorservice
