#include "reading/MappingProposal.h"

#include "Failure.h"
#include "Text.h"
#include "reading/MeasuredText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

// Mappings that are proposed for files of many makers. What a file does not tell must be left out.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Proposed
{
    QJsonObject mapping;
    QByteArray json;
    std::vector<std::string> open;
};

Proposed proposedFor(const QByteArray& content, const FileMapping& given = {})
{
    const MappingProposal proposal = proposeMapping("a.csv"_q, content, given);
    Proposed proposed{QJsonDocument::fromJson(proposal.json).object(), proposal.json, {}};
    for (const QString& open : proposal.open) {
        proposed.open.push_back(open.toStdString());
    }
    return proposed;
}

std::string refusalOf(const QByteArray& content)
{
    try {
        proposeMapping("a.csv"_q, content, {});
    } catch (const Failure& failure) {
        return failure.message().toStdString();
    }
    return "none";
}

} // namespace

TEST(MappingProposal, ALoggersFileTellsAllButItsZone)
{
    const QByteArray content =
        "\"TOA5\",\"Wall_3\",\"CR6\",\"1234\",\"CR6.Std.12\",\"CPU:wall.cr6\",\"5402\",\"Table1\"\r\n"
        "\"TIMESTAMP\",\"RECORD\",\"PZ1\",\"PZ2\"\r\n\"TS\",\"RN\",\"kPa\",\"kPa\"\r\n\"\",\"\",\"Avg\","
        "\"Avg\"\r\n"
        "\"2024-03-01 08:00:00\",0,101.25,\"NAN\"\r\n\"2024-03-01 08:15:00\",1,101.5,99.75\r\n";
    Proposed proposed = proposedFor(content);
    EXPECT_EQ(proposed.mapping,
              (QJsonObject{{"delimiter"_q, "comma"_q},
                           {"skipLines"_q, 1},
                           {"skipLinesBelowHeader"_q, 2},
                           {"layout"_q, "column-per-point"_q},
                           {"columns"_q, QJsonObject{{"time"_q, "TIMESTAMP"_q}, {"count"_q, "RECORD"_q}}},
                           {"points"_q, QJsonArray{"PZ1"_q, "PZ2"_q}},
                           {"noReading"_q, QJsonArray{"nan"_q}},
                           {"timeFormat"_q, "year-month-day"_q}}))
        << proposed.json.toStdString();
    EXPECT_THAT(proposed.open, ElementsAre("timeZone or utcOffset: the times name no offset from UTC"));
    FileMapping mapping = readFileMapping("a.json"_q, proposed.json);
    mapping.utcOffset = 3600;
    EXPECT_EQ(readingsOf(content, mapping).size(), 3u);
}

TEST(MappingProposal, RowsWithTitlesOfAnotherLanguage)
{
    const QByteArray content = "Messpunkt;Datum;Uhrzeit;Tiefe [m];Messwert [mm]\n"
                               "P1;13.03.2024;08:00;2,5;0,25\nP1;14.03.2024;08:00;2,5;0,5\n";
    const Proposed proposed = proposedFor(content);
    EXPECT_EQ(proposed.mapping.value("columns"_q).toObject(), (QJsonObject{{"name"_q, "Messpunkt"_q},
                                                                           {"date"_q, "Datum"_q},
                                                                           {"clock"_q, "Uhrzeit"_q},
                                                                           {"depth"_q, "Tiefe [m]"_q},
                                                                           {"value"_q, "Messwert [mm]"_q}}));
    EXPECT_EQ(proposed.mapping.value("layout"_q), "rows"_q);
    EXPECT_EQ(proposed.mapping.value("decimal"_q), "comma"_q);
    EXPECT_EQ(proposed.mapping.value("timeFormat"_q), "day-month-year"_q);
    FileMapping mapping = readFileMapping("a.json"_q, proposed.json);
    mapping.utcOffset = 3600;
    EXPECT_THAT(readingsOf(content, mapping), ElementsAre("P1|2.5|2024-03-13T08:00:00.000+01:00|1|0.25|",
                                                          "P1|2.5|2024-03-14T08:00:00.000+01:00|1|0.5|"));
}

TEST(MappingProposal, WhatCanBeReadInSeveralWaysIsLeftOut)
{
    const Proposed proposed =
        proposedFor("name,time,value\nW1,01/03/2024 08:00,0.5\nW1,02/03/2024 08:00,0.6\n");
    EXPECT_FALSE(proposed.mapping.contains("timeFormat"_q));
    EXPECT_THAT(proposed.open, ElementsAre("timeFormat: the times may be day-month-year or month-day-year"));
    const Proposed twoValues = proposedFor("name,time,a,b\nW1,2024-03-01Z,0.5,1\nW1,2024-03-02Z,0.6,2\n");
    EXPECT_THAT(twoValues.open, testing::Contains("columns.value: it may be \"a\" or \"b\""));
}

TEST(MappingProposal, InclinometerTables)
{
    const Proposed perDepth = proposedFor("time,0.5 m,1.0 m\n2024-03-01Z,0.12,-0.5\n2024-03-02Z,0.13,\n");
    EXPECT_EQ(perDepth.mapping.value("layout"_q), "column-per-depth"_q);
    EXPECT_THAT(perDepth.open, ElementsAre("constants.name: no column holds the name of a point"));
    const Proposed perDate = proposedFor("Tiefe;13.03.2024;14.03.2024\n0,5;0,12;0,13\n1,0;-0,5;0\n");
    EXPECT_EQ(perDate.mapping.value("layout"_q), "column-per-date"_q);
    EXPECT_EQ(perDate.mapping.value("columns"_q).toObject(), (QJsonObject{{"depth"_q, "Tiefe"_q}}));
    const Proposed either = proposedFor("time,1,2\n2024-03-01Z,0.12,-0.5\n2024-03-02Z,0.13,0.1\n");
    EXPECT_FALSE(either.mapping.contains("layout"_q));
    EXPECT_THAT(either.open,
                testing::Contains("layout: the titles may be depths (column-per-depth) or points "
                                  "(column-per-point)"));
}

TEST(MappingProposal, ATableWithoutHeaderGoesByNumbers)
{
    const Proposed proposed = proposedFor("2024-03-01 08:00Z\t0.5\n2024-03-02 08:00Z\t0.6\n");
    EXPECT_EQ(proposed.mapping, (QJsonObject{{"delimiter"_q, "tab"_q},
                                             {"header"_q, false},
                                             {"layout"_q, "rows"_q},
                                             {"columns"_q, QJsonObject{{"time"_q, 1}, {"value"_q, 2}}},
                                             {"timeFormat"_q, "year-month-day"_q}}));
    EXPECT_THAT(proposed.open, ElementsAre("constants.name: no column holds the name of a point"));
}

TEST(MappingProposal, WhatIsGivenIsRepeated)
{
    FileMapping given;
    given.utcOffset = -12600;
    given.timeFormats = {TimeFormat::MonthDayYear};
    given.constants.insert(MeasuredColumn::Depth, "2.5"_q);
    given.columns.insert(MeasuredColumn::Value, {"b"_q, 0});
    given.noReading = {"leer"_q};
    const Proposed proposed =
        proposedFor("name,time,a,b\nW1,01/03/2024 08:00,0.5,1\nW1,02/03/2024 08:00,0.6,2\n", given);
    EXPECT_THAT(proposed.open, IsEmpty());
    EXPECT_EQ(proposed.mapping,
              (QJsonObject{
                  {"delimiter"_q, "comma"_q},
                  {"layout"_q, "rows"_q},
                  {"columns"_q, QJsonObject{{"name"_q, "name"_q}, {"time"_q, "time"_q}, {"value"_q, "b"_q}}},
                  {"constants"_q, QJsonObject{{"depth"_q, "2.5"_q}}},
                  {"noReading"_q, QJsonArray{"leer"_q}},
                  {"utcOffset"_q, "-03:30"_q},
                  {"timeFormat"_q, QJsonArray{"month-day-year"_q}}}))
        << proposed.json.toStdString();
}

TEST(MappingProposal, OurOwnFileNeedsNothing)
{
    const QByteArray content = "name,depth,time,count,value\nW1,20,2015-12-18T00:15:00-08:00,11653,0.26\n"
                               "T1,,2015-12-18T00:15:00Z,1,-3.5e-1\n";
    const Proposed proposed = proposedFor(content);
    EXPECT_THAT(proposed.open, IsEmpty());
    EXPECT_EQ(readingsOf(content, readFileMapping("a.json"_q, proposed.json)), readingsOf(content));
}

TEST(MappingProposal, RefusesWhatIsNoTable)
{
    EXPECT_EQ(refusalOf("a diary\nof a site\n"),
              "a.csv: no table is recognised: no lines of several fields go on to its end");
    EXPECT_EQ(refusalOf(""), "a.csv: no table is recognised: no lines of several fields go on to its end");
    EXPECT_EQ(refusalOf("\xb2\xe2,a\n1,2\n"),
              "a.csv: the text is not UTF-8; it can be read as gb18030, windows-1252");
}
