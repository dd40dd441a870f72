#pragma once

#include "NetworkExchange.h"

#include <memory>
#include <vector>

namespace rk {

/// Who is told of exchanges. An observer that is called may add and remove observers, itself too: one that
/// was added is first told of the next exchange, one that was removed is not called any more.
class ExchangeObservers
{
public:
    /// The observer stays as long as what is returned; null for an empty one.
    NetworkObservation add(NetworkObserver observer);
    bool isEmpty() const;
    /// Calls the observers in the order in which they were added.
    void tell(const NetworkExchange& exchange) const;

private:
    struct Entry
    {
        NetworkObserver observer;
        bool isEnded = false; ///< an observer that runs outlives its observation
    };

    static bool isOver(const std::weak_ptr<const Entry>& entry);

    std::vector<std::weak_ptr<const Entry>> m_entries; ///< each lives as long as its observation
};

} // namespace rk
