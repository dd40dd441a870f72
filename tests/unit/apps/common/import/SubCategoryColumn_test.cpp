#include "import/SubCategoryColumn.h"

#include "Failure.h"
#include "Text.h"

#include <gtest/gtest.h>

namespace {

const QByteArray header = "subCategory,name,depth,time,count,value,initialValue\n";

MeasuredFile fileOf(const QByteArray& rows)
{
    const MeasuredFile file = readMeasuredFile("a.csv"_q, rows, FileMapping());
    EXPECT_TRUE(file.problems.isEmpty()) << file.problems.lines("a.csv"_q).join("; "_q).toStdString();
    return file;
}

std::optional<QString> meaningOf(const QString& text)
{
    if (text == "SM"_q || text == "Soil moisture"_q) {
        return "s1"_q;
    }
    return text == "Rainfall"_q ? std::make_optional("s2"_q) : std::nullopt;
}

QStringList problemsOf(const QByteArray& rows)
{
    return readMeasuredFile("a.csv"_q, rows, FileMapping()).problems.lines("a.csv"_q);
}

} // namespace

TEST(SubCategoryColumn, CutsAFileByWhatItMeasures)
{
    const MeasuredFile file = fileOf(header + "SM,P1,,2026-03-01T08:00:00Z,1,2.5,\n"
                                              "Rainfall,P1,,2026-03-01T08:00:00Z,1,7,0\n"
                                              "Soil moisture,P2,,2026-03-01T08:00:00Z,1,3,1.5\n"
                                              "SM,P1,,2026-03-02T08:00:00Z,1,3.5,\n");
    QStringList badRows;
    const QList<SubCategoryPart> parts = cutBySubCategory(file, QString(), meaningOf, badRows);
    EXPECT_TRUE(badRows.isEmpty());
    ASSERT_EQ(parts.size(), 2);
    EXPECT_EQ(parts[0].subCategory, "s1"_q);
    ASSERT_EQ(parts[0].file.points.size(), 2);
    EXPECT_EQ(parts[0].file.readingCount, 3);
    EXPECT_EQ(parts[0].file.points[0].readings.size(), 2);
    EXPECT_TRUE(parts[0].file.points[0].hasInitialValue);
    EXPECT_FALSE(parts[0].file.points[0].initialValue);
    EXPECT_EQ(parts[0].file.points[1].initialValue, 1.5);
    EXPECT_EQ(parts[1].subCategory, "s2"_q);
    EXPECT_EQ(parts[1].file.points[0].initialValue, 0.0);
}

TEST(SubCategoryColumn, AFileWithoutItIsAllOfWhatIsExpected)
{
    const MeasuredFile file = fileOf("name,depth,time,count,value\nP1,,2026-03-01T08:00:00Z,1,2.5\n");
    QStringList badRows;
    const QList<SubCategoryPart> parts = cutBySubCategory(file, "s1"_q, meaningOf, badRows);
    ASSERT_EQ(parts.size(), 1);
    EXPECT_EQ(parts[0].file.readingCount, 1);
    EXPECT_FALSE(parts[0].file.points[0].hasInitialValue);
    EXPECT_THROW(cutBySubCategory(file, QString(), meaningOf, badRows), Failure);
}

TEST(SubCategoryColumn, ContradictionsAreBadRows)
{
    const MeasuredFile file = fileOf(header + "SM,P1,,2026-03-01T08:00:00Z,1,2.5,\n"
                                              "Rainfall,P1,,2026-03-01T08:00:00Z,1,7,\n"
                                              "Tilt,P1,,2026-03-01T08:00:00Z,1,7,\n");
    QStringList badRows;
    cutBySubCategory(file, "s1"_q, meaningOf, badRows);
    EXPECT_EQ(
        badRows,
        (QStringList{
            "a.csv:3: the row is of \"Rainfall\", which is another sub-category than was given for the file"_q,
            "a.csv:4: there is no sub-category \"Tilt\""_q}));
}

TEST(SubCategoryColumn, OfARowMustNotBeEmpty)
{
    EXPECT_EQ(problemsOf(header + ",P1,,2026-03-01T08:00:00Z,1,2.5,\n"),
              QStringList{"a.csv:2: the sub-category is empty"_q});
}

TEST(SubCategoryColumn, APointHasOneInitialValue)
{
    EXPECT_EQ(problemsOf(header + "SM,P1,,2026-03-01T08:00:00Z,1,2.5,1\nSM,P1,,2026-03-02T08:00:00Z,1,2.5,2\n"
                                  "SM,P1,,2026-03-03T08:00:00Z,1,2.5,x\n"),
              (QStringList{"a.csv:3: P1 has another initial value in its first row"_q,
                           "a.csv:4: initial value \"x\" is not a number"_q}));
}

TEST(SubCategoryColumn, AFileWithoutReadingsKeepsItsBadRows)
{
    MeasuredFile file = fileOf(header);
    file.badRows.rows.append({2, "bad", "reason"_q});
    QStringList badRows;
    const QList<SubCategoryPart> parts = cutBySubCategory(file, QString(), meaningOf, badRows);
    ASSERT_EQ(parts.size(), 1);
    EXPECT_EQ(parts[0].file.badRows.rows.size(), 1);
}
