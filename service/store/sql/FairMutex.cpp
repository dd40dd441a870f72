#include "store/sql/FairMutex.h"

namespace monitorservice {

bool FairMutex::try_lock_for(std::chrono::milliseconds patience)
{
    std::unique_lock guard(m_guard);
    if (!m_isLocked) {
        m_isLocked = true;
        return true;
    }
    Waiter waiter;
    const auto place = m_waiters.insert(m_waiters.end(), &waiter);
    if (waiter.wake.wait_for(guard, patience, [&waiter] { return waiter.isOwner; })) {
        return true;
    }
    m_waiters.erase(place);
    return false;
}

void FairMutex::unlock()
{
    const std::lock_guard guard(m_guard);
    if (m_waiters.empty()) {
        m_isLocked = false;
        return;
    }
    // It stays locked on the way to the next one, so that nobody who comes now is faster.
    Waiter& next = *m_waiters.front();
    m_waiters.pop_front();
    next.isOwner = true;
    next.wake.notify_one();
}

std::size_t FairMutex::waiting() const
{
    const std::lock_guard guard(m_guard);
    return m_waiters.size();
}

} // namespace monitorservice
