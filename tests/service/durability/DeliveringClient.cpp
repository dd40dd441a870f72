#include "DeliveringClient.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace monitorservice::test {

namespace {

constexpr std::int64_t millisecondsPerHour = 60 * 60'000;
constexpr std::int64_t firstDay = 16'425; // 2014-12-21
constexpr std::size_t mostRepeatable = 16;

// Each client has these points in every target that they are for.
constexpr std::array<const char*, 3> depthNames{"1", "10", "2.5"};

} // namespace

DeliveryTally& DeliveryTally::operator+=(const DeliveryTally& other)
{
    answered += other.answered;
    withdrawn += other.withdrawn;
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
    while (!isStopped && !m_pending && !m_removed) {
        sendOne(send);
    }
}

std::optional<unsigned> DeliveringClient::sendOne(const Send& send)
{
    if (random(0, 4) == 0) {
        if (std::optional<Removal> removal = nextRemoval()) {
            const std::optional<unsigned> status = remove(send, *std::move(removal));
            if (status != 409U) {
                return status;
            }
        }
    }
    return deliver(send);
}

std::optional<unsigned> DeliveringClient::deliver(const Send& send)
{
    m_pending = m_resolved && random(0, 1) == 0 ? *m_resolved : next();
    m_resolved.reset();
    m_latest.reset();
    const std::optional<ServiceAnswer> answer =
        send("POST", "pointLocations", toJson(*m_pending, *m_site, random(0, 1) == 0));
    if (!answer) {
        return std::nullopt;
    }
    if (answer->status / 100 == 2) {
        ++m_tally.answered;
        SiteModel before = m_model;
        m_model.apply(*m_pending);
        noteAnswer(answer->body, std::move(before));
        if (m_earlier.size() == mostRepeatable) {
            m_earlier.erase(m_earlier.begin() + random(0, mostRepeatable - 1));
        }
        m_earlier.push_back(std::move(*m_pending));
        m_pending.reset();
    } else {
        ++m_tally.refused;
    }
    return answer->status;
}

void DeliveringClient::noteAnswer(const std::string& body, SiteModel before)
{
    m_latest = Latest{m_pending->fileId, {}, std::move(before)};
    simdjson::dom::parser parser;
    std::size_t index = 0;
    for (const simdjson::dom::element point : parser.parse(body)) {
        const PointKey& key = m_pending->points.at(index++).key;
        m_ids[key] = point["_id"].get_string().value();
        const std::string_view delivery = point["deliveryId"].get_string().value();
        if (!delivery.empty()) {
            m_latest->histories[key.target] = delivery;
        }
    }
}

std::optional<DeliveringClient::Removal> DeliveringClient::nextRemoval()
{
    if (m_latest && !m_latest->histories.empty() && random(0, 2) != 0) {
        return undo();
    }
    std::vector<PointKey> known;
    for (const auto& [key, id] : m_ids) {
        if (m_model.points().count(key) > 0 && !m_model.points().at(key).samples.empty()) {
            known.push_back(key);
        }
    }
    if (known.empty()) {
        return std::nullopt;
    }
    const PointKey& key = known.at(static_cast<std::size_t>(random(0, static_cast<int>(known.size()) - 1)));
    Removal removal{"pointLocations/" + m_ids.at(key), {key.target}, m_model};
    if (random(0, 4) == 0) {
        removal.after.removePoint(key);
        return removal;
    }
    const Samples& samples = m_model.points().at(key).samples;
    const auto first = std::next(samples.begin(),
                                 random(0, static_cast<int>(std::min<std::size_t>(samples.size(), 40)) - 1));
    const std::int64_t from = first->first.time;
    const std::int64_t before = from + random(1, 30) * millisecondsPerHour;
    removal.path += "/samples?where=%7B%22time%22:%7B%22$gte%22:%22" + timeText(from, std::nullopt) +
                    "%22,%22$lt%22:%22" + timeText(before, std::nullopt) + "%22%7D%7D";
    removal.after.removeSamples(key, from, before);
    return removal;
}

DeliveringClient::Removal DeliveringClient::undo()
{
    const auto one =
        std::next(m_latest->histories.begin(), random(0, static_cast<int>(m_latest->histories.size()) - 1));
    Removal removal{"historyDatas/" + one->second, {one->first}, m_model};
    removal.after.takeBack(one->first, m_latest->fileId, m_latest->before);
    return removal;
}

// A delivery is not taken back any more once another client has delivered to the same target.
std::optional<unsigned> DeliveringClient::remove(const Send& send, Removal removal)
{
    m_resolved.reset();
    if (m_latest) {
        for (const std::size_t target : removal.targets) {
            m_latest->histories.erase(target);
        }
    }
    const std::optional<ServiceAnswer> answer = send("DELETE", removal.path, {});
    if (answer && answer->status == 200U) {
        ++m_tally.answered;
        ++m_tally.withdrawn;
        m_model = std::move(removal.after);
    } else if (!answer || answer->status != 409U) {
        m_tally.refused += answer ? 1 : 0;
        m_removed = std::move(removal.after);
    }
    return answer ? std::optional(answer->status) : std::nullopt;
}

void DeliveringClient::resolve(const std::set<std::string>& heldFiles, const IsHeld& isHeld)
{
    if (m_removed) {
        const bool isAbsent = isHeld(m_model);
        ++(isAbsent ? m_tally.unansweredAbsent : m_tally.unansweredWhole);
        if (!isAbsent) {
            m_model = std::move(*m_removed);
        }
        m_removed.reset();
        m_latest.reset();
    }
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
        for (const SentDelivery::Point& point : m_pending->points) {
            m_ids.erase(point.key);
        }
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
        // Mostly for one monitoring: what is for several has the service to itself.
        const bool isForAll = random(0, 2) == 0;
        const std::string& cell =
            m_site->targets
                .at(static_cast<std::size_t>(random(0, static_cast<int>(m_site->targets.size()) - 1)))
                .cell;
        for (std::size_t target = 0; target < m_site->targets.size(); ++target) {
            if (!isForAll && m_site->targets[target].cell != cell) {
                continue;
            }
            for (const std::string& name : pointNames(m_number)) {
                // The last target is the inclinometer's.
                const bool isDeep = target + 1 == m_site->targets.size();
                for (std::size_t i = 0; i < (isDeep ? depthNames.size() : 1); ++i) {
                    if (random(0, 3) == 0) {
                        const PointKey key{target, name, isDeep ? depthNames.at(i) : ""};
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
