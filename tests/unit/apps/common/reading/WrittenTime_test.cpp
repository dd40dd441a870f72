#include "reading/WrittenTime.h"

#include "Text.h"

#include <gtest/gtest.h>

// Times as people, loggers and spreadsheets write them.

namespace {

// "2024-03-01 08:00:00.000 +01:00", or why not.
std::string readAs(TimeFormat format, const QString& text, QChar decimalSign = u'.')
{
    WrittenTime time;
    switch (readWrittenTime(text, format, decimalSign, time)) {
    case TimeReading::OtherForm:
        return "other form";
    case TimeReading::DoesNotExist:
        return "does not exist";
    case TimeReading::Done:
        break;
    }
    const QString clock = QTime::fromMSecsSinceStartOfDay(time.millisecondOfDay).toString("HH:mm:ss.zzz"_q);
    const std::string offset = time.utcOffset ? " " + std::to_string(*time.utcOffset) : "";
    return (time.date.toString("yyyy-MM-dd "_q) + clock).toStdString() + offset;
}

struct Case
{
    const char* text;
    const char* time;
};

void expectAll(TimeFormat format, const std::vector<Case>& cases)
{
    for (const Case& expected : cases) {
        EXPECT_EQ(readAs(format, QString::fromUtf8(expected.text)), expected.time) << expected.text;
    }
}

} // namespace

TEST(WrittenTime, YearFirst)
{
    expectAll(TimeFormat::YearMonthDay, {{"2024/3/1 8:00", "2024-03-01 08:00:00.000"},
                                         {"2024-03-01T08:00", "2024-03-01 08:00:00.000"},
                                         {"2024-03-01 08:00:30.25 -0330", "2024-03-01 08:00:30.250 -12600"},
                                         {"2024-03-01T08:00:00.123456Z", "2024-03-01 08:00:00.123 0"},
                                         {"2024-03-01+01:00", "2024-03-01 00:00:00.000 3600"},
                                         {"2024.03.01", "2024-03-01 00:00:00.000"},
                                         {"24/03/01 08:00", "2024-03-01 08:00:00.000"},
                                         {"2024\u5e743\u67081\u65e5 8:00", "2024-03-01 08:00:00.000"},
                                         {"2024/3/1 \u4e0b\u5348 8:00", "2024-03-01 20:00:00.000"},
                                         {"2024-02-30", "does not exist"},
                                         {"2024-03-01 24:15", "does not exist"},
                                         {"2024-03-01 08:60", "does not exist"},
                                         {"01.03.2024 08:00", "other form"},
                                         {"2024-03/01", "other form"},
                                         {"2024-03-01T", "other form"},
                                         {"2024-03-01 08", "other form"},
                                         {"2024-03-01 08:00 +25:00", "other form"},
                                         {"2024-03-01 08:00:00.", "other form"},
                                         {"2024-03-01 08:00 noon", "other form"},
                                         {"never", "other form"},
                                         {"", "other form"}});
}

TEST(WrittenTime, DayFirst)
{
    expectAll(TimeFormat::DayMonthYear, {{"01.03.2024 08:00", "2024-03-01 08:00:00.000"},
                                         {"1/3/24 8:00:15", "2024-03-01 08:00:15.000"},
                                         {"1.3.70", "1970-03-01 00:00:00.000"},
                                         {"31.04.2024 08:00", "does not exist"},
                                         {"03/13/2024", "does not exist"},
                                         {"2024-03-01", "other form"}});
}

TEST(WrittenTime, MonthFirst)
{
    expectAll(TimeFormat::MonthDayYear, {{"3/1/2024 8:00 AM", "2024-03-01 08:00:00.000"},
                                         {"3/1/2024 12:00 AM", "2024-03-01 00:00:00.000"},
                                         {"3/1/2024 12:30:00 pm", "2024-03-01 12:30:00.000"},
                                         {"3/1/2024 8:00PM", "2024-03-01 20:00:00.000"},
                                         {"3/1/2024 13:00 PM", "does not exist"},
                                         {"13/03/2024", "does not exist"}});
}

TEST(WrittenTime, DaysOfASpreadsheet)
{
    expectAll(TimeFormat::Excel1900, {{"45352", "2024-03-01 00:00:00.000"},
                                      {"45352.3333333333", "2024-03-01 08:00:00.000"},
                                      {"45352.33333", "2024-03-01 08:00:00.000"},
                                      {"45352.999999999", "2024-03-02 00:00:00.000"},
                                      {"45352.333333335648", "2024-03-01 08:00:00.000"},
                                      {"45352.00000289352", "2024-03-01 00:00:00.250"},
                                      {"45352 0.3333333333", "2024-03-01 08:00:00.000"},
                                      {"45352.5 0.5", "other form"},
                                      {"1", "1900-01-01 00:00:00.000"},
                                      {"59.5", "1900-02-28 12:00:00.000"},
                                      {"61", "1900-03-01 00:00:00.000"},
                                      {"60", "does not exist"},
                                      {"0.5", "does not exist"},
                                      {"2958466", "does not exist"},
                                      {"-1", "other form"},
                                      {"4e4", "other form"},
                                      {"45352,5", "other form"}});
    expectAll(TimeFormat::Excel1904,
              {{"43890.5", "2024-03-01 12:00:00.000"}, {"0", "1904-01-01 00:00:00.000"}});
    EXPECT_EQ(readAs(TimeFormat::Excel1900, "45352,5"_q, u','), "2024-03-01 12:00:00.000");
}

TEST(WrittenTime, SecondsAndMillisecondsSince1970)
{
    expectAll(TimeFormat::UnixSeconds, {{"1709280000", "2024-03-01 08:00:00.000 0"},
                                        {"1709280000.25", "2024-03-01 08:00:00.250 0"},
                                        {"1709280000000", "does not exist"}});
    expectAll(TimeFormat::UnixMilliseconds, {{"1709280000250", "2024-03-01 08:00:00.250 0"}});
}

TEST(WrittenTime, FormatsAreChosenByName)
{
    for (const TimeFormat format : timeFormats) {
        EXPECT_EQ(timeFormatNamed(nameOf(format)), format);
        EXPECT_NE(readAs(format, exampleOf(format)), "other form") << nameOf(format).toStdString();
    }
    EXPECT_EQ(timeFormatNamed("guess"_q), std::nullopt);
    EXPECT_EQ(timeFormatNames().size(), int(timeFormats.size()));
}

TEST(WrittenTime, OffsetsFromUtc)
{
    EXPECT_EQ(readUtcOffset("Z"_q), 0);
    EXPECT_EQ(readUtcOffset("+01:00"_q), 3600);
    EXPECT_EQ(readUtcOffset("-0330"_q), -12600);
    EXPECT_EQ(readUtcOffset("1"_q), std::nullopt);
    EXPECT_EQ(readUtcOffset("+15:00"_q), std::nullopt);
}
