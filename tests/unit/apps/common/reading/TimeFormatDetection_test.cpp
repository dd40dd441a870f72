#include "reading/TimeFormatDetection.h"

#include "Text.h"

#include <gmock/gmock.h>

// In which way all times of a file can be read.

namespace {

TimeFormatDetection::Result detectedIn(const std::vector<const char*>& texts)
{
    TimeFormatDetection detection;
    int line = 1;
    for (const char* text : texts) {
        detection.look(QString::fromUtf8(text), ++line);
    }
    return detection.result();
}

std::string wayOf(const std::vector<const char*>& texts)
{
    const TimeFormatDetection::Result result = detectedIn(texts);
    return (result.problem.isEmpty() ? nameOf(result.format) : result.problem).toStdString();
}

} // namespace

TEST(TimeFormatDetection, OneWayThatFitsAllIsTaken)
{
    EXPECT_EQ(wayOf({}), "year-month-day");
    EXPECT_EQ(wayOf({"2024/3/1 8:00", "2024/3/2 8:00"}), "year-month-day");
    EXPECT_EQ(wayOf({"01.03.2024 08:00", "13.03.2024 08:00"}), "day-month-year");
    EXPECT_EQ(wayOf({"3/1/2024 8:00 AM", "3/13/2024 8:00 PM"}), "month-day-year");
    EXPECT_EQ(wayOf({"1709280000000"}), "unix-milliseconds");
}

TEST(TimeFormatDetection, SeveralWaysAreNamedAndNoneIsTaken)
{
    const TimeFormatDetection::Result result = detectedIn({"01.03.2024 08:00", "02.03.2024 08:00"});
    EXPECT_EQ(result.problem,
              "every time of the file can be read in several ways, \"01.03.2024 08:00\" as day-month-year "
              "(2024-03-01) or month-day-year (2024-01-03): which is it?"_q);
    EXPECT_EQ(result.line, 2);
    EXPECT_THAT(result.ways, testing::ElementsAre(TimeFormat::DayMonthYear, TimeFormat::MonthDayYear));
    EXPECT_EQ(wayOf({"45352.5"}),
              "every time of the file can be read in several ways, \"45352.5\" as excel-1900 (2024-03-01), "
              "excel-1904 (2028-03-02), unix-seconds (1970-01-01) or unix-milliseconds (1970-01-01): which "
              "is it?");
    EXPECT_THAT(detectedIn({"24/03/01"}).ways.size(), 2);
}

TEST(TimeFormatDetection, TimesThatContradictEachOtherAreRefused)
{
    const TimeFormatDetection::Result result = detectedIn({"01.03.2024", "13.03.2024", "03.13.2024"});
    EXPECT_EQ(result.problem,
              "no one way reads both the time \"03.13.2024\" (here) and \"13.03.2024\" (line 3)"_q);
    EXPECT_EQ(result.line, 4);
}

TEST(TimeFormatDetection, WhatIsNoTimeDoesNotCount)
{
    EXPECT_EQ(wayOf({"never", "", "13.03.2024"}), "day-month-year");
    EXPECT_EQ(wayOf({"13.03.2024", "2024-03-01"}), "year-month-day");
}
