#include "ags/AgsReading.h"

#include "Failure.h"
#include "ags/SiteFile.h"
#include "import/BadRowsFile.h"

#include <gmock/gmock.h>

// The readings of AGS files, as they are and with mappings; other tests have what is wrong with files.

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const QByteArray twoInstallations = "\"DATA\",\"BH101\",\"SP2\",\"4.00\",\"P2\",\"\",\"SP\",\"\"\r\n"
                                    "\"DATA\",\"BH102\",\"SP1\",\"8.00\"";

QByteArray withTwoInstallations()
{
    return siteWith("\"DATA\",\"BH102\",\"SP1\",\"8.00\"", twoInstallations);
}

// The file with its bad rows alone, as it is written for mending.
QByteArray badRowsOf(const QByteArray& content, const FileMapping& mapping = britishMapping())
{
    const MeasuredFile file = readAnyFile("a.ags"_q, content, mapping, BadRowKeeping::Rows);
    EXPECT_TRUE(file.isReadable);
    return badRowsText({&file});
}

} // namespace

TEST(AgsReading, ReadsEachTypeOfReading)
{
    const MeasuredFile file = readAnyFile("site.ags"_q, siteText(), britishMapping());
    EXPECT_THAT(agsReadingsOf(siteText()),
                ElementsAre("WDEP|BH101|10.5|2024-03-28T09:15:00.000Z|1|3.42|",
                            "WDEP|BH101|10.5|2024-04-01T09:10:00.000+01:00|1|3.405|",
                            "TEMP|BH101|10.5|2024-03-28T09:15:00.000Z|1|11.6|",
                            "WDEP|BH102|8|2024-04-01T09:40:00.000+01:00|1|7.95|",
                            "DISP|IN1|0.5|2024-03-28T11:00:00.000Z|1|1.25|",
                            "DISP|IN1|1|2024-03-28T11:00:00.000Z|1|-0.75|"));
    EXPECT_EQ(file.withoutReadingCount, 1);
    EXPECT_THAT(file.ignoredColumns, IsEmpty());
    EXPECT_EQ(file.units.value("WDEP"_q).unit, "m"_q);
    EXPECT_EQ(file.units.value("WDEP"_q).line, 74);
    EXPECT_EQ(file.units.value("DISP"_q).unit, "mm"_q);
}

TEST(AgsReading, AFileIsKnownByItsNameOrByHowItBegins)
{
    const auto readingCount = [](const char* path, const QByteArray& content) {
        return readAnyFile(QString::fromUtf8(path), content, britishMapping()).readingCount;
    };
    const QByteArray mark = "\xef\xbb\xbf";
    EXPECT_EQ(readingCount("site.txt", siteText()), 6);
    EXPECT_EQ(readingCount("site.ags", mark + siteText()), 6);
    EXPECT_EQ(readingCount("SITE.AGS", QByteArray(siteText()).replace("\r\n", "\n")), 6);
    const QByteArray table = "\"GROUP\",\"name\",\"depth\",\"time\",\"count\",\"value\"\n"
                             "\"a\",\"P1\",\"\",\"2024-03-01T08:00:00Z\",\"1\",\"2.5\"\n";
    EXPECT_EQ(readingCount("a.csv", table), 1);
}

TEST(AgsReading, AMappingSaysWhatTypesMeasure)
{
    const FileMapping mapping = readFileMapping("a.json"_q, R"({"timeZone": "Europe/London",
        "types": {"WDEP": "Water", "DISP": {"subCategory": "Tilt", "unit": "mm"}}, "ignore": ["TEMP"]})");
    const std::vector<std::string> readings = agsReadingsOf(siteText(), mapping);
    EXPECT_EQ(readings.size(), 5u);
    EXPECT_THAT(readings, Contains("Water|BH102|8|2024-04-01T09:40:00.000+01:00|1|7.95|"));
    EXPECT_THAT(readings, Contains("Tilt|IN1|1|2024-03-28T11:00:00.000Z|1|-0.75|"));
    const MeasuredFile file = readAnyFile("a.ags"_q, siteText(), mapping);
    EXPECT_EQ(file.units.keys(), QStringList{"Water"_q}) << "the unit of DISP is said";
}

TEST(AgsReading, AUnitThatIsNotThatOfTheMappingIsABadRow)
{
    FileMapping mapping = britishMapping();
    mapping.types.insert("DISP"_q, {"Tilt"_q, "m"_q});
    EXPECT_THAT(agsProblemsOf(siteText(), mapping),
                ElementsAre("a.ags:79: the unit of DISP is \"mm\" here, and \"m\" in the mapping",
                            "a.ags:80: the unit of DISP is \"mm\" here, and \"m\" in the mapping"));
}

TEST(AgsReading, NamesAreMadeOfHeadings)
{
    FileMapping mapping = britishMapping();
    mapping.columns.insert(MeasuredColumn::Name, {"LOCA_ID/MONG_ID"_q, 0});
    EXPECT_THAT(agsReadingsOf(withTwoInstallations(), mapping),
                Contains("WDEP|BH101/SP1|10.5|2024-03-28T09:15:00.000Z|1|3.42|"));
    mapping.columns.insert(MeasuredColumn::Name, {"LOCA_ID"_q, 0});
    mapping.columns.insert(MeasuredColumn::Count, {"MOND_REF"_q, 0});
    EXPECT_THAT(agsReadingsOf(withTwoInstallations(), mapping),
                Contains("WDEP|BH101|10.5|2024-04-01T09:10:00.000+01:00|2|3.405|"));
}

TEST(AgsReading, ALocationWithSeveralInstallationsIsNotGuessed)
{
    EXPECT_THAT(agsProblemsOf(withTwoInstallations()),
                ElementsAre("a.ags:72: the location \"BH101\" has several installations (\"SP1\", \"SP2\"): "
                            "how are points named?"));
    const MeasuredFile file = readAnyFile("a.ags"_q, withTwoInstallations(), britishMapping());
    EXPECT_EQ(file.unclear.names, (QStringList{"LOCA_ID/MONG_ID"_q, "MONG_ID"_q, "LOCA_ID"_q}));
    EXPECT_FALSE(file.isReadable);
}

TEST(AgsReading, ConstantsStandInPlaceOfHeadings)
{
    FileMapping mapping = britishMapping();
    mapping.constants.insert(MeasuredColumn::Depth, "3"_q);
    mapping.ignored = QStringList{"DISP"_q};
    EXPECT_THAT(agsReadingsOf(siteText(), mapping),
                Contains("WDEP|BH102|3|2024-04-01T09:40:00.000+01:00|1|7.95|"));
}

TEST(AgsReading, TimesAreWrittenAsTheUnitSays)
{
    const auto readingWith = [](const QByteArray& unit, const QByteArray& time, const FileMapping& mapping) {
        QByteArray text = siteWith("\"yyyy-mm-ddThh:mm\",\"\",\"\"", '"' + unit + "\",\"\",\"\"");
        text = text.left(text.indexOf("\"DATA\",\"BH101\",\"SP1\",\"10.50\",\"2024-03-28T09:15\""));
        text += "\"DATA\",\"BH101\",\"SP1\",\"10.50\",\"" + time +
                "\",\"WDEP\",\"1\",\"\",\"3.42\",\"m\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n";
        const std::vector<std::string> readings = agsReadingsOf(text, mapping);
        return readings.size() == 1 ? readings.front() : std::string("none");
    };
    const std::string may = "WDEP|BH101|10.5|2024-05-04T09:15:00.000+01:00|1|3.42|";
    EXPECT_EQ(readingWith("yyyy-mm-dd hh:mm", "2024-05-04 09:15", britishMapping()), may);
    EXPECT_EQ(readingWith("yyyy-mm-ddThh:mm:ss", "2024-05-04T09:15:00", britishMapping()), may);
    EXPECT_EQ(readingWith("dd/mm/yyyy hh:mm:ss", "04/05/2024 09:15:00", britishMapping()), may);
    EXPECT_EQ(readingWith("mm/dd/yyyy hh:mm", "05/04/2024 09:15", britishMapping()), may);
    const char* whole = "yyyy-mm-ddThh:mm:ss.sssZ(+hh:mm)";
    EXPECT_EQ(readingWith(whole, "2024-05-04T09:15:00.000+01:00", {}), may);
    EXPECT_EQ(readingWith(whole, "2024-05-04T09:15:00.000Z+01:00", {}), may);
    EXPECT_EQ(readingWith(whole, "2024-05-04T09:15:00.000Z(+01:00)", {}), may);
    EXPECT_EQ(readingWith(whole, "2024-05-04T08:15:00.000Z", {}),
              "WDEP|BH101|10.5|2024-05-04T08:15:00.000Z|1|3.42|");
    EXPECT_EQ(readingWith("yyyy-mm-dd", "2024-05-04", britishMapping()),
              "WDEP|BH101|10.5|2024-05-04T00:00:00.000+01:00|1|3.42|");
}

TEST(AgsReading, ANumberIsReadWithAllItsDigits)
{
    const MeasuredFile file =
        readAnyFile("a.ags"_q, siteWith("\"3.42\"", "\"0.30000000000000004\""), britishMapping());
    EXPECT_EQ(file.points.first().readings.first().sample.value, 0.30000000000000004);
}

TEST(AgsReading, WordsOfAMappingAreNoReadings)
{
    const QByteArray blocked = siteWith("\"7.95\"", "\"Blocked\"");
    EXPECT_THAT(agsProblemsOf(blocked), ElementsAre("a.ags:77: value \"Blocked\" is not a number"));
    FileMapping mapping = britishMapping();
    mapping.noReading.insert("blocked"_q);
    EXPECT_EQ(readAnyFile("a.ags"_q, blocked, mapping).withoutReadingCount, 2);
}

TEST(AgsReading, BadRowsMakeAFileThatCanBeMended)
{
    const QByteArray content = siteWith("\"7.95\"", "\"7.9.5\"");
    const QByteArray bad = badRowsOf(content);
    EXPECT_TRUE(bad.endsWith(",\"a.ags:77: value \"\"7.9.5\"\" is not a number\"\n")) << bad.toStdString();
    EXPECT_EQ(bad.count("\"DATA\",\"BH102\""), 3) << "of LOCA and MONG, and the bad one";
    EXPECT_THAT(agsReadingsOf(QByteArray(bad).replace("\"7.9.5\",", "\"7.95\",")),
                ElementsAre("WDEP|BH102|8|2024-04-01T09:40:00.000+01:00|1|7.95|"));
}

TEST(AgsReading, AMappingOfTablesIsRefused)
{
    const auto refusalOf = [](const QString& path, const QByteArray& content, const FileMapping& mapping) {
        try {
            readAnyFile(path, content, mapping);
        } catch (const Failure& failure) {
            return failure.message().toStdString();
        }
        return std::string("none");
    };
    FileMapping mapping;
    mapping.layout = TableLayout::ColumnPerPoint;
    EXPECT_EQ(
        refusalOf("a.ags"_q, siteText(), mapping),
        "a.ags is an AGS file, whose form is known: it has headings, and no layout, delimiter, lines to "
        "skip or columns by number");
    mapping = {};
    mapping.types.insert("WDEP"_q, {"Water"_q, std::nullopt});
    EXPECT_EQ(refusalOf("a.csv"_q, "name,depth,time,count,value\n", mapping),
              "a.csv is no AGS file, and types of readings are given");
}
