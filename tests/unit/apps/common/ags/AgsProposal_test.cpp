#include "ags/AgsProposal.h"

#include "Failure.h"
#include "ags/SiteFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

// Mappings that are proposed for AGS files.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> texts(const QStringList& list)
{
    std::vector<std::string> found;
    for (const QString& text : list) {
        found.push_back(text.toStdString());
    }
    return found;
}

QJsonObject mappingOf(const MappingProposal& proposal)
{
    return QJsonDocument::fromJson(proposal.json).object();
}

} // namespace

TEST(AgsProposal, TypesAreLeftOpen)
{
    const MappingProposal proposal = proposeMappingOfAny("site.ags"_q, siteText(), {});
    EXPECT_EQ(mappingOf(proposal), QJsonObject());
    EXPECT_THAT(texts(proposal.recognised),
                ElementsAre("an AGS 4 file", "each location has one installation and is a point",
                            "the type DISP: readings in \"mm\": 2", "the type TEMP: readings in \"DegC\": 1",
                            "the type WDEP: readings in \"m\": 4"));
    EXPECT_THAT(
        texts(proposal.open),
        ElementsAre("types.DISP: its sub-category, unless that has this name or alias; or ignore it",
                    "types.TEMP: its sub-category, unless that has this name or alias; or ignore it",
                    "types.WDEP: its sub-category, unless that has this name or alias; or ignore it",
                    "timeZone or utcOffset: the times name no offset from UTC; without either they are "
                    "those of the project"));
    EXPECT_NO_THROW(readFileMapping("a.json"_q, proposal.json));
}

TEST(AgsProposal, WhatIsGivenIsRepeated)
{
    FileMapping given = britishMapping();
    given.types.insert("WDEP"_q, {"Water"_q, "m"_q});
    given.types.insert("DISP"_q, {"Tilt"_q, std::nullopt});
    given.ignored = QStringList{"TEMP"_q};
    const MappingProposal proposal = proposeMappingOfAny("site.ags"_q, siteText(), given);
    EXPECT_THAT(texts(proposal.open), IsEmpty());
    EXPECT_EQ(mappingOf(proposal),
              (QJsonObject{{"ignore"_q, QJsonArray{"TEMP"_q}},
                           {"timeZone"_q, "Europe/London"_q},
                           {"types"_q, QJsonObject{{"DISP"_q, "Tilt"_q},
                                                   {"WDEP"_q, QJsonObject{{"subCategory"_q, "Water"_q},
                                                                          {"unit"_q, "m"_q}}}}}}));
    EXPECT_EQ(agsReadingsOf(siteText(), readFileMapping("a.json"_q, proposal.json)),
              agsReadingsOf(siteText(), given));
}

TEST(AgsProposal, NamesAndWordsThatAreOpen)
{
    const QByteArray text =
        siteWith("\"7.95\"", "\"Blocked\"")
            .replace("\"DATA\",\"IN1\",\"IN1\",\"1.00\",\"\"", "\"DATA\",\"IN1\",\"IN2\",\"1.00\",\"\"");
    const MappingProposal proposal = proposeMappingOfAny("site.ags"_q, text, britishMapping());
    EXPECT_THAT(texts(proposal.open),
                testing::IsSupersetOf({"columns.name: points may be named by LOCA_ID/MONG_ID or MONG_ID or "
                                       "LOCA_ID",
                                       "noReading: \"blocked\" is no number"}));
    EXPECT_FALSE(mappingOf(proposal).contains("columns"_q));
}

TEST(AgsProposal, AMalformedFileIsRefused)
{
    try {
        proposeMappingOfAny("site.ags"_q, "\"GROUP\",\"PROJ\"\r\n", {});
        FAIL() << "nothing was refused";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.message(), "site.ags:1: the group PROJ has no HEADING and no UNIT and no TYPE"_q);
    }
}
