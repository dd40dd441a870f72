#include "ExchangeObservers.h"

#include <algorithm>
#include <utility>

namespace rk {

bool ExchangeObservers::isOver(const std::weak_ptr<const Entry>& entry)
{
    const std::shared_ptr<const Entry> held = entry.lock();
    return !held || held->isEnded;
}

NetworkObservation ExchangeObservers::add(NetworkObserver observer)
{
    if (!observer) {
        return nullptr;
    }
    m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), isOver), m_entries.end());
    const auto entry = std::make_shared<Entry>();
    entry->observer = std::move(observer);
    m_entries.emplace_back(entry);
    return {entry.get(), [entry](const Entry*) {
                entry->isEnded = true;
            }};
}

bool ExchangeObservers::isEmpty() const
{
    return std::all_of(m_entries.begin(), m_entries.end(), isOver);
}

void ExchangeObservers::tell(const NetworkExchange& exchange) const
{
    const auto entries = m_entries; // those that are called may change the list
    for (const auto& entry : entries) {
        const std::shared_ptr<const Entry> held = entry.lock();
        if (held && !held->isEnded) {
            held->observer(exchange);
        }
    }
}

} // namespace rk
