#pragma once

#include "store/sql/Lanes.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace monitorservice {

/// Turns to write among the threads of a process, in the order of coming: each waits for those before it that
/// it meets in a lane, whether they write already or wait themselves, so that nobody waits without end.
class Turns
{
    struct Entry
    {
        std::vector<Lane> lanes;
        std::condition_variable wake;
        bool hasTurn = false;
        std::list<Entry>::iterator place;
    };

    struct GiveBack
    {
        Turns* turns;
        void operator()(Entry* entry) const { turns->leave(*entry); }
    };

public:
    /// Given back when it goes; null: none was to be had.
    using Turn = std::unique_ptr<Entry, GiveBack>;

    /// At most so many have a turn at once.
    explicit Turns(std::size_t atOnce) : m_atOnce(atOnce) {}

    /// Null when it was not to be had within that time.
    Turn take(std::vector<Lane> lanes, std::chrono::milliseconds patience);

    /// How many wait at present.
    std::size_t waiting() const;

private:
    void leave(Entry& entry);
    void giveTurns();

    const std::size_t m_atOnce;
    mutable std::mutex m_guard; ///< of what follows
    std::list<Entry> m_entries; ///< those that write and those that wait, the first to come first
};

} // namespace monitorservice
