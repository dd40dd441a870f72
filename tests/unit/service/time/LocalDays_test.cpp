#include "time/LocalDays.h"

#include "time/Timestamp.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace monitorservice {
namespace {

constexpr Instant minute = 60'000;
constexpr Instant hour = 60 * minute;

Instant at(std::string_view text)
{
    return parseTimestamp(text).value().milliseconds;
}

std::int64_t dayNumber(std::string_view date)
{
    return at(std::string(date) + "T00:00:00Z") / (24 * hour);
}

TEST(LocalDays, DayEndsAtMidnightOfTheZone)
{
    LocalDays days("America/Los_Angeles");
    EXPECT_EQ(days.dayOf(at("2015-12-21T23:59:59.999-08:00")), dayNumber("2015-12-21"));
    EXPECT_EQ(days.dayOf(at("2015-12-22T00:00:00-08:00")), dayNumber("2015-12-22"));
    EXPECT_EQ(days.dayOf(at("2015-12-22T07:59:59Z")), dayNumber("2015-12-21"));
}

TEST(LocalDays, DaysBeforeTheEpochAreCountedDown)
{
    LocalDays days("UTC");
    EXPECT_EQ(days.dayOf(-1), -1);
    EXPECT_EQ(days.dayOf(0), 0);
    EXPECT_EQ(days.dayOf(at("0000-01-01T00:00:00Z")), -719528);
    EXPECT_EQ(days.dayOf(at("9999-12-31T23:59:59Z")), 2932896);
}

TEST(LocalDays, DayIsLongerOrShorterWhereTheClockIsChanged)
{
    const LocalDays days("Europe/Vienna");
    const std::int64_t spring = dayNumber("2026-03-29");
    const std::int64_t autumn = dayNumber("2026-10-25");
    EXPECT_EQ(days.beginOf(spring + 1) - days.beginOf(spring), 23 * hour);
    EXPECT_EQ(days.beginOf(autumn + 1) - days.beginOf(autumn), 25 * hour);
}

TEST(LocalDays, ZonesMayBeOffByLessThanAnHour)
{
    LocalDays kathmandu("Asia/Kathmandu");
    EXPECT_EQ(kathmandu.dayOf(at("2026-05-01T18:14:59Z")), dayNumber("2026-05-01"));
    EXPECT_EQ(kathmandu.dayOf(at("2026-05-01T18:15:00Z")), dayNumber("2026-05-02"));
    EXPECT_EQ(kathmandu.offsetMinutesAt(0), 330);
    EXPECT_EQ(kathmandu.offsetMinutesAt(at("2026-05-01T00:00:00Z")), 345);
    const LocalDays lordHowe("Australia/Lord_Howe");
    const std::int64_t spring = dayNumber("2026-10-04");
    EXPECT_EQ(lordHowe.beginOf(spring + 1) - lordHowe.beginOf(spring), 23 * hour + 30 * minute);
}

TEST(LocalDays, DayWithoutMidnightBeginsWhereTheClockHasJumped)
{
    LocalDays days("America/Sao_Paulo");
    const std::int64_t day = dayNumber("2017-10-15");
    EXPECT_EQ(days.beginOf(day), at("2017-10-15T01:00:00-02:00"));
    EXPECT_EQ(days.dayOf(days.beginOf(day)), day);
    EXPECT_EQ(days.dayOf(days.beginOf(day) - 1), day - 1);
}

// In Havana the clock goes back from 1:00 to 0:00, so that midnight is there twice; the day begins with the
// first.
TEST(LocalDays, DayWithTwoMidnightsBeginsWithTheFirst)
{
    LocalDays days("America/Havana");
    const std::int64_t day = dayNumber("2023-11-05");
    EXPECT_EQ(days.beginOf(day), at("2023-11-05T00:00:00-04:00"));
    EXPECT_EQ(days.beginOf(day + 1), at("2023-11-06T00:00:00-05:00"));
    EXPECT_EQ(days.dayOf(at("2023-11-05T00:00:00-04:00") - 1), day - 1);
    EXPECT_EQ(days.dayOf(at("2023-11-05T00:30:00-04:00")), day);
    EXPECT_EQ(days.dayOf(at("2023-11-05T00:00:00-05:00") - 1), day);
    EXPECT_EQ(days.dayOf(at("2023-11-05T00:30:00-05:00")), day);
    EXPECT_EQ(days.offsetMinutesAt(days.beginOf(day)), -240);
}

// In St. John's the clock went back from 0:01 to 23:01: the new day had begun for a minute.
TEST(LocalDays, DayThatHasBegunIsNotLeftAgain)
{
    LocalDays days("America/St_Johns");
    const std::int64_t day = dayNumber("2010-11-07");
    const Instant midnight = at("2010-11-07T00:00:00-02:30");
    EXPECT_EQ(days.beginOf(day), midnight);
    EXPECT_EQ(days.dayOf(midnight - 1), day - 1);
    EXPECT_EQ(days.dayOf(midnight), day);
    EXPECT_EQ(days.dayOf(at("2010-11-06T23:30:00-03:30")), day);
    EXPECT_EQ(days.dayOf(at("2010-11-07T00:00:00-03:30")), day);
    EXPECT_EQ(days.beginOf(day + 1), at("2010-11-08T00:00:00-03:30"));
}

TEST(LocalDays, PeriodsFollowOneAnother)
{
    for (const char* const zone : {"UTC", "Europe/Vienna", "America/Sao_Paulo", "America/Havana",
                                   "America/St_Johns", "Pacific/Apia"}) {
        LocalDays days(zone);
        DayPeriod last = days.periodOf(at("1990-01-01T00:00:00Z"));
        while (last.before < at("2040-01-01T00:00:00Z")) {
            const DayPeriod next = days.periodOf(last.before);
            ASSERT_EQ(next.from, last.before) << zone << ' ' << last.day;
            // Apia had no 30th of December 2011.
            const bool isSkipped =
                last.day + 1 == dayNumber("2011-12-30") && zone == std::string("Pacific/Apia");
            ASSERT_EQ(next.day, last.day + (isSkipped ? 2 : 1)) << zone;
            ASSERT_EQ(days.periodOf(next.before - 1).day, next.day) << zone;
            ASSERT_EQ(LocalDays(zone).beginOf(next.day), next.from) << zone;
            last = next;
        }
    }
}

TEST(LocalDays, EveryInstantLiesBetweenTheBeginningsOfItsDayAndTheNext)
{
    for (const char* const zone : {"UTC", "Europe/Vienna", "Asia/Kathmandu", "Australia/Lord_Howe",
                                   "America/St_Johns", "America/Los_Angeles", "Pacific/Apia"}) {
        LocalDays days(zone);
        // Forwards and backwards over clock changes: what is remembered of the last look-up must not show.
        for (int step = 0; step < 20'000; ++step) {
            const Instant instant =
                at("2010-01-01T00:00:00Z") + ((step * 7919LL) % 20'000) * 6 * hour + 17 * minute;
            const DayPeriod period = days.periodOf(instant);
            ASSERT_LE(period.from, instant) << zone << " " << instant;
            ASSERT_GT(period.before, instant) << zone << " " << instant;
            ASSERT_EQ(days.beginOf(period.day), period.from) << zone << " " << instant;
            ASSERT_EQ(days.beginOf(period.day + 1), period.before) << zone << " " << instant;
        }
    }
}

TEST(LocalDays, UnknownZoneIsAnErrorOfTheInstallation)
{
    EXPECT_THROW(LocalDays("Atlantis/Capital"), UnknownTimeZone);
}

} // namespace
} // namespace monitorservice
