#include "reading/MeasuredFile.h"

#include "Text.h"
#include "reading/MeasuredText.h"

#include <gmock/gmock.h>

// Files of readings as users have them: well-formed in any dialect, and bad in every way that a row can be.

namespace {

using testing::ElementsAre;

// What is wrong with a row below a good header, on line 2.
std::string problemOfRow(const QByteArray& row, const QByteArray& header = "name,depth,time,count,value")
{
    const std::vector<std::string> problems = problemsOf(header + "\n" + row + "\n");
    return problems.size() == 1 ? problems.front() : std::to_string(problems.size()) + " problems";
}

const char* const aReading = "W1|20|2015-12-18T00:15:00.000-08:00|11653|0.26|";

} // namespace

TEST(MeasuredFile, ReadsRows)
{
    EXPECT_THAT(readingsOf("name,depth,time,count,value\n"
                           "W1,20,2015-12-18T00:15:00-08:00,11653,0.26\n"
                           "T1,,2015-12-18T00:15:00Z,1,-3.5e-1"),
                ElementsAre(aReading, "T1||2015-12-18T00:15:00.000Z|1|-0.35|"));
}

TEST(MeasuredFile, TakesColumnsInAnyOrderAndCase)
{
    EXPECT_THAT(
        readingsOf("Value,COUNT,timeFlag,Time,Depth,Name\n0.26,11653,A,2015-12-18T00:15:00-08:00,20,W1\n"),
        ElementsAre("W1|20|2015-12-18T00:15:00.000-08:00|11653|0.26|A"));
}

TEST(MeasuredFile, FindsTheDelimiter)
{
    for (const char* delimiter : {",", ";", "\t"}) {
        QByteArray content = "name,depth,time,count,value\nW1,20,2015-12-18T00:15:00-08:00,11653,0.26\n";
        EXPECT_THAT(readingsOf(content.replace(",", delimiter)), ElementsAre(aReading)) << delimiter;
    }
}

TEST(MeasuredFile, FindsTheDecimalComma)
{
    EXPECT_THAT(readingsOf("name;depth;time;count;value\nW1;20,0;2015-12-18T00:15:00-08:00;11653;0,26\n"),
                ElementsAre(aReading));
    EXPECT_THAT(readingsOf("name,depth,time,count,value\nW1,20,2015-12-18T00:15:00-08:00,11653,\"0,26\"\n"),
                ElementsAre(aReading));
}

TEST(MeasuredFile, AsksWhenACommaMayPartThousands)
{
    const QByteArray content = "name;depth;time;count;value\nW1;20;2015-12-18T00:15:00Z;1;1,250\n";
    EXPECT_THAT(problemsOf(content),
                ElementsAre("a.csv:2: the comma may be the decimal sign or separate thousands in every "
                            "number of the file: which is it?"));
    FileMapping format;
    format.decimalSign = QLatin1Char(',');
    EXPECT_THAT(readingsOf(content, format), ElementsAre("W1|20|2015-12-18T00:15:00.000Z|1|1.25|"));
    format.decimalSign = QLatin1Char('.');
    EXPECT_THAT(
        problemsOf(content, format),
        ElementsAre("a.csv:2: value \"1,250\" is not a number: the decimal sign of this file is \".\""));
}

TEST(MeasuredFile, OneClearNumberTellsTheDecimalComma)
{
    EXPECT_THAT(readingsOf("name;depth;time;count;value\nW1;;2015-12-18T00:15:00Z;1;1,250\n"
                           "W1;;2015-12-18T00:30:00Z;2;0,5\n"),
                ElementsAre("W1||2015-12-18T00:15:00.000Z|1|1.25|", "W1||2015-12-18T00:30:00.000Z|2|0.5|"));
}

TEST(MeasuredFile, RefusesBothDecimalSigns)
{
    EXPECT_THAT(problemsOf("name;depth;time;count;value\nW1;;2015-12-18T00:15:00Z;1;1.5\n"
                           "W1;;2015-12-18T00:30:00Z;2;0,5\n"),
                ElementsAre("a.csv:3: the file has numbers with a comma (as here) and with a point (line 2): "
                            "which is the decimal sign?"));
}

TEST(MeasuredFile, ExplainsADecimalCommaAmongCommas)
{
    EXPECT_EQ(
        problemOfRow("W1,20,2015-12-18T00:15:00Z,1,0,26"),
        "a.csv:2: 6 fields, but the header names 5: a decimal comma must be quoted where commas separate "
        "the fields");
}

TEST(MeasuredFile, TakesAByteOrderMarkAndWindowsLineEnds)
{
    EXPECT_THAT(readingsOf("\xef\xbb\xbfname,depth,time,count,value\r\n"
                           "W1,20,2015-12-18T00:15:00-08:00,11653,0.26\r\n"),
                ElementsAre(aReading));
}

TEST(MeasuredFile, TakesBareCarriageReturns)
{
    EXPECT_THAT(readingsOf("name,depth,time,count,value\rW1,20,2015-12-18T00:15:00-08:00,11653,0.26\r"),
                ElementsAre(aReading));
}

TEST(MeasuredFile, TakesQuotedFields)
{
    EXPECT_THAT(readingsOf("\"name\",\"depth\",time,count,value\n"
                           "\"W \"\"1\"\", upper\",20,\"2015-12-18T00:15:00Z\",1,\"0.5\"\n"),
                ElementsAre("W \"1\", upper|20|2015-12-18T00:15:00.000Z|1|0.5|"));
}

TEST(MeasuredFile, CountsLinesThroughQuotedLineBreaksAndEmptyLines)
{
    EXPECT_THAT(problemsOf("name,depth,time,count,value,note\n\n"
                           "W1,,2015-12-18T00:15:00Z,1,0.5,\"two\r\nlines\"\n"
                           "W1,,2015-12-18T00:30:00Z,2,bad,x\n"),
                ElementsAre("a.csv:5: value \"bad\" is not a number"));
}

TEST(MeasuredFile, TellsIgnoredColumns)
{
    const MeasuredFile file = readMeasuredFile("a.csv"_q, "name,depth,time,count,value,operator\n", {});
    EXPECT_EQ(file.ignoredColumns, QStringList{"operator"_q});
}

TEST(MeasuredFile, TakesAFileWithoutRows)
{
    const MeasuredFile file = readMeasuredFile("a.csv"_q, "name,depth,time,count,value\n", {});
    EXPECT_TRUE(file.problems.isEmpty());
    EXPECT_EQ(file.readingCount, 0);
    EXPECT_TRUE(file.points.isEmpty());
}

TEST(MeasuredFile, RefusesAnEmptyFile)
{
    const std::vector<std::string> expected{
        "a.csv:1: the file is empty; its first line must name the columns"};
    EXPECT_EQ(problemsOf(""), expected);
    EXPECT_EQ(problemsOf("\xef\xbb\xbf\r\n"), expected);
}

TEST(MeasuredFile, NamesMissingColumns)
{
    EXPECT_THAT(
        problemsOf("name;time;count;val\nW1;2015-12-18T00:15:00Z;1;0.5\n"),
        ElementsAre("a.csv:1: the header names no column \"depth\", \"value\"; it must name name, depth, "
                    "time, count and value"));
}

TEST(MeasuredFile, RefusesADuplicateColumn)
{
    EXPECT_THAT(problemsOf("name,depth,time,count,value,Value\n"),
                ElementsAre("a.csv:1: duplicate column \"Value\""));
}

TEST(MeasuredFile, RefusesOtherEncodings)
{
    EXPECT_THAT(problemsOf(QByteArray("n\0a\0", 4)),
                ElementsAre("a.csv:1: the file is not UTF-8 text (UTF-16?)"));
    EXPECT_EQ(problemOfRow("H\xf6he,,2015-12-18T00:15:00Z,1,0.5"), "a.csv:2: the text is not UTF-8");
    EXPECT_THAT(
        readingsOf("name,depth,time,count,value\nH\xc3\xb6he \xef\xbf\xbd,,2015-12-18T00:15:00Z,1,0.5\n"),
        ElementsAre("H\xc3\xb6he \xef\xbf\xbd||2015-12-18T00:15:00.000Z|1|0.5|"));
}

TEST(MeasuredFile, NamesWhatIsWrongWithARow)
{
    const std::vector<std::pair<const char*, const char*>> rows{
        {",,2015-12-18T00:15:00Z,1,0.5", "the name is empty"},
        {"W\x01,,2015-12-18T00:15:00Z,1,0.5", "the name holds a control character"},
        {"W1,deep,2015-12-18T00:15:00Z,1,0.5", "depth \"deep\" is not a number"},
        {"W1,,,1,0.5", "the time is empty"},
        {"W1,,18 Dec 2015,1,0.5", "time \"18 Dec 2015\" is not one like 2015-12-18T00:15:00-08:00"},
        {"W1,,2015-02-30T00:15:00Z,1,0.5", "time \"2015-02-30T00:15:00Z\" does not exist"},
        {"W1,,2015-12-18T24:15:00Z,1,0.5", "time \"2015-12-18T24:15:00Z\" does not exist"},
        {"W1,,2015-12-18T00:15:00,1,0.5",
         "time \"2015-12-18T00:15:00\" has no offset from UTC, as 2015-12-18T00:15:00-08:00 has"},
        {"W1,,2015-12-18T00:15:00Z,,0.5", "count \"\" is not a whole number from 0 to 2147483647"},
        {"W1,,2015-12-18T00:15:00Z,1.0,0.5", "count \"1.0\" is not a whole number from 0 to 2147483647"},
        {"W1,,2015-12-18T00:15:00Z,-1,0.5", "count \"-1\" is not a whole number from 0 to 2147483647"},
        {"W1,,2015-12-18T00:15:00Z,2147483648,0.5",
         "count \"2147483648\" is not a whole number from 0 to 2147483647"},
        {"W1,,2015-12-18T00:15:00Z,1,", "the value is empty"},
        {"W1,,2015-12-18T00:15:00Z,1,NaN", "value \"NaN\" is not a number"},
        {"W1,,2015-12-18T00:15:00Z,1,-inf", "value \"-inf\" is not a number"},
        {"W1,,2015-12-18T00:15:00Z,1,0x10", "value \"0x10\" is not a number"},
        {"W1,,2015-12-18T00:15:00Z,1,1.2.3", "value \"1.2.3\" is not a number"},
        {"W1,,2015-12-18T00:15:00Z,1,1e999", "value \"1e999\" is too large a number"},
        {"W1,,2015-12-18T00:15:00Z,1,\"1,234.5\"", "value \"1,234.5\" is not a number"},
        {"W1,,2015-12-18T00:15:00Z,1", "4 fields, but the header names 5"},
        {"W1,,2015-12-18T00:15:00Z,1,\"0.5\"x", "text follows a closing quote"},
        {"W1,,2015-12-18T00:15:00Z,1,0\"5", "a quote within a field that does not begin with one"},
        {"W1,,2015-12-18T00:15:00Z,1,\"0.5", "a quote that opens on line 2 is never closed"},
    };
    for (const auto& [row, problem] : rows) {
        EXPECT_EQ(problemOfRow(row), std::string("a.csv:2: ") + problem) << row;
    }
}

TEST(MeasuredFile, FindsABadDateInLine700)
{
    QByteArray content = "name,depth,time,count,value\n";
    for (int line = 2; line <= 1000; ++line) {
        content += line == 700 ? QByteArray("W1,20,2015-13-18T00:15:00Z,700,0.26\n")
                               : "W1,20,2015-12-18T00:15:00Z," + QByteArray::number(line) + ",0.26\n";
    }
    EXPECT_THAT(problemsOf(content), ElementsAre("a.csv:700: time \"2015-13-18T00:15:00Z\" does not exist"));
}

TEST(MeasuredFile, ReportsSoManyRowsAndCountsTheRest)
{
    QByteArray content = "name,depth,time,count,value\n";
    for (int i = 0; i < 50; ++i) {
        content += "W1,20,never,1,0.26\n";
    }
    const std::vector<std::string> problems = problemsOf(content);
    ASSERT_EQ(problems.size(), 21u);
    EXPECT_EQ(problems[0], "a.csv:2: time \"never\" is not one like 2015-12-18T00:15:00-08:00");
    EXPECT_EQ(problems[19].substr(0, 9), "a.csv:21:");
    EXPECT_EQ(problems[20], "a.csv: and 30 more bad rows");
}

TEST(MeasuredFile, TakesTimesAsTheyAreWritten)
{
    FileMapping format;
    format.utcOffset = 3600;
    const std::vector<std::pair<const char*, const char*>> times{
        {"2015-12-18", "2015-12-18T00:00:00.000+01:00"},
        {"2015-12-18 06:15", "2015-12-18T06:15:00.000+01:00"},
        {"2015-12-18T06:15:30", "2015-12-18T06:15:30.000+01:00"},
        {"2015-12-18 06:15:30.25 -0330", "2015-12-18T06:15:30.250-03:30"},
        {"2015-12-18T06:15Z", "2015-12-18T06:15:00.000Z"},
    };
    for (const auto& [text, time] : times) {
        EXPECT_THAT(readingsOf(QByteArray("name,depth,time,count,value\nW1,,") + text + ",1,0.5\n", format),
                    ElementsAre(std::string("W1||") + time + "|1|0.5|"));
    }
}

TEST(MeasuredFile, MakesOneDepthOfItsSpellings)
{
    const MeasuredFile file = readMeasuredFile("a.csv"_q,
                                               "name,depth,time,count,value\n"
                                               "I1,2.5,2015-12-18T00:00:00Z,1,0.5\n"
                                               "I1,2.50,2015-12-19T00:00:00Z,2,0.5\n"
                                               "I1,+02.5,2015-12-20T00:00:00Z,3,0.5\n"
                                               "I1,-0,2015-12-20T00:00:00Z,3,0.5\n",
                                               {});
    ASSERT_EQ(file.points.size(), 2);
    EXPECT_EQ(file.points[0].depth, "2.5"_q);
    EXPECT_EQ(file.points[0].readings.size(), 3);
    EXPECT_EQ(file.points[1].depth, "0"_q);
}

TEST(MeasuredFile, LeavesOutRepeatedRows)
{
    const MeasuredFile file = readMeasuredFile("a.csv"_q,
                                               "name,depth,time,count,value\n"
                                               "W1,20,2015-12-18T00:15:00-08:00,1,0.26\n"
                                               "W1,20,2015-12-18T08:15:00Z,1,0.260\n"
                                               "W1,20,2015-12-18T08:15:00Z,2,0.3\n",
                                               {});
    EXPECT_TRUE(file.problems.isEmpty());
    EXPECT_EQ(file.repeatedCount, 1);
    EXPECT_EQ(file.readingCount, 2);
    EXPECT_EQ(file.points[0].readings.size(), 2);
}

TEST(MeasuredFile, RefusesTwoValuesOfOneTimeAndCount)
{
    EXPECT_THAT(
        problemsOf("name,depth,time,count,value\n"
                   "W1,20,2015-12-18T00:15:00-08:00,1,0.26\n"
                   "W1,30,2015-12-18T00:15:00-08:00,1,0.27\n"
                   "W1,20,2015-12-18T08:15:00Z,1,0.28\n"),
        ElementsAre("a.csv:4: W1 at depth 20 has another value on line 2 for the same time and count (0.26 "
                    "there, 0.28 here)"));
}

TEST(MeasuredFile, PutsReadingsIntoTheOrderOfTime)
{
    EXPECT_THAT(readingsOf("name,depth,time,count,value\n"
                           "W1,,2015-12-19T00:00:00Z,3,0.3\n"
                           "W1,,2015-12-18T00:00:00Z,2,0.2\n"
                           "W1,,2015-12-18T00:00:00Z,1,0.1\n"),
                ElementsAre("W1||2015-12-18T00:00:00.000Z|1|0.1|", "W1||2015-12-18T00:00:00.000Z|2|0.2|",
                            "W1||2015-12-19T00:00:00.000Z|3|0.3|"));
}

TEST(MeasuredFile, SaysWhatMustBeGivenToReadIt)
{
    const auto unclear = [](const QByteArray& rows, const FileMapping& format = {}) {
        return readMeasuredFile("a.csv"_q, "name;depth;time;count;value\n" + rows, format).unclear;
    };
    const QByteArray withoutOffset = "W1;;2015-12-18T00:15:00;1;0.5\n";
    EXPECT_TRUE(unclear(withoutOffset).utcOffset);
    EXPECT_FALSE(unclear(withoutOffset).decimalSign);
    FileMapping format;
    format.utcOffset = 3600;
    EXPECT_FALSE(unclear(withoutOffset, format).utcOffset);
    EXPECT_FALSE(unclear("W1;;2015-02-30T00:15:00Z;1;0.5\n").utcOffset);

    const QByteArray ambiguous = "W1;;2015-12-18T00:15:00Z;1;1,234\n";
    EXPECT_TRUE(unclear(ambiguous).decimalSign);
    format.decimalSign = QLatin1Char(',');
    EXPECT_FALSE(unclear(ambiguous, format).decimalSign);
}
