#pragma once

#include "SiteModel.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <string>

namespace monitorservice::test {

/// What became of the deliveries of one or several clients.
struct DeliveryTally
{
    std::size_t answered = 0;         ///< 2xx
    std::size_t refused = 0;          ///< 5xx
    std::size_t unansweredWhole = 0;  ///< no 2xx, but held
    std::size_t unansweredAbsent = 0; ///< no 2xx, and not held
    std::size_t missing = 0;          ///< answered 2xx, but not held

    DeliveryTally& operator+=(const DeliveryTally& other);
};

/// Sends deliveries of points of its own, one after the other: new samples, corrections of those sent before,
/// repeated deliveries, over several monitorings and depths. Knows what the service must hold of them.
class DeliveringClient
{
public:
    /// Sends a body; the status of the answer, nothing when there is none.
    using Send = std::function<std::optional<unsigned>(const std::string& body)>;

    DeliveringClient(const Site& site, std::size_t number, unsigned seed);

    /// Sends deliveries until one is not answered 2xx or `isStopped`.
    void run(const Send& send, const std::atomic<bool>& isStopped);
    /// Sends one delivery; its status.
    std::optional<unsigned> sendOne(const Send& send);

    /// Looks up among the deliveries held what has become of the one that was not answered 2xx. Afterwards
    /// the model is what must be held.
    void resolve(const std::set<std::string>& heldFiles);

    const SiteModel& model() const { return m_model; }
    const DeliveryTally& tally() const { return m_tally; }
    /// The names of its points, whatever the number of deliveries.
    static std::vector<std::string> pointNames(std::size_t number);

private:
    SentDelivery next();
    SentDelivery::Point nextPoint(const PointKey& key, std::size_t samples);
    int random(int least, int most);

    const Site* m_site;
    std::size_t m_number;
    std::mt19937 m_random;
    SiteModel m_model;
    DeliveryTally m_tally;
    int m_sent = 0;
    std::vector<SentDelivery> m_earlier;    ///< some that were answered, to be sent once more
    std::optional<SentDelivery> m_pending;  ///< sent, but not answered 2xx
    std::optional<SentDelivery> m_resolved; ///< was pending, and may be sent again
};

} // namespace monitorservice::test
