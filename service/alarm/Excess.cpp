#include "alarm/Excess.h"

#include "time/Timestamp.h"

#include <algorithm>
#include <tuple>

namespace monitorservice {

namespace {

// What readings in excess are compared by.
struct Rank
{
    double total = 0;
    double daily = 0; // in the unit of the values
    Instant time = 0;
    std::int64_t count = 0;
    std::string_view depth;
    std::string_view group;

    auto place() const { return std::tie(time, count, depth, group); }
};

Rank rankOf(const Excess& excess)
{
    const Variation& variation = excess.variation;
    const double daily =
        inUnitOfValues(variation.dailyExcess, excess.group->limits.dayKind, excess.point->reference);
    return {variation.totalExcess, daily, excess.reading.time, excess.reading.count, excess.point->depth,
            excess.group->group.id};
}

Rank rankOf(const AlarmDetail& detail)
{
    const std::optional<Timestamp> time = parseTimestamp(detail.time);
    const auto kind = static_cast<DayVariationKind>(detail.dayVariationType);
    return {detail.totalExcess,
            inUnitOfValues(detail.dailyExcess, kind, detail.reference),
            time ? time->milliseconds : 0,
            detail.count,
            detail.depth,
            detail.group};
}

bool isWorseInTotal(const Rank& left, const Rank& right)
{
    if (left.total != right.total) {
        return left.total > right.total;
    }
    return left.daily != right.daily ? left.daily > right.daily : left.place() < right.place();
}

bool isWorseInDaily(const Rank& left, const Rank& right)
{
    if (left.daily != right.daily) {
        return left.daily > right.daily;
    }
    return left.total != right.total ? left.total > right.total : left.place() < right.place();
}

} // namespace

void WorstReadings::consider(const Excess& excess)
{
    const Rank rank = rankOf(excess);
    if (rank.total > 0 && (!m_total || isWorseInTotal(rank, rankOf(*m_total)))) {
        m_total = excess;
    }
    if (rank.daily > 0 && (!m_daily || isWorseInDaily(rank, rankOf(*m_daily)))) {
        m_daily = excess;
    }
}

std::vector<Excess> WorstReadings::excesses() const
{
    std::vector<Excess> excesses;
    for (const std::optional<Excess>& one : {m_total, m_daily}) {
        if (one) {
            excesses.push_back(*one);
        }
    }
    return excesses;
}

std::vector<AlarmDetail> worstOf(const std::vector<AlarmDetail>& details)
{
    if (details.empty()) {
        return {};
    }
    const auto total =
        std::min_element(details.begin(), details.end(), [](const auto& left, const auto& right) {
            return isWorseInTotal(rankOf(left), rankOf(right));
        });
    const auto daily =
        std::min_element(details.begin(), details.end(), [](const auto& left, const auto& right) {
            return isWorseInDaily(rankOf(left), rankOf(right));
        });
    if (rankOf(*total).total <= 0) {
        return {*daily};
    }
    if (rankOf(*daily).daily <= rankOf(*total).daily) {
        return {*total};
    }
    return {*total, *daily};
}

} // namespace monitorservice
