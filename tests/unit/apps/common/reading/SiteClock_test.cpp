#include "reading/SiteClock.h"

#include "Text.h"

#include <gtest/gtest.h>

// What the clock of a site shows, as instants.

namespace {

WrittenTime written(const char* text)
{
    WrittenTime time;
    EXPECT_EQ(readWrittenTime(QString::fromUtf8(text), TimeFormat::YearMonthDay, u'.', time),
              TimeReading::Done);
    return time;
}

std::string readBy(SiteClock& clock, const char* text)
{
    QDateTime time;
    const SiteClock::Outcome outcome = clock.read(written(text), time);
    return (outcome == SiteClock::Outcome::Done ? time.toString(Qt::ISODate)
                                                : clock.problemOf(outcome, QString::fromUtf8(text)))
        .toStdString();
}

std::string readIn(const char* zone, const char* text, std::optional<DoubledHour> doubled = {})
{
    SiteClock clock(QTimeZone(zone), doubled);
    return readBy(clock, text);
}

} // namespace

TEST(SiteClock, TakesTheOffsetThatIsWritten)
{
    SiteClock unknown;
    EXPECT_EQ(readBy(unknown, "2024-03-01 08:00+01:00"), "2024-03-01T08:00:00+01:00");
    EXPECT_EQ(readIn("Asia/Shanghai", "2024-03-01 08:00Z"), "2024-03-01T08:00:00Z");
    EXPECT_EQ(readBy(unknown, "2024-03-01 08:00"),
              "time \"2024-03-01 08:00\" has no offset from UTC, as 2015-12-18T00:15:00-08:00 has");
    SiteClock known(-12600);
    EXPECT_EQ(readBy(known, "2024-03-01 08:00"), "2024-03-01T08:00:00-03:30");
}

TEST(SiteClock, FollowsTheChangesOfAZone)
{
    EXPECT_EQ(readIn("Asia/Shanghai", "2024-03-01 08:00"), "2024-03-01T08:00:00+08:00");
    SiteClock clock(QTimeZone("Europe/Berlin"), {});
    EXPECT_EQ(readBy(clock, "2024-03-30 23:59"), "2024-03-30T23:59:00+01:00");
    EXPECT_EQ(readBy(clock, "2024-03-31 01:59"), "2024-03-31T01:59:00+01:00");
    EXPECT_EQ(readBy(clock, "2024-03-31 03:00"), "2024-03-31T03:00:00+02:00");
    EXPECT_EQ(readBy(clock, "2024-04-10 08:00"), "2024-04-10T08:00:00+02:00");
    EXPECT_EQ(readBy(clock, "2024-03-31 03:00"), "2024-03-31T03:00:00+02:00");
    EXPECT_EQ(readBy(clock, "2024-10-27 01:59"), "2024-10-27T01:59:00+02:00");
    EXPECT_EQ(readBy(clock, "2024-10-27 03:00"), "2024-10-27T03:00:00+01:00");
}

TEST(SiteClock, RefusesAnHourThatIsSkipped)
{
    const std::string problem =
        "time \"2024-03-31 02:30\" does not exist: the clock of Europe/Berlin is put forward past it";
    EXPECT_EQ(readIn("Europe/Berlin", "2024-03-31 02:30"), problem);
    EXPECT_EQ(readIn("Europe/Berlin", "2024-03-31 02:30", DoubledHour::First), problem);
    // A whole day, when the date line moved.
    EXPECT_EQ(readIn("Pacific/Apia", "2011-12-30 12:00"),
              "time \"2011-12-30 12:00\" does not exist: the clock of Pacific/Apia is put forward past it");
}

TEST(SiteClock, AsksWhichOfTwoHoursIsMeant)
{
    EXPECT_EQ(readIn("Europe/Berlin", "2024-10-27 02:30"),
              "time \"2024-10-27 02:30\" is there twice, since the clock of Europe/Berlin is put back: which "
              "one is it?");
    EXPECT_EQ(readIn("Europe/Berlin", "2024-10-27 02:30", DoubledHour::First), "2024-10-27T02:30:00+02:00");
    EXPECT_EQ(readIn("Europe/Berlin", "2024-10-27 02:30", DoubledHour::Second), "2024-10-27T02:30:00+01:00");
}
