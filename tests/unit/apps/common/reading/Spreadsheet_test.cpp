#include "reading/Spreadsheet.h"

#include "Failure.h"
#include "FileContent.h"
#include "Text.h"
#include "reading/FileSource.h"
#include "reading/MappingProposal.h"
#include "reading/MeasuredText.h"

#include <gmock/gmock.h>

// Spreadsheets as offices keep them: titles above the table, empty rows, formulas, dates as days.

namespace {

using testing::ElementsAre;

const QString files = QStringLiteral(RK_READING_FILES "/");

std::string refusalOf(const QByteArray& content, const QString& sheet = QString())
{
    try {
        readSheet("a.xlsx"_q, content, sheet);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return failure.message().toStdString();
    }
    return "none";
}

FileMapping columnPerPoint(const char* sheet = "")
{
    FileMapping mapping;
    mapping.layout = TableLayout::ColumnPerPoint;
    mapping.columns.insert(MeasuredColumn::Time, {"Zeit"_q, 0});
    mapping.utcOffset = 3600;
    mapping.sheet = QString::fromUtf8(sheet);
    return mapping;
}

std::vector<std::string> readingsOfSheet(const char* file, const FileMapping& mapping)
{
    const FileSource source = sourceOf(files + QString::fromUtf8(file), mapping);
    return readingsOf(source.content, source.mapping);
}

} // namespace

TEST(Spreadsheet, ASheetIsTextLineByLine)
{
    const SheetText sheet = readSheet("a.xlsx"_q, contentOfFile(files + "settlement.xlsx"_q), QString());
    EXPECT_EQ(sheet.utf8.toStdString(), "Settlement of the north wall\t\t\n"
                                        "\n"
                                        "Zeit\tP1\t\"P2, \"\"upper\"\"\"\n"
                                        "45352.333333333336\t1.5\t3\n"
                                        "45353.333333333336\t0.1\t\n"
                                        "45354.34374999999\t\t1000000\n");
    EXPECT_THAT(sheet.days, ElementsAre(TimeFormat::Excel1900));
}

TEST(Spreadsheet, IsReadAsItsMappingSays)
{
    FileMapping mapping = columnPerPoint();
    mapping.skippedLines = 1;
    EXPECT_THAT(readingsOfSheet("settlement.xlsx", mapping),
                ElementsAre("P1||2024-03-01T08:00:00.000+01:00|1|1.5|",
                            "P1||2024-03-02T08:00:00.000+01:00|1|0.1|",
                            "P2, \"upper\"||2024-03-01T08:00:00.000+01:00|1|3|",
                            "P2, \"upper\"||2024-03-03T08:15:00.000+01:00|1|1e+06|"));
}

TEST(Spreadsheet, TheWorkbookSaysHowItCountsDays)
{
    EXPECT_THAT(readingsOfSheet("two-sheets.xlsx", columnPerPoint("First")),
                ElementsAre("P1||2024-03-01T12:00:00.000+01:00|1|1|"));
    EXPECT_THAT(readingsOfSheet("two-sheets.xlsx", columnPerPoint("Second")),
                ElementsAre("P1||2024-03-13T08:00:00.000+01:00|1|2.5|"));
}

TEST(Spreadsheet, SeveralSheetsAreNamedAndNoneIsTaken)
{
    const QByteArray content = contentOfFile(files + "two-sheets.xlsx"_q);
    EXPECT_EQ(refusalOf(content),
              "a.xlsx: several sheets hold something: \"First\", \"Second\"; say which sheet it is");
    EXPECT_EQ(refusalOf(content, "Third"_q), "a.xlsx: there is no sheet \"Third\"");
    EXPECT_EQ(refusalOf(content, "First"_q), "none");
}

TEST(Spreadsheet, RefusesWhatIsNone)
{
    const QByteArray content = contentOfFile(files + "settlement.xlsx"_q);
    EXPECT_TRUE(isSpreadsheet(content));
    EXPECT_FALSE(isSpreadsheet("name,depth,time,count,value\n"));
    for (const int size : {4, 100, content.size() / 2, content.size() - 1}) {
        EXPECT_NE(refusalOf(content.left(size)), "none") << size;
    }
}

TEST(Spreadsheet, TextsThatWouldBeLostAreRefused)
{
    for (const char* file : {"text-in-cells.xlsx", "pronunciation.xlsx"}) {
        EXPECT_EQ(refusalOf(contentOfFile(files + QString::fromUtf8(file))),
                  "a.xlsx: it holds texts within its cells, or with their pronunciation, which cannot be "
                  "read; save "
                  "its sheet as CSV")
            << file;
    }
}

TEST(Spreadsheet, AMappingIsProposedForASheet)
{
    FileMapping given;
    given.sheet = "First"_q;
    const FileSource source = sourceOf(files + "two-sheets.xlsx"_q, given);
    const MappingProposal proposal = proposeMapping("a.xlsx"_q, source.content, source.mapping);
    const FileMapping mapping = readFileMapping("a.json"_q, proposal.json);
    EXPECT_EQ(mapping.sheet, "First"_q);
    EXPECT_THAT(mapping.timeFormats, ElementsAre(TimeFormat::Excel1904));
    EXPECT_FALSE(mapping.delimiter);
}
