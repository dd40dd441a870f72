#include "inspection/PointInspection.h"

#include "domain/PointLocation.h"
#include "time/Timestamp.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <set>
#include <tuple>

namespace monitorservice {

namespace {

using Number = std::numeric_limits<std::int64_t>;

constexpr Instant millisecondsPerDay = 86'400'000;

std::string nameOfDay(std::int64_t day)
{
    return isoText(day * millisecondsPerDay).substr(0, 10);
}

bool isSame(const Sample& left, const Sample& right)
{
    return std::tie(left.time, left.count, left.offsetMinutes, left.value, left.timeFlag) ==
           std::tie(right.time, right.count, right.offsetMinutes, right.value, right.timeFlag);
}

bool isSame(const DaySummary& left, const DaySummary& right)
{
    return std::tie(left.day, left.time, left.count, left.offsetMinutes, left.value, left.samples) ==
           std::tie(right.day, right.time, right.count, right.offsetMinutes, right.value, right.samples);
}

class Inspection
{
public:
    Inspection(const Session& session, const DeliveredTo& point, LocalDays& calendar)
        : m_measurements(session.measurements()), m_point(point), m_calendar(calendar)
    {
    }

    InspectedPoint run()
    {
        m_measurements.visitKept(m_point.point.key,
                                 [this](const KeptSample& sample) { m_found.samples.push_back(sample); });
        checkOrder();
        checkDays();
        checkEnds();
        checkDeliveries();
        checkDocument();
        return std::move(m_found);
    }

private:
    void check(bool holds, const std::string& flaw)
    {
        if (!holds) {
            m_found.flaws.push_back(flaw);
        }
    }

    void checkOrder()
    {
        const auto isBefore = [](const KeptSample& left, const KeptSample& right) {
            return std::tie(left.sample.time, left.sample.count) <
                   std::tie(right.sample.time, right.sample.count);
        };
        const auto& samples = m_found.samples;
        const auto wrong =
            std::adjacent_find(samples.begin(), samples.end(),
                               [&](const auto& left, const auto& right) { return !isBefore(left, right); });
        if (wrong != samples.end()) {
            check(false,
                  "the sample after that of " + isoText(wrong->sample.time) + " does not come after it");
        }
    }

    // Each day as its samples give it; a day that is kept and has none; a sample whose day is not kept.
    void checkDays()
    {
        std::vector<DaySummary> expected;
        for (const KeptSample& kept : m_found.samples) {
            const Sample& sample = kept.sample;
            const std::int64_t day = m_calendar.dayOf(sample.time);
            if (expected.empty() || expected.back().day != day) {
                expected.emplace_back();
            }
            expected.back() = {day,          sample.time,
                               sample.count, sample.offsetMinutes,
                               sample.value, expected.back().samples + 1};
        }
        m_found.days = expected.size();
        auto next = expected.begin();
        m_measurements.visitDays(m_point.point.key, Number::min(), Number::max(), [&](const DaySummary& day) {
            for (; next != expected.end() && next->day < day.day; ++next) {
                check(false, "the day " + nameOfDay(next->day) + " is not kept");
            }
            const bool isKnown = next != expected.end() && next->day == day.day;
            check(isKnown && isSame(*next, day),
                  "the day " + nameOfDay(day.day) + " is kept otherwise than its samples give it");
            next += isKnown ? 1 : 0;
        });
        for (; next != expected.end(); ++next) {
            check(false, "the day " + nameOfDay(next->day) + " is not kept");
        }
    }

    void checkEnds()
    {
        const std::optional<Sample> earliest = m_measurements.earliestSample(m_point.point.key);
        const std::optional<Sample> latest = m_measurements.latestSample(m_point.point.key);
        const auto& samples = m_found.samples;
        check(samples.empty() ? !earliest : earliest && isSame(*earliest, samples.front().sample),
              "another sample is found as the earliest one");
        check(samples.empty() ? !latest : latest && isSame(*latest, samples.back().sample),
              "another sample is found as the latest one");
    }

    void checkDeliveries()
    {
        std::set<std::int64_t, std::greater<>> numbers{m_point.made};
        std::int64_t latest = 0;
        for (const KeptSample& kept : m_found.samples) {
            numbers.insert(kept.delivery);
            latest = std::max(latest, kept.delivery);
        }
        check(m_measurements.deliveriesOf(m_point.point.key) ==
                  std::vector<std::int64_t>(numbers.begin(), numbers.end()),
              "other deliveries are found than those that have inserted its samples");
        check(m_point.changed >= *numbers.begin(),
              "it has samples of a delivery after the one that has changed it last");
        std::size_t found = 0;
        m_measurements.visitSamplesOf(m_point.point.key, latest,
                                      [&found](const Sample& /*sample*/) { ++found; });
        const auto expected =
            std::count_if(m_found.samples.begin(), m_found.samples.end(),
                          [latest](const KeptSample& kept) { return kept.delivery == latest; });
        check(found == static_cast<std::size_t>(expected),
              std::to_string(expected) + " samples are of delivery " + std::to_string(latest) + ", but " +
                  std::to_string(found) + " are found as such");
    }

    void checkDocument()
    {
        const auto location = fromDocument<PointLocation>(m_point.point.document);
        const auto held = static_cast<std::int64_t>(m_found.samples.size());
        check(location.insertCount == held, std::to_string(held) + " samples are held, but " +
                                                std::to_string(location.insertCount) + " are counted");
        const std::optional<Timestamp> last = parseTimestamp(location.lastDate);
        check(held == 0 ? !last : last && last->milliseconds == m_found.samples.back().sample.time,
              "its \"lastDate\" is not the time of its latest sample");
    }

    const Measurements& m_measurements;
    const DeliveredTo& m_point;
    LocalDays& m_calendar;
    InspectedPoint m_found;
};

} // namespace

InspectedPoint inspectPoint(const Session& session, const DeliveredTo& point, LocalDays& calendar)
{
    return Inspection(session, point, calendar).run();
}

} // namespace monitorservice
