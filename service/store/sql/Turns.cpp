#include "store/sql/Turns.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace monitorservice {

Turns::Turn Turns::take(std::vector<Lane> lanes, std::chrono::milliseconds patience)
{
    std::unique_lock guard(m_guard);
    Entry& entry = m_entries.emplace_back();
    entry.lanes = std::move(lanes);
    entry.place = std::prev(m_entries.end());
    giveTurns();
    if (!entry.wake.wait_for(guard, patience, [&entry] { return entry.hasTurn; })) {
        m_entries.erase(entry.place);
        giveTurns();
        return {nullptr, GiveBack{this}};
    }
    return {&entry, GiveBack{this}};
}

std::size_t Turns::waiting() const
{
    const std::lock_guard guard(m_guard);
    return static_cast<std::size_t>(
        std::count_if(m_entries.begin(), m_entries.end(), [](const Entry& entry) { return !entry.hasTurn; }));
}

void Turns::leave(Entry& entry)
{
    const std::lock_guard guard(m_guard);
    m_entries.erase(entry.place);
    giveTurns();
}

// It is theirs on the way to them, so that nobody who comes now is faster.
void Turns::giveTurns()
{
    auto free = static_cast<std::ptrdiff_t>(m_atOnce) -
                std::count_if(m_entries.begin(), m_entries.end(), [](const Entry& e) { return e.hasTurn; });
    for (auto entry = m_entries.begin(); entry != m_entries.end() && free > 0; ++entry) {
        const bool waits = !entry->hasTurn;
        if (waits && std::none_of(m_entries.begin(), entry, [&entry](const Entry& before) {
                return meet(before.lanes, entry->lanes);
            })) {
            entry->hasTurn = true;
            entry->wake.notify_one();
            --free;
        }
    }
}

} // namespace monitorservice
