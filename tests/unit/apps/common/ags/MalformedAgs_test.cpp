#include "ags/SiteFile.h"

#include <gmock/gmock.h>

// What can be wrong with AGS files: each is told with its line, and nothing of the file is believed.

namespace {

using testing::ElementsAre;

const QByteArray projectRow = "\"DATA\",\"1842\"";
const QByteArray firstReading = "\"DATA\",\"BH101\",\"SP1\",\"10.50\",\"2024-03-28T09:15\",\"WDEP\"";

} // namespace

TEST(MalformedAgs, TheEditionBeforeIsRefused)
{
    const QByteArray older = "\"**PROJ\"\r\n\"*PROJ_ID\",\"*PROJ_NAME\"\r\n\"1842\",\"Canal Street\"\r\n";
    EXPECT_THAT(agsProblemsOf(older), ElementsAre("a.ags:1: this is a file of AGS 3: only AGS 4 is read"));
    const MeasuredFile unnamed = readAnyFile("a.txt"_q, older, {});
    EXPECT_EQ(unnamed.problems.lines("a.txt"_q),
              QStringList{"a.txt:1: this is a file of AGS 3: only AGS 4 is read"_q});
}

TEST(MalformedAgs, AFileMustBeginWithAGroup)
{
    EXPECT_THAT(agsProblemsOf(""), ElementsAre("a.ags:1: the file is empty; it must begin with a GROUP"));
    EXPECT_THAT(agsProblemsOf("\"HEADING\",\"PROJ_ID\"\r\n\"DATA\",\"1\"\r\n"),
                ElementsAre("a.ags:1: the file must begin with a GROUP"));
    EXPECT_THAT(agsProblemsOf("GROUP,PROJ\r\nHEADING,PROJ_ID\r\n"),
                ElementsAre("a.ags:1: a field does not stand in quotes"));
}

TEST(MalformedAgs, EveryGroupHasAHead)
{
    EXPECT_THAT(agsProblemsOf("\"GROUP\",\"PROJ\"\r\n\r\n\"GROUP\",\"TRAN\"\r\n\"HEADING\",\"TRAN_ISNO\"\r\n"
                              "\"TYPE\",\"X\"\r\n\"DATA\",\"1\"\r\n"),
                ElementsAre("a.ags:1: the group PROJ has no HEADING and no UNIT and no TYPE",
                            "a.ags:3: the group TRAN has no UNIT"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"UNIT\",\"\",\"\",\"m\",\"m\",\"m\",\"\"\r\n", "")),
                ElementsAre("a.ags:45: the group LOCA has no UNIT"));
}

TEST(MalformedAgs, RowsOfAHeadStandOnceAndAboveTheData)
{
    EXPECT_THAT(agsProblemsOf("\"GROUP\",\"A\"\n\"UNIT\",\"\"\n\"HEADING\",\"B\"\n\"HEADING\",\"C\"\n"
                              "\"TYPE\",\"X\"\n\"DATA\",\"1\"\n\"UNIT\",\"\"\n\"GROUP\"\n"),
                ElementsAre("a.ags:2: UNIT must stand below the HEADING of its group",
                            "a.ags:4: the group A has a second HEADING",
                            "a.ags:7: the group A has a second UNIT",
                            "a.ags:8: GROUP must be followed by a name, and nothing else",
                            "a.ags:8: the group  has no HEADING and no UNIT and no TYPE"));
}

TEST(MalformedAgs, NothingIsGivenTwice)
{
    EXPECT_THAT(agsProblemsOf(siteText() + "\"GROUP\",\"LOCA\"\r\n\"HEADING\",\"LOCA_ID\"\r\n"
                                           "\"UNIT\",\"\"\r\n\"TYPE\",\"ID\"\r\n"),
                ElementsAre("a.ags:81: the group LOCA stands on line 45 already"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"LOCA_NATN\"", "\"LOCA_NATE\"")),
                ElementsAre("a.ags:46: the heading LOCA_NATE is given twice"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"DATA\",\"BH102\",\"CP\"", "\"DATA\",\"BH101\",\"CP\"")),
                ElementsAre("a.ags:50: LOCA_ID \"BH101\" stands on line 49 already"));
    EXPECT_THAT(
        agsProblemsOf(
            siteWith("\"IN1\",\"IN1\",\"1.00\",\"\",\"2024", "\"IN1\",\"IN1\",\"0.5\",\"\",\"2024")),
        ElementsAre(
            "a.ags:68: LOCA_ID \"IN1\", MONG_ID \"IN1\", MONG_DIS \"0.5\" stands on line 67 already"));
}

TEST(MalformedAgs, WhatReadingsReferToMustBeThere)
{
    EXPECT_THAT(agsProblemsOf(siteWith("\"GROUP\",\"MOND\"", "\"GROUP\",\"MONX\"")),
                ElementsAre("a.ags:1: the file has no group MOND: it holds no readings"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"GROUP\",\"MONG\"", "\"GROUP\",\"PIPE\"")),
                ElementsAre("a.ags:1: the file has no group MONG, which readings refer to"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"MOND_RDNG\"", "\"MOND_RDXX\"")),
                ElementsAre("a.ags:71: the group MOND has no heading MOND_RDNG"));
    EXPECT_THAT(
        agsProblemsOf(siteWith(firstReading, "\"DATA\",\"BH9\",\"SP1\",\"10.50\",\"2024-03-28T09:15\","
                                             "\"WDEP\"")),
        ElementsAre("a.ags:74: the group LOCA has no row of LOCA_ID \"BH9\""));
    EXPECT_THAT(agsProblemsOf(
                    siteWith(firstReading, "\"DATA\",\"BH101\",\"SP1\",\"9\",\"2024-03-28T09:15\",\"WDEP\"")),
                ElementsAre("a.ags:74: the group MONG has no row of LOCA_ID \"BH101\", MONG_ID \"SP1\", "
                            "MONG_DIS \"9\""));
    FileMapping mapping = britishMapping();
    mapping.columns.insert(MeasuredColumn::Name, {"LOCA_ID/PIPE_REF"_q, 0});
    mapping.columns.insert(MeasuredColumn::Depth, {"depth"_q, 0});
    EXPECT_THAT(
        agsProblemsOf(siteText(), mapping),
        ElementsAre("a.ags:71: name is to be under \"PIPE_REF\", which is no heading of the group MOND",
                    "a.ags:71: depth is to be under \"depth\", which is no heading of the group MOND"));
}

TEST(MalformedAgs, RowsOfReadingsAreBadOneByOne)
{
    EXPECT_THAT(agsProblemsOf(siteWith("\"11.6\",\"DegC\"", "\"11.6\"")),
                ElementsAre("a.ags:75: 16 fields, but HEADING names 17"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"11.6\"", "11.6")),
                ElementsAre("a.ags:75: a field does not stand in quotes"));
    EXPECT_THAT(agsProblemsOf(siteWith("Blocked?, check", "Blocked?\r\ncheck")),
                ElementsAre("a.ags:76: a quote is not closed on its line",
                            "a.ags:77: a field does not stand in quotes"));
    EXPECT_THAT(agsProblemsOf(siteWith("Blocked?, check", "Blocked? 5\" pipe")),
                ElementsAre("a.ags:76: text follows a closing quote"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"3.405\",\"m\"", "\"3405\",\"mm\"")),
                ElementsAre("a.ags:78: the unit of WDEP is \"mm\" here, and \"m\" on line 74"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"2024-04-01T09:10\"", "\"2024-04-01\"")),
                ElementsAre("a.ags:78: the time \"2024-04-01\" has no clock, though its UNIT is "
                            "yyyy-mm-ddThh:mm"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"WDEP\",\"2\",\"Dip", "\"\",\"2\",\"Dip")),
                ElementsAre("a.ags:77: MOND_TYPE is empty"));
    EXPECT_THAT(agsProblemsOf(siteWith("\"DATA\",\"IN1\",\"IN1\",\"0.50\",\"2024-03-28",
                                       "\"DATUM\",\"IN1\",\"IN1\",\"0.50\",\"2024-03-28")),
                ElementsAre("a.ags:79: a row begins with \"DATUM\" in place of GROUP, HEADING, UNIT, TYPE or "
                            "DATA"));
}

TEST(MalformedAgs, TheSameKeyTwice)
{
    const QByteArray again = "\"DATA\",\"BH101\",\"SP1\",\"10.50\",\"2024-03-28T09:15\",\"WDEP\",\"1\",\"\","
                             "\"3.42\",\"m\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n";
    const MeasuredFile same = readAnyFile("a.ags"_q, siteText() + again, britishMapping());
    EXPECT_TRUE(same.problems.isEmpty());
    EXPECT_EQ(same.repeatedCount, 1);
    EXPECT_THAT(
        agsProblemsOf(siteText() + QByteArray(again).replace("3.42", "3.43")),
        ElementsAre("a.ags:81: BH101 at depth 10.5 has another value on line 74 for the same time and "
                    "count (3.42 there, 3.43 here)"));
}

TEST(MalformedAgs, RowsOfLocationsAndInstallationsMustBeWhole)
{
    EXPECT_THAT(
        agsProblemsOf(siteWith("\"DATA\",\"BH102\",\"SP1\",\"8.00\",\"P1\"", "\"DATA\",\"BH102\",\"SP1\"")),
        ElementsAre("a.ags:66: 5 fields, but HEADING names 7"));
}

TEST(MalformedAgs, GroupsThatAreNotReadMayHaveBadRows)
{
    EXPECT_THAT(agsProblemsOf(siteWith(projectRow, "\"DATA\",1842")), testing::IsEmpty());
}

TEST(MalformedAgs, TimesNeedAClockThatIsKnown)
{
    EXPECT_THAT(agsProblemsOf(siteText(), {}).size(), 6u);
    EXPECT_TRUE(readAnyFile("a.ags"_q, siteText(), {}).unclear.utcOffset);
}

TEST(MalformedAgs, OtherEncodingsAreNamed)
{
    const MeasuredFile file = readAnyFile("a.ags"_q,
                                          siteWith("\"DegC\"", "\"\xb0"
                                                               "C\"")
                                              .replace("\"DegC\"", "\"\xb0"
                                                                   "C\""),
                                          britishMapping());
    EXPECT_EQ(file.problems.lines("a.ags"_q), QStringList{"a.ags:75: the text is not UTF-8"_q});
    EXPECT_TRUE(file.unclear.encodings.contains("windows-1252"_q));
}
