#pragma once

#include "SiteModel.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>

namespace monitorservice::test {

/// What became of the deliveries of one or several clients.
struct DeliveryTally
{
    std::size_t answered = 0;         ///< 2xx
    std::size_t withdrawn = 0;        ///< of these, requests that took something away again
    std::size_t refused = 0;          ///< 5xx
    std::size_t unansweredWhole = 0;  ///< no 2xx, but held
    std::size_t unansweredAbsent = 0; ///< no 2xx, and not held
    std::size_t missing = 0;          ///< answered 2xx, but not held

    DeliveryTally& operator+=(const DeliveryTally& other);
};

/// What the service answered.
struct ServiceAnswer
{
    unsigned status = 0;
    std::string body;
};

/// Sends deliveries of points of its own, one after the other: new samples, corrections of those sent before,
/// repeated deliveries, for one monitoring or several, over depths; now and then it takes its latest delivery
/// back, or deletes samples or points. Knows what the service must hold of them.
class DeliveringClient
{
public:
    /// Sends a request for a path below the service's; nothing when there is no answer.
    using Send = std::function<std::optional<ServiceAnswer>(
        const std::string& method, const std::string& path, const std::string& body)>;
    /// Whether all that a model says is held.
    using IsHeld = std::function<bool(const SiteModel& model)>;

    DeliveringClient(const Site& site, std::size_t number, unsigned seed);

    /// Sends requests until one is not answered 2xx or `isStopped`.
    void run(const Send& send, const std::atomic<bool>& isStopped);
    /// Sends one delivery, or takes something back; the status.
    std::optional<unsigned> sendOne(const Send& send);

    /// Finds out what has become of the request that was not answered 2xx: of a delivery by the deliveries
    /// held, of the others by whether all is held that was before. Afterwards the model is what must be held.
    void resolve(const std::set<std::string>& heldFiles, const IsHeld& isHeld);

    const SiteModel& model() const { return m_model; }
    const DeliveryTally& tally() const { return m_tally; }
    /// The names of its points, whatever the number of deliveries.
    static std::vector<std::string> pointNames(std::size_t number);

private:
    // What the service said of the latest delivery, so that it can be taken back.
    struct Latest
    {
        std::string fileId;
        std::map<std::size_t, std::string> histories; // of each target
        SiteModel before;
    };

    // A request that takes something away, and what is held once it has.
    struct Removal
    {
        std::string path;
        std::set<std::size_t> targets;
        SiteModel after;
    };

    std::optional<unsigned> deliver(const Send& send);
    std::optional<unsigned> remove(const Send& send, Removal removal);
    std::optional<Removal> nextRemoval();
    Removal undo();
    void noteAnswer(const std::string& body, SiteModel before);
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
    std::optional<SiteModel> m_removed;     ///< what is held if a removal not answered 2xx was carried out
    std::optional<SentDelivery> m_resolved; ///< was pending, and may be sent again
    std::optional<Latest> m_latest;
    std::map<PointKey, std::string> m_ids; ///< of points, as far as they were answered
};

} // namespace monitorservice::test
