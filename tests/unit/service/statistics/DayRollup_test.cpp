#include "unit/service/delivery/DeliveryText.h"
#include "unit/service/delivery/IntakeFixture.h"

#include <date/tz.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <sstream>
#include <tuple>

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

    // point, day, time, count, offset, value, samples: recomputed from the samples alone.
    std::vector<std::string> recomputed() const
    {
        struct Day
        {
            std::string last;
            int samples = 0;
        };
        const date::time_zone* const zone = date::locate_zone(GetParam().timeZone);
        SQLite::Database database(folder.file("data.db").string(), SQLite::OPEN_READONLY);
        SQLite::Statement query(database,
                                "SELECT point, time, count, offset_minutes, value FROM samples ORDER BY "
                                "point, time, count");
        std::map<std::pair<std::int64_t, std::int64_t>, Day> days;
        while (query.executeStep()) {
            const date::sys_time<std::chrono::milliseconds> time{
                std::chrono::milliseconds(query.getColumn(1).getInt64())};
            const auto local = date::floor<date::days>(zone->to_local(time)).time_since_epoch().count();
            Day& day = days[{query.getColumn(0).getInt64(), local}];
            ++day.samples;
            day.last.clear();
            for (int column = 1; column < 5; ++column) {
                day.last += "|" + query.getColumn(column).getString();
            }
        }
        std::vector<std::string> rows;
        for (const auto& [key, day] : days) {
            rows.push_back(std::to_string(key.first) + "|" + std::to_string(key.second) + day.last + "|" +
                           std::to_string(day.samples));
        }
        return rows;
    }

    std::mt19937 random{20151221};
};

TEST_P(DayRollup, IsWhatTheSamplesGiveAfterEveryDelivery)
{
    Instant begin = 0;
    std::istringstream(GetParam().begin) >> begin;
    int corrections = 0;
    for (int number = 0; number < 70; ++number) {
        const std::string outcome = take(randomDelivery(begin));
        // Two draws of one time may contradict each other within a delivery; nothing is written then.
        ASSERT_TRUE(outcome == "changed" || outcome == "same" ||
                    outcome.find("contradicts") != std::string::npos)
            << outcome;
        ASSERT_EQ(
            column(
                "SELECT point || '|' || day || '|' || time || '|' || count || '|' || offset_minutes || '|' "
                "|| value || '|' || samples FROM day_rollup ORDER BY point, day"),
            recomputed());
        ASSERT_EQ(
            value(
                "SELECT count(*) FROM point_locations AS p WHERE json_extract(document, '$.insertCount') <> "
                "(SELECT count(*) FROM samples AS s WHERE s.point = p.point) OR p.last_time IS NOT "
                "(SELECT max(time) FROM samples AS s WHERE s.point = p.point)"),
            "0");
        const std::string history = value("SELECT document FROM histories ORDER BY id DESC");
        if (history != "nothing") {
            ASSERT_EQ(member(history, "lastCount"), value("SELECT count(*) FROM samples"));
            corrections += outcome == "changed" && member(history, "insertCount") == "0" ? 1 : 0;
        }
    }
    EXPECT_GT(std::stoi(value("SELECT count(*) FROM samples")), 500);
    EXPECT_GT(corrections + std::stoi(value("SELECT count(*) FROM histories")), 30);
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
