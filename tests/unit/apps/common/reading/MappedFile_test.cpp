#include "Text.h"
#include "reading/MeasuredFile.h"
#include "reading/MeasuredText.h"

#include <gmock/gmock.h>

// Files as loggers, spreadsheets and readout units write them, read as a mapping says.

namespace {

using testing::ElementsAre;

FileMapping mappingOf(const QByteArray& json)
{
    const FileMapping mapping = readFileMapping("site.json"_q, json);
    requireConsistent(mapping);
    return mapping;
}

std::vector<std::string> readingsIn(const QByteArray& content, const QByteArray& json)
{
    return readingsOf(content, mappingOf(json));
}

std::vector<std::string> problemsIn(const QByteArray& content, const QByteArray& json)
{
    return problemsOf(content, mappingOf(json));
}

// A data logger's table: what wrote it, titles, units, how values were made, then rows.
const QByteArray loggerFile =
    "\"TOA5\",\"Wall_3\",\"CR6\",\"1234\",\"CR6.Std.12\",\"CPU:wall.cr6\",\"5402\",\"Table1\"\r\n"
    "\"TIMESTAMP\",\"RECORD\",\"Batt_V\",\"PZ1\",\"PZ2\"\r\n"
    "\"TS\",\"RN\",\"Volts\",\"kPa\",\"kPa\"\r\n"
    "\"\",\"\",\"Min\",\"Avg\",\"Avg\"\r\n"
    "\"2024-03-01 08:00:00\",0,12.61,101.25,\"NAN\"\r\n"
    "\"2024-03-01 08:15:00\",1,12.6,101.5,99.75\r\n";

const QByteArray loggerMapping = R"({"layout": "column-per-point", "skipLines": 1, "skipLinesBelowHeader": 2,
    "columns": {"time": "TIMESTAMP", "count": "RECORD"}, "ignore": ["Batt_V"], "noReading": "NAN",
    "utcOffset": "+01:00"})";

} // namespace

TEST(MappedFile, OwnTitlesAndAbsentColumns)
{
    EXPECT_THAT(
        readingsIn("Punkt;Zeit;Setzung\nP1;01.03.2024 08:00;1,5\nP1;13.03.2024 08:00;1,75\n",
                   R"({"columns": {"name": "Punkt", "time": "zeit", "value": "Setzung"},
                               "timeZone": "Europe/Vienna"})"),
        ElementsAre("P1||2024-03-01T08:00:00.000+01:00|1|1.5|", "P1||2024-03-13T08:00:00.000+01:00|1|1.75|"));
}

TEST(MappedFile, ColumnsByNumberWithoutHeader)
{
    const QByteArray json = R"({"header": false, "columns": {"time": 1, "value": 3}, "utcOffset": "Z",
                                "constants": {"name": "W1", "depth": 2.50, "count": 7}})";
    EXPECT_THAT(
        readingsIn("2024-03-01 08:00,x,0.5\n2024-03-02 08:00,y,0.6\n", json),
        ElementsAre("W1|2.5|2024-03-01T08:00:00.000Z|7|0.5|", "W1|2.5|2024-03-02T08:00:00.000Z|7|0.6|"));
    EXPECT_THAT(problemsIn("2024-03-01 08:00,0.5\n", json),
                ElementsAre("a.csv:1: there is no column 3 for value, only 2"));
    EXPECT_THAT(problemsIn("2024-03-01 08:00,x,0.5\n2024-03-02 08:00,0.6\n", json),
                ElementsAre("a.csv:2: 2 fields, but the first row has 3"));
    EXPECT_THAT(problemsIn("2024-03-01 08:00;1,5;2,5\n", json),
                ElementsAre("a.csv:1: several signs may part the fields of this line: which one does?"));
}

TEST(MappedFile, MissingColumnsAreNamedByTheirTitles)
{
    EXPECT_THAT(
        problemsIn("Punkt;Wert\nP1;1\n", R"({"columns": {"name": "Punkt", "time": "Zeit", "value": "Wert",
                                                     "count": "Nr"}})"),
        ElementsAre("a.csv:1: the header names no column \"Zeit\", \"Nr\"; it must name Punkt, Zeit, Nr and "
                    "Wert"));
    EXPECT_THAT(problemsIn("P;P;time;value\n", R"({"columns": {"name": "P"}})"),
                ElementsAre("a.csv:1: duplicate column \"P\""));
}

TEST(MappedFile, DateAndClockInColumnsOfTheirOwn)
{
    const QByteArray json = R"({"columns": {"date": "Date", "clock": "Time"}, "utcOffset": "+08:00",
                                "timeFormat": "month-day-year"})";
    EXPECT_THAT(
        readingsIn("name,Date,Time,value\nW1,3/1/2024,8:00 AM,0.5\nW1,3/1/2024,8:00 PM,0.6\n", json),
        ElementsAre("W1||2024-03-01T08:00:00.000+08:00|1|0.5|", "W1||2024-03-01T20:00:00.000+08:00|1|0.6|"));
    EXPECT_THAT(
        readingsIn("name,clock,value\nW1,8:00,0.5\n",
                   R"({"columns": {"clock": "clock"}, "constants": {"date": "2024/3/1"}, "utcOffset": "Z"})"),
        ElementsAre("W1||2024-03-01T08:00:00.000Z|1|0.5|"));
}

TEST(MappedFile, WithoutCountsAPointHasOneReadingAtATime)
{
    const QByteArray json = R"({"utcOffset": "Z"})";
    EXPECT_THAT(
        readingsIn("name,time,value\nW1,2024-03-01,0.5\nW1,2024-03-01,0.50\nW2,2024-03-01,0.5\n", json),
        ElementsAre("W1||2024-03-01T00:00:00.000Z|1|0.5|", "W2||2024-03-01T00:00:00.000Z|1|0.5|"));
    EXPECT_THAT(
        problemsIn("name,time,value\nW1,2024-03-01,0.5\nW1,2024-03-01,0.6\n", json),
        ElementsAre("a.csv:3: W1 has another value on line 2 for the same time and count (0.5 there, 0.6 "
                    "here)"));
}

TEST(MappedFile, WordsForNoReadingAreLeftOutAndCounted)
{
    const FileMapping mapping = mappingOf(R"({"noReading": ["DRY", "-9999", "---"], "utcOffset": "Z"})");
    const QByteArray content = "name,time,value\nW1,2024-03-01,0.5\nW1,2024-03-02,Dry\nW1,2024-03-03,-9999\n"
                               "W1,2024-03-04,---\n";
    EXPECT_THAT(readingsOf(content, mapping), ElementsAre("W1||2024-03-01T00:00:00.000Z|1|0.5|"));
    EXPECT_EQ(readMeasuredFile("a.csv"_q, content, mapping).withoutReadingCount, 3);
    EXPECT_THAT(problemsIn("name,time,value\nW1,2024-03-02,NAN\n", R"({"utcOffset": "Z"})"),
                ElementsAre("a.csv:2: value \"NAN\" is not a number"));
}

TEST(MappedFile, ALoggersTableHasAColumnPerPoint)
{
    EXPECT_THAT(readingsIn(loggerFile, loggerMapping),
                ElementsAre("PZ1||2024-03-01T08:00:00.000+01:00|0|101.25|",
                            "PZ1||2024-03-01T08:15:00.000+01:00|1|101.5|",
                            "PZ2||2024-03-01T08:15:00.000+01:00|1|99.75|"));
    EXPECT_EQ(readMeasuredFile("a.csv"_q, loggerFile, mappingOf(loggerMapping)).withoutReadingCount, 1);
    QByteArray bad = loggerFile;
    bad.replace("101.5,", "high,");
    EXPECT_THAT(problemsIn(bad, loggerMapping),
                ElementsAre("a.csv:6: column \"PZ1\": value \"high\" is not a number"));
}

TEST(MappedFile, PointsAreChosenAndNamed)
{
    const QByteArray content =
        "Zeit;P1 [mm];P2 [mm];Temp\n01.03.2024 08:00;1,5;;20,5\n13.03.2024 08:00;1,5;2,5;21\n";
    const FileMapping mapping = mappingOf(R"({"layout": "column-per-point", "columns": {"time": "Zeit"},
        "points": {"P1 [mm]": "P1", "P2 [mm]": "P2"}, "utcOffset": "Z"})");
    EXPECT_THAT(readingsOf(content, mapping),
                ElementsAre("P1||2024-03-01T08:00:00.000Z|1|1.5|", "P1||2024-03-13T08:00:00.000Z|1|1.5|",
                            "P2||2024-03-13T08:00:00.000Z|1|2.5|"));
    EXPECT_EQ(readMeasuredFile("a.csv"_q, content, mapping).ignoredColumns, QStringList{"Temp"_q});
    EXPECT_THAT(problemsIn(content, R"({"layout": "column-per-point", "columns": {"time": "Zeit"},
                                        "points": ["P3", "P4"], "utcOffset": "Z"})"),
                ElementsAre("a.csv:1: the header names no column \"P3\", \"P4\""));
    EXPECT_THAT(problemsIn("time,P1,P1\n", R"({"layout": "column-per-point"})"),
                ElementsAre("a.csv:1: duplicate column \"P1\""));
    EXPECT_THAT(problemsIn("time\n", R"({"layout": "column-per-point"})"),
                ElementsAre("a.csv:1: the header names no column that holds values"));
}

TEST(MappedFile, AnInclinometerTableHasAColumnPerDepth)
{
    const QByteArray json =
        R"({"layout": "column-per-depth", "constants": {"name": "I1"}, "utcOffset": "+08:00"})";
    EXPECT_THAT(readingsIn("time,0.5 m,1.0 m\n2024/3/1 8:00,0.12,-0.5\n2024/3/2 8:00,0.13,\n", json),
                ElementsAre("I1|0.5|2024-03-01T08:00:00.000+08:00|1|0.12|",
                            "I1|0.5|2024-03-02T08:00:00.000+08:00|1|0.13|",
                            "I1|1|2024-03-01T08:00:00.000+08:00|1|-0.5|"));
    EXPECT_THAT(problemsIn("time,0.5,note\n2024/3/1 8:00,0.12,x\n", json),
                ElementsAre("a.csv:1: depth \"note\" is not a number"));
    EXPECT_THAT(
        readingsIn("name;time;0,5\nI1;2024/3/1;1,5\nI2;2024/3/1;2,5\n",
                   R"({"layout": "column-per-depth", "utcOffset": "Z"})"),
        ElementsAre("I1|0.5|2024-03-01T00:00:00.000Z|1|1.5|", "I2|0.5|2024-03-01T00:00:00.000Z|1|2.5|"));
}

TEST(MappedFile, AnInclinometerTableHasAColumnPerDate)
{
    const QByteArray json = R"({"layout": "column-per-date", "constants": {"name": "I1"},
                                "columns": {"depth": "Tiefe"}, "timeZone": "Europe/Berlin"})";
    EXPECT_THAT(readingsIn("Tiefe;01.03.2024;15.07.2024\n0,5;0,12;0,13\n1,0;-0,5;\n", json),
                ElementsAre("I1|0.5|2024-03-01T00:00:00.000+01:00|1|0.12|",
                            "I1|0.5|2024-07-15T00:00:00.000+02:00|1|0.13|",
                            "I1|1|2024-03-01T00:00:00.000+01:00|1|-0.5|"));
    EXPECT_THAT(problemsIn("Tiefe;01.03.2024;02.03.2024\n0,5;0,12;0,13\n", json),
                ElementsAre("a.csv:1: every time of the file can be read in several ways, \"01.03.2024\" as "
                            "day-month-year (2024-03-01) or month-day-year (2024-01-03): which is it?"));
    EXPECT_THAT(problemsIn("Tiefe;13.03.2024;Mittel\n0,5;0,12;0,13\n", json),
                ElementsAre("a.csv:1: time \"Mittel\" is not one like 18.12.2015 00:15"));
}

TEST(MappedFile, DatesThatCanBeReadBothWaysAreRefused)
{
    const QByteArray content = "name,time,value\nW1,01/03/2024 08:00,0.5\nW1,02/03/2024 08:00,0.6\n";
    const MeasuredFile file = readMeasuredFile("a.csv"_q, content, mappingOf(R"({"utcOffset": "Z"})"));
    EXPECT_FALSE(file.isReadable);
    EXPECT_EQ(file.unclear.timeFormats, (QStringList{"day-month-year"_q, "month-day-year"_q}));
    EXPECT_THAT(readingsIn(content, R"({"utcOffset": "Z", "timeFormat": "month-day-year"})"),
                ElementsAre("W1||2024-01-03T08:00:00.000Z|1|0.5|", "W1||2024-02-03T08:00:00.000Z|1|0.6|"));
    EXPECT_THAT(
        problemsIn(content, R"({"utcOffset": "Z", "timeFormat": ["month-day-year", "day-month-year"]})"),
        ElementsAre("a.csv:2: time \"01/03/2024 08:00\" can be read in more than one of the ways that are "
                    "given",
                    "a.csv:3: time \"02/03/2024 08:00\" can be read in more than one of the ways that are "
                    "given"));
}

TEST(MappedFile, DaysOfASpreadsheetTakeTheDecimalSignOfTheFile)
{
    EXPECT_THAT(readingsIn("name;time;value\nW1;45352,3333333333;0,5\n",
                           R"({"utcOffset": "+01:00", "timeFormat": "excel-1900"})"),
                ElementsAre("W1||2024-03-01T08:00:00.000+01:00|1|0.5|"));
    const MeasuredFile file = readMeasuredFile("a.csv"_q, "name;time;value\nW1;45352,5;0,5\n",
                                               mappingOf(R"({"utcOffset": "+01:00"})"));
    EXPECT_EQ(file.unclear.timeFormats,
              (QStringList{"excel-1900"_q, "excel-1904"_q, "unix-seconds"_q, "unix-milliseconds"_q}));
}

TEST(MappedFile, HoursThatAClockChangeSkipsOrDoublesAreBadRows)
{
    const QByteArray content = "name,time,value\nW1,2024-03-31 02:30,0.5\nW1,2024-10-27 02:30,0.6\n"
                               "W1,2024-10-27 04:30,0.7\n";
    const MeasuredFile file =
        readMeasuredFile("a.csv"_q, content, mappingOf(R"({"timeZone": "Europe/Berlin"})"));
    EXPECT_EQ(file.problems.count(), 2);
    EXPECT_TRUE(file.isReadable);
    EXPECT_TRUE(file.unclear.doubledHour);
    EXPECT_THAT(
        problemsIn(content, R"({"timeZone": "Europe/Berlin", "doubledHour": "first"})"),
        ElementsAre("a.csv:2: time \"2024-03-31 02:30\" does not exist: the clock of Europe/Berlin is put "
                    "forward past it"));
}

TEST(MappedFile, WhatMustBeSaidOfAllRowsIsNoMatterOfSingleOnes)
{
    const auto isReadable = [](const QByteArray& content) {
        return readMeasuredFile("a.csv"_q, content, mappingOf("{}")).isReadable;
    };
    EXPECT_TRUE(isReadable("name,time,value\nW1,2024-03-01T08:00Z,high\n"));
    EXPECT_FALSE(isReadable("name,time,value\nW1,2024-03-01T08:00,0.5\n"));
    EXPECT_FALSE(isReadable("name,time,value\n\xb2\xe2,2024-03-01T08:00Z,0.5\n"));
    EXPECT_FALSE(isReadable("name,value\nW1,0.5\n"));
}

TEST(MappedFile, OtherEncodingsAreReadOnDemand)
{
    // Title, header and row of a readout unit in China.
    const QByteArray content =
        bytesOf("\xe6\xb5\x8b\xe7\x82\xb9,\xe6\x97\xb6\xe9\x97\xb4,\xe6\x95\xb0\xe5\x80\xbc\n"
                "\xe6\xb0\xb4\xe4\xbd\x8d"
                "1,2024/3/1 8:00,0.5\n",
                FileEncoding::Gb18030);
    const QByteArray columns =
        R"("columns": {"name": 1, "time": 2, "value": 3}, "timeZone": "Asia/Shanghai")";
    EXPECT_THAT(readingsIn(content, "{" + columns + R"(, "encoding": "gb18030"})"),
                ElementsAre("\xe6\xb0\xb4\xe4\xbd\x8d"
                            "1||2024-03-01T08:00:00.000+08:00|1|0.5|"));
    const MeasuredFile refused = readMeasuredFile("a.csv"_q, content, mappingOf("{" + columns + "}"));
    EXPECT_EQ(refused.problems.lines("a.csv"_q), QStringList{"a.csv:1: the text is not UTF-8"_q});
    EXPECT_TRUE(refused.unclear.encodings.contains("gb18030"_q));
    EXPECT_FALSE(refused.unclear.encodings.contains("utf-8"_q));
    const QByteArray wide = bytesOf("name,time,value\nW1,2024-03-01Z,0.5\n", FileEncoding::Utf16LittleEndian);
    EXPECT_THAT(readingsIn(wide, "{}"), ElementsAre("W1||2024-03-01T00:00:00.000Z|1|0.5|"));
}

TEST(MappedFile, BadRowsAreKeptWithWhatStandsAboveThem)
{
    QByteArray content = loggerFile + "\"2024-03-01 08:30:00\",2,12.6,high,99.5\r\n";
    const MeasuredFile file =
        readMeasuredFile("a.csv"_q, content, mappingOf(loggerMapping), BadRowKeeping::Rows);
    EXPECT_TRUE(file.isReadable);
    EXPECT_EQ(file.readingCount, 3);
    EXPECT_EQ(file.badRows.above, content.left(content.indexOf('\n') + 1));
    EXPECT_EQ(file.badRows.header, R"("TIMESTAMP","RECORD","Batt_V","PZ1","PZ2")");
    EXPECT_EQ(file.badRows.above.size() + file.badRows.header.size() + 2 + file.badRows.below.size(),
              content.indexOf("\"2024-03-01 08:00"));
    ASSERT_EQ(file.badRows.rows.size(), 1);
    EXPECT_EQ(file.badRows.rows[0].line, 7);
    EXPECT_EQ(file.badRows.rows[0].text, "\"2024-03-01 08:30:00\",2,12.6,high,99.5");
    EXPECT_EQ(file.badRows.rows[0].reason, "column \"PZ1\": value \"high\" is not a number"_q);
}
