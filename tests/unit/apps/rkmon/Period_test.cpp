#include "Period.h"

#include "Failure.h"
#include "Text.h"

#include <RKPub.h>

#include <gtest/gtest.h>

namespace {

RKTimePeriod between(const QString& since, const QString& until, const char* zone)
{
    RKTimePeriod period;
    restrictTo(
        {since, until}, [zone] { return QTimeZone(zone); }, period);
    return period;
}

// The beginning and the end that the library asks the service for: it adds a day to the end of a period.
QString asked(const QString& since, const QString& until, const char* zone)
{
    const RKTimePeriod period = between(since, until, zone);
    return period.startTime.toUTC().toString(Qt::ISODate) + " "_q +
           period.endTime.addDays(1).toUTC().toString(Qt::ISODate);
}

std::string refusal(const QString& since, const QString& until, const char* zone = "Europe/Vienna")
{
    try {
        between(since, until, zone);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return failure.message().toStdString();
    }
    return "";
}

} // namespace

TEST(Period, DaysAreThoseOfTheZone)
{
    EXPECT_EQ(asked("2026-03-01"_q, "2026-03-01"_q, "Europe/Vienna"),
              "2026-02-28T23:00:00Z 2026-03-01T23:00:00Z"_q);
    EXPECT_EQ(asked("2026-03-01"_q, "2026-03-01"_q, "America/Los_Angeles"),
              "2026-03-01T08:00:00Z 2026-03-02T08:00:00Z"_q);
    EXPECT_EQ(asked("2026-03-01"_q, "2026-03-01"_q, "Asia/Kolkata"),
              "2026-02-28T18:30:00Z 2026-03-01T18:30:00Z"_q);
}

TEST(Period, DaysOfAClockChangeAreWhole)
{
    EXPECT_EQ(asked("2026-03-29"_q, "2026-03-29"_q, "Europe/Vienna"), // 23 hours
              "2026-03-28T23:00:00Z 2026-03-29T22:00:00Z"_q);
    EXPECT_EQ(asked("2026-10-25"_q, "2026-10-25"_q, "Europe/Vienna"), // 25 hours
              "2026-10-24T22:00:00Z 2026-10-25T23:00:00Z"_q);
    EXPECT_EQ(asked("2021-03-27"_q, "2021-03-28"_q, "Asia/Beirut"), // no midnight on the 28th
              "2021-03-26T22:00:00Z 2021-03-28T21:00:00Z"_q);
}

TEST(Period, TimesWithoutOffsetAreOfTheZone)
{
    EXPECT_EQ(asked("2026-07-01T08:00:00"_q, "2026-07-01"_q, "Europe/Vienna"),
              "2026-07-01T06:00:00Z 2026-07-01T22:00:00Z"_q);
    EXPECT_EQ(asked("2026-07-01T08:00:00-08:00"_q, "2026-07-02T00:00:00+09:00"_q, "Europe/Vienna"),
              "2026-07-01T16:00:00Z 2026-07-02T15:00:00Z"_q);
}

TEST(Period, ATimeThatTheClocksSkipIsRefused)
{
    EXPECT_EQ(refusal("2026-03-29T02:30:00"_q, QString()),
              "--since: \"2026-03-29T02:30:00\" does not exist in Europe/Vienna, whose clocks are put "
              "forward then");
    EXPECT_EQ(refusal("2026-03-29T02:30:00"_q, QString(), "Asia/Kolkata"), "");
}

TEST(Period, OpenEndsReachFar)
{
    const RKTimePeriod since = between("2026-03-01"_q, QString(), "Europe/Vienna");
    EXPECT_FALSE(since.isAllTime);
    EXPECT_GT(since.endTime.date().year(), 9000);
    EXPECT_FALSE(RKPub::getQStringByDateTime(since.endTime.addDays(1)).isEmpty());

    const RKTimePeriod until = between(QString(), "2026-03-01"_q, "Europe/Vienna");
    EXPECT_FALSE(until.isAllTime);
    EXPECT_EQ(until.startTime.toMSecsSinceEpoch(), 0);
}

TEST(Period, NothingGivenAsksForNoZone)
{
    RKTimePeriod period;
    restrictTo(
        {},
        []() -> QTimeZone {
            ADD_FAILURE() << "asked for the zone";
            return {};
        },
        period);
    EXPECT_TRUE(period.isAllTime);
}

TEST(Period, WhatIsNoTimeIsRefused)
{
    for (const char* since :
         {"yesterday", "2026-02-30", "2026-03-01T25:00:00", "1.3.2026", "2026-03-01T08:00:00 "}) {
        EXPECT_NE(refusal(QString::fromUtf8(since), QString()).find("is not a time"), std::string::npos)
            << since;
    }
    for (const char* until : {"tomorrow", "2026-02-30", "2026-03-01T00:00:00", "2026-03-01T12:00:00Z"}) {
        EXPECT_NE(refusal(QString(), QString::fromUtf8(until)).find("is not a day"), std::string::npos)
            << until;
    }
    EXPECT_EQ(refusal("2026-03-03"_q, "2026-03-01"_q), "--since 2026-03-03 is after --until 2026-03-01");
    EXPECT_EQ(refusal("2026-03-01"_q, "2026-03-01"_q), "");
}
