#include "DeliveringClient.h"

#include <algorithm>
#include <array>

namespace monitorservice::test {

namespace {

constexpr std::int64_t millisecondsPerHour = 60 * 60'000;
constexpr std::int64_t firstDay = 16'425; // 2014-12-21
constexpr std::size_t mostRepeatable = 16;

// Each client has these points in every target that they are for.
constexpr std::array<const char*, 3> depths{"1", "10", "2.5"};

} // namespace

DeliveryTally& DeliveryTally::operator+=(const DeliveryTally& other)
{
    answered += other.answered;
    refused += other.refused;
    unansweredWhole += other.unansweredWhole;
    unansweredAbsent += other.unansweredAbsent;
    missing += other.missing;
    return *this;
}

DeliveringClient::DeliveringClient(const Site& site, std::size_t number, unsigned seed)
    : m_site(&site), m_number(number), m_random(seed), m_model(site)
{
}

std::vector<std::string> DeliveringClient::pointNames(std::size_t number)
{
    const std::string prefix = "C" + std::to_string(number) + "-P";
    return {prefix + '0', prefix + '1', prefix + '2'};
}

void DeliveringClient::run(const Send& send, const std::atomic<bool>& isStopped)
{
    while (!isStopped && !m_pending) {
        sendOne(send);
    }
}

std::optional<unsigned> DeliveringClient::sendOne(const Send& send)
{
    m_pending = m_resolved && random(0, 1) == 0 ? *m_resolved : next();
    m_resolved.reset();
    const std::optional<unsigned> status = send(toJson(*m_pending, *m_site, random(0, 1) == 0));
    if (status && *status / 100 == 2) {
        ++m_tally.answered;
        m_model.apply(*m_pending);
        if (m_earlier.size() == mostRepeatable) {
            m_earlier.erase(m_earlier.begin() + random(0, mostRepeatable - 1));
        }
        m_earlier.push_back(std::move(*m_pending));
        m_pending.reset();
    } else if (status) {
        ++m_tally.refused;
    }
    return status;
}

void DeliveringClient::resolve(const std::set<std::string>& heldFiles)
{
    m_tally.missing = 0;
    for (const SiteModel::History& history : m_model.histories()) {
        m_tally.missing += heldFiles.count(history.fileId) == 0 ? 1 : 0;
    }
    if (!m_pending) {
        return;
    }
    // One that was pending before and is sent again may be held since then: it changes nothing now.
    if (heldFiles.count(m_pending->fileId) > 0) {
        ++m_tally.unansweredWhole;
        m_model.apply(*m_pending);
    } else {
        ++m_tally.unansweredAbsent;
    }
    m_resolved = std::move(m_pending);
    m_pending.reset();
}

SentDelivery DeliveringClient::next()
{
    ++m_sent;
    SentDelivery delivery;
    if (!m_earlier.empty() && random(0, 9) == 0) {
        delivery = m_earlier.at(static_cast<std::size_t>(random(0, static_cast<int>(m_earlier.size()) - 1)));
    } else {
        // Now and then one that does not fit into a few pages.
        const int most = random(0, 29) == 0 ? 300 : 12;
        for (std::size_t target = 0; target < m_site->targets.size(); ++target) {
            for (const std::string& name : pointNames(m_number)) {
                // The last target is the inclinometer's.
                const bool isDeep = target + 1 == m_site->targets.size();
                for (std::size_t i = 0; i < (isDeep ? depths.size() : 1); ++i) {
                    if (random(0, 3) == 0) {
                        const PointKey key{target, name, isDeep ? depths.at(i) : ""};
                        delivery.points.push_back(nextPoint(key, static_cast<std::size_t>(random(1, most))));
                    }
                }
            }
        }
        std::shuffle(delivery.points.begin(), delivery.points.end(), m_random);
    }
    delivery.fileId = "file-" + std::to_string(m_number) + '-' + std::to_string(m_sent);
    return delivery.points.empty() ? next() : delivery;
}

SentDelivery::Point DeliveringClient::nextPoint(const PointKey& key, std::size_t samples)
{
    SentDelivery::Point point;
    point.key = key;
    point.initialValue = random(0, 2) == 0 ? random(-4, 4) : 0;
    // Deliveries move on through the calendar, so that each may add days, and overlaps those before.
    const std::int64_t day = firstDay + m_sent / 6;
    for (std::size_t i = 0; i < samples; ++i) {
        const std::int64_t time = (day * 24 + random(-72, 24)) * millisecondsPerHour;
        const std::optional<int> offset =
            random(0, 1) == 0 ? std::nullopt : std::optional(Site::offsetMinutes);
        point.samples[{time, random(1, 2)}] = {random(-64, 64) / 8.0, random(0, 1) == 0 ? "A" : "", offset};
    }
    return point;
}

int DeliveringClient::random(int least, int most)
{
    return std::uniform_int_distribution<int>(least, most)(m_random);
}

} // namespace monitorservice::test
