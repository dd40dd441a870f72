#include "time/Timestamp.h"
#include "unit/service/delivery/DeliveryText.h"
#include "unit/service/delivery/IntakeFixture.h"

#include <date/tz.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <map>
#include <random>
#include <sstream>

namespace monitorservice {
namespace {

using test::member;

// What a delivery is drawn from: a few weeks around a change of the clock, close enough together for samples
// to meet.
struct Period
{
    const char* timeZone;
    const char* begin;
};

class DayRollup : public test::IntakeFixture, public ::testing::WithParamInterface<Period>
{
protected:
    DayRollup() : IntakeFixture(GetParam().timeZone) {}

    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

    std::string randomDelivery(Instant begin)
    {
        std::vector<std::string> points;
        for (int i = 0; i <= below(3); ++i) {
            std::vector<std::string> samples;
            for (int j = below(30); j > 0; --j) {
                const Instant time = begin + below(40 * 24 * 2) * 30LL * 60'000;
                const int offset = below(4) == 0 ? 345 : -480;
                // Mostly one value for a time and count, so that deliveries agree; now and then a correction.
                const int value = below(6) == 0 ? below(1000) : static_cast<int>(time / 60'000 % 997);
                samples.push_back(test::sample(isoText(time, offset), 0, std::to_string(value)));
            }
            std::sort(samples.begin(), samples.end(),
                      [](const std::string& left, const std::string& right) { return left < right; });
            points.push_back(test::point("W" + std::to_string(below(3)), samples));
        }
        return test::delivery(points);
    }

    static std::string textOf(const std::string& point, const DaySummary& day)
    {
        return point + ' ' + std::to_string(day.day) + ' ' + std::to_string(day.time) + ' ' +
               std::to_string(day.count) + ' ' + test::offsetText(day.offsetMinutes) + ' ' +
               test::exactText(day.value) + ' ' + std::to_string(day.samples);
    }

    static std::vector<std::string> kept(const std::vector<test::HeldPoint>& points)
    {
        std::vector<std::string> days;
        for (const test::HeldPoint& point : points) {
            for (const DaySummary& day : point.days) {
                days.push_back(textOf(point.id, day));
            }
        }
        return days;
    }

    // The same, from the samples alone.
    static std::vector<std::string> recomputed(const std::vector<test::HeldPoint>& points)
    {
        const date::time_zone* const zone = date::locate_zone(GetParam().timeZone);
        std::vector<std::string> days;
        for (const test::HeldPoint& point : points) {
            std::map<std::int64_t, DaySummary> ofPoint;
            for (const Sample& sample : point.samples) {
                const date::sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds(sample.time)};
                const std::int64_t number =
                    date::floor<date::days>(zone->to_local(time)).time_since_epoch().count();
                DaySummary& day = ofPoint[number];
                day = {number,       sample.time,    sample.count, sample.offsetMinutes,
                       sample.value, day.samples + 1};
            }
            for (const auto& [number, day] : ofPoint) {
                days.push_back(textOf(point.id, day));
            }
        }
        return days;
    }

    // Ordered by the time that the store keeps of each point, and by that of its last sample.
    std::vector<std::string> newestFirst() const
    {
        std::vector<std::string> ids;
        DocumentQuery query;
        query.project = "p1";
        query.order = parseOrder("-lastDate");
        const auto session = store.read();
        session->documents(DocumentKind::PointLocation).visit(query, [&ids](std::string_view document) {
            ids.push_back(member(std::string(document), "_id"));
        });
        return ids;
    }
    static std::vector<std::string> idsByLastSample(std::vector<test::HeldPoint> points)
    {
        std::stable_sort(points.begin(), points.end(),
                         [](const test::HeldPoint& left, const test::HeldPoint& right) {
                             constexpr Instant never = std::numeric_limits<Instant>::min();
                             return (left.samples.empty() ? never : left.samples.back().time) >
                                    (right.samples.empty() ? never : right.samples.back().time);
                         });
        std::vector<std::string> ids;
        for (const test::HeldPoint& point : points) {
            ids.push_back(point.id);
        }
        return ids;
    }

    std::mt19937 random{20151221};
};

TEST_P(DayRollup, IsWhatTheSamplesGiveAfterEveryDelivery)
{
    Instant begin = 0;
    std::istringstream(GetParam().begin) >> begin;
    std::size_t corrections = 0;
    for (int number = 0; number < 70; ++number) {
        const std::string outcome = take(randomDelivery(begin));
        // Two draws of one time may contradict each other within a delivery; nothing is written then.
        ASSERT_TRUE(outcome == "changed" || outcome == "same" ||
                    outcome.find("contradicts") != std::string::npos)
            << outcome;
        const std::vector<test::HeldPoint> held = points();
        ASSERT_EQ(kept(held), recomputed(held));
        for (const test::HeldPoint& point : held) {
            ASSERT_EQ(member(point.document, "insertCount"), std::to_string(point.samples.size()));
            const std::string lastDate = member(point.document, "lastDate");
            ASSERT_EQ(lastDate.empty(), point.samples.empty());
            if (!lastDate.empty()) {
                ASSERT_EQ(parseTimestamp(lastDate).value().milliseconds, point.samples.back().time);
            }
        }
        ASSERT_EQ(newestFirst(), idsByLastSample(held));
        if (const std::vector<std::string> histories = documents(DocumentKind::History); !histories.empty()) {
            const std::string& history = histories.back();
            ASSERT_EQ(member(history, "lastCount"), std::to_string(test::samplesIn(held)));
            corrections += outcome == "changed" && member(history, "insertCount") == "0" ? 1U : 0U;
        }
    }
    EXPECT_GT(test::samplesIn(points()), 500U);
    EXPECT_GT(corrections + documents(DocumentKind::History).size(), 30U);
}

INSTANTIATE_TEST_SUITE_P(Zones, DayRollup,
                         ::testing::Values(Period{"UTC", "1450569600000"},
                                           Period{"Europe/Vienna", "1773532800000"},
                                           Period{"America/Los_Angeles", "1446000000000"},
                                           Period{"Australia/Lord_Howe", "1774000000000"},
                                           Period{"America/Sao_Paulo", "1507000000000"},
                                           Period{"Asia/Kathmandu", "1773532800000"}));

} // namespace
} // namespace monitorservice
