#include "reading/FileMapping.h"

#include "Failure.h"
#include "Text.h"

#include <gmock/gmock.h>

// What a mapping says of a file, and what it is refused for.

namespace {

using testing::ElementsAre;

std::string refusalOf(const QByteArray& content)
{
    try {
        requireConsistent(readFileMapping("site.json"_q, content));
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return failure.message().toStdString();
    }
    return "none";
}

} // namespace

TEST(FileMapping, SaysHowAFileIsWritten)
{
    const FileMapping mapping = readFileMapping("site.json"_q, R"({
        "layout": "column-per-point", "encoding": "gb18030", "delimiter": "semicolon", "decimal": "comma",
        "skipLines": 3, "skipLinesBelowHeader": 2,
        "columns": {"date": "Datum", "clock": 2}, "constants": {"depth": 2.5, "timeFlag": "A"},
        "points": {"P1 [mm]": "P1"}, "ignore": ["Batterie"], "noReading": ["NAN", "-9999"],
        "timeFormat": ["day-month-year", "excel-1900"], "timeZone": "Europe/Vienna",
        "doubledHour": "second"})");
    EXPECT_EQ(mapping.layout, TableLayout::ColumnPerPoint);
    EXPECT_EQ(mapping.encoding, FileEncoding::Gb18030);
    EXPECT_EQ(mapping.delimiter, ';');
    EXPECT_EQ(mapping.decimalSign, QChar(u','));
    EXPECT_EQ(mapping.skippedLines, 3);
    EXPECT_EQ(mapping.skippedBelowHeader, 2);
    EXPECT_TRUE(mapping.hasHeader);
    EXPECT_EQ(mapping.columns.value(MeasuredColumn::Date).title, "Datum"_q);
    EXPECT_EQ(mapping.columns.value(MeasuredColumn::Clock).number, 2);
    EXPECT_EQ(mapping.constants.value(MeasuredColumn::Depth), "2.5"_q);
    EXPECT_EQ(mapping.points.value("P1 [mm]"_q), "P1"_q);
    EXPECT_EQ(mapping.ignored, QStringList{"Batterie"_q});
    EXPECT_EQ(mapping.noReading, (QSet<QString>{"nan"_q, "-9999"_q}));
    EXPECT_THAT(mapping.timeFormats, ElementsAre(TimeFormat::DayMonthYear, TimeFormat::Excel1900));
    EXPECT_EQ(mapping.zone.id(), "Europe/Vienna");
    EXPECT_EQ(mapping.doubledHour, DoubledHour::Second);
    EXPECT_EQ(readFileMapping("site.json"_q, R"({"utcOffset": "-03:30"})").utcOffset, -12600);
    EXPECT_EQ(readFileMapping("site.json"_q, R"({"points": ["P1"]})").points.value("P1"_q), "P1"_q);
}

TEST(FileMapping, TypesOfReadingsHaveSubCategoriesAndUnits)
{
    const FileMapping mapping = readFileMapping("site.json"_q, R"({
        "types": {"WDEP": "Water", "\u6c34\u4f4d": {"subCategory": "Level", "unit": "m"}}})");
    EXPECT_EQ(mapping.types.value("WDEP"_q).subCategory, "Water"_q);
    EXPECT_FALSE(mapping.types.value("WDEP"_q).unit);
    EXPECT_EQ(mapping.types.value("\u6c34\u4f4d"_q).subCategory, "Level"_q);
    EXPECT_EQ(mapping.types.value("\u6c34\u4f4d"_q).unit, "m"_q);
    EXPECT_EQ(refusalOf(R"({"types": {"WDEP": 3}})"),
              "site.json: types.WDEP must be a text that is not empty");
    EXPECT_EQ(refusalOf(R"({"types": {"WDEP": {"unit": "m"}}})"),
              "site.json: types.WDEP.subCategory must be a text that is not empty");
}

TEST(FileMapping, TitlesMayBeOfAnyScript)
{
    const FileMapping mapping = readFileMapping("site.json"_q, R"({"points": {"\u6d4b\u70b9": "P1"}})");
    EXPECT_EQ(mapping.points.value("\u6d4b\u70b9"_q), "P1"_q);
}

TEST(FileMapping, NamesTheMemberThatIsWrong)
{
    const std::vector<std::pair<QByteArray, const char*>> cases{
        {"[]", "site.json: it must be an object"},
        {R"({"layout": "wide"})", "site.json: layout \"wide\" must be one of rows, column-per-point, "
                                  "column-per-depth, column-per-date"},
        {R"({"columns": {"nam": "Point"}})",
         "site.json: columns has an unknown member \"nam\"; known are name, "
         "depth, time, date, clock, count, value, timeFlag, subCategory, initialValue"},
        {R"({"columns": {"name": 0}})", "site.json: columns.name must be a title, or a number from 1"},
        {R"({"columns": {"name": 1.5}})",
         "site.json: columns.name must be a whole number that is not negative"},
        {R"({"columns": []})", "site.json: columns must be an object"},
        {R"({"constants": {"depth": "deep"}})",
         "site.json: constants.depth cannot be taken: depth \"deep\" is not a number"},
        {R"({"constants": {"value": 1}})",
         "site.json: constants.value cannot be taken: a value is measured, not constant"},
        {R"({"skipLines": -1})", "site.json: skipLines must be a whole number that is not negative"},
        {R"({"header": 1})", "site.json: header must be true or false"},
        {R"({"encoding": "ansi"})",
         "site.json: encoding \"ansi\" must be one of utf-8, utf-16le, utf-16be, gb18030, windows-1252"},
        {R"({"timeFormat": "guess"})",
         "site.json: timeFormat \"guess\" must be one of year-month-day, day-month-year, month-day-year, "
         "excel-1900, excel-1904, unix-seconds, unix-milliseconds"},
        {R"({"timeZone": "Berlin"})", "site.json: timeZone \"Berlin\" is not a zone like Europe/Berlin"},
        {R"({"utcOffset": "1"})", "site.json: utcOffset \"1\" is not an offset like +01:00"},
        {R"({"doubledHour": "both"})", "site.json: doubledHour \"both\" must be one of first, second"},
        {R"({"noReading": 9999})", "site.json: noReading must be a list"},
    };
    for (const auto& [content, refusal] : cases) {
        EXPECT_EQ(refusalOf(content), refusal) << content.toStdString();
    }
}

TEST(FileMapping, RefusesWhatContradictsItself)
{
    const std::vector<std::pair<QByteArray, const char*>> cases{
        {R"({"columns": {"name": "P"}, "constants": {"name": "W1"}})",
         "name is given both a column and a constant"},
        {R"({"columns": {"date": "D"}})", "date and clock are one time together: give both, or time"},
        {R"({"columns": {"date": "D", "clock": "C", "time": "T"}})",
         "time is given, and date and clock as well"},
        {R"({"timeZone": "Asia/Shanghai", "utcOffset": "+08:00"})",
         "a time zone and an offset from UTC are given: which one holds?"},
        {R"({"points": ["P1"]})", "points are given by title only in the layout column-per-point"},
        {R"({"layout": "column-per-point", "columns": {"name": "P"}})",
         "in the layout column-per-point no column and no constant is the name: titles and cells say it"},
        {R"({"layout": "column-per-date", "header": false})",
         "a table of the layout column-per-date has a header: its titles are data"},
        {R"({"header": false, "columns": {"name": "P"}})",
         "without a header a column is given by its number, not as \"P\""},
        {R"({"header": false, "columns": {"name": 1}})", "none"},
    };
    for (const auto& [content, refusal] : cases) {
        EXPECT_EQ(refusalOf(content), refusal) << content.toStdString();
    }
}
