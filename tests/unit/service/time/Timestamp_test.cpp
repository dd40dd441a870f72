#include "time/Timestamp.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace monitorservice {
namespace {

TEST(Timestamp, ReadsInstants)
{
    struct Row
    {
        const char* text;
        std::int64_t milliseconds;
        const char* finerDigits;
    };
    const std::vector<Row> rows{
        {"1970-01-01T00:00:00Z", 0, ""},
        {"1970-01-01T00:00:00.001Z", 1, ""},
        {"1970-01-01T08:00:00+08:00", 0, ""},
        {"1970-01-01T08:00:00+0800", 0, ""},
        {"1969-12-31T19:00:00.000-05:00", 0, ""},
        {"1970-01-01T00:00:00-00:00", 0, ""},
        {"1970-01-01T05:45:00+05:45", 0, ""},
        {"1970-01-01T14:00:00+14:00", 0, ""},
        {"1969-12-31T10:00:00-1400", 0, ""},
        {"1969-12-31T23:59:59.999Z", -1, ""},
        {"1969-12-31T23:59:59.9995Z", -1, "5"},
        {"2000-02-29T00:00:00Z", 951782400000, ""},
        {"2024-03-01T12:34:56.789Z", 1709296496789, ""},
        {"2024-03-01T12:34:56.7Z", 1709296496700, ""},
        {"2024-03-01T12:34:56.78Z", 1709296496780, ""},
        {"2024-03-01T12:34:56.789000Z", 1709296496789, ""},
        {"2024-03-01T12:34:56.7890120Z", 1709296496789, "012"},
        {"2024-03-01T12:34:56.00000000000000000000000000000000000001Z", 1709296496000,
         "00000000000000000000000000000000001"},
        {"0000-01-01T00:00:00Z", -62167219200000, ""},
        {"9999-12-31T23:59:59.999Z", 253402300799999, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<Timestamp> read = parseTimestamp(row.text);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->milliseconds, row.milliseconds);
        EXPECT_EQ(read->finerDigits, row.finerDigits);
    }
}

TEST(Timestamp, RefusesEverythingElse)
{
    const std::vector<const char*> texts{
        "",
        "Z",
        "2024-03-01",
        "2024-03-01T12:34:56",
        "2024-03-01T12:34:56.789",
        "2024-03-01T12:34Z",
        "2024-03-01 12:34:56Z",
        "2024-03-01t12:34:56Z",
        "2024-03-01T12:34:56z",
        " 2024-03-01T12:34:56Z",
        "2024-03-01T12:34:56Z ",
        "2024-03-01T12:34:56ZZ",
        "2024-03-01T12:34:56Z+01:00",
        "2024-03-01T12:34:56.Z",
        "2024-03-01T12:34:56,5Z",
        "2024-03-01T12:34:56.5.5Z",
        "2024-03-01T12:34:56+08",
        "2024-03-01T12:34:56+8:00",
        "2024-03-01T12:34:56+08:0",
        "2024-03-01T12:34:56+08:000",
        "2024-03-01T12:34:56+08-00",
        "2024-03-01T12:34:56+14:01",
        "2024-03-01T12:34:56-1401",
        "2024-03-01T12:34:56+08:60",
        "2024-02-30T00:00:00Z",
        "2023-02-29T00:00:00Z",
        "1900-02-29T00:00:00Z",
        "2024-04-31T00:00:00Z",
        "2024-00-01T00:00:00Z",
        "2024-13-01T00:00:00Z",
        "2024-01-00T00:00:00Z",
        "2024-01-32T00:00:00Z",
        "2024-01-01T24:00:00Z",
        "2024-01-01T00:60:00Z",
        "2024-01-01T00:00:60Z",
        "-024-01-01T00:00:00Z",
        "+2024-01-01T00:00:00Z",
        "12024-01-01T00:00:00Z",
        "2024-1-01T00:00:00Z",
        "2024-01-01T0a:00:00Z",
        "2024-01-01T-1:00:00Z",
        "2024/01/01T00:00:00Z",
        "２０２４-01-01T00:00:00Z",
    };
    for (const char* text : texts) {
        EXPECT_FALSE(parseTimestamp(text)) << text;
    }
    EXPECT_FALSE(parseTimestamp(std::string_view("2024-03-01T12:34:56Z\0", 21)));
}

TEST(Timestamp, FollowsTheCalendarDayByDay)
{
    std::int64_t expected = -62167219200000;
    std::array<char, 64> text{};
    for (int year = 0; year <= 9999; ++year) {
        const bool leapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        const std::array<int, 12> lengths{31, leapYear ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= lengths[static_cast<std::size_t>(month) - 1]; ++day) {
                std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT00:00:00Z", year, month, day);
                const std::optional<Timestamp> read = parseTimestamp(text.data());
                ASSERT_TRUE(read) << text.data();
                ASSERT_EQ(read->milliseconds, expected) << text.data();
                expected += 24 * 60 * 60 * 1000;
            }
        }
    }
}

TEST(Timestamp, ComparesExactly)
{
    const auto position = [](const char* left, const char* right) {
        return compare(parseTimestamp(left).value(), parseTimestamp(right).value());
    };
    EXPECT_EQ(position("2024-03-01T00:00:00Z", "2024-03-01T08:00:00.000000+08:00"), 0);
    EXPECT_LT(position("2024-03-01T07:59:59.999+08:00", "2024-03-01T00:00:00Z"), 0);
    EXPECT_GT(position("2024-03-01T00:00:00.0000000001Z", "2024-03-01T00:00:00Z"), 0);
    EXPECT_LT(position("2024-03-01T00:00:00.00009Z", "2024-03-01T00:00:00.0001Z"), 0);
    EXPECT_LT(position("2024-03-01T00:00:00.0001Z", "2024-03-01T00:00:00.00011Z"), 0);
    EXPECT_LT(position("1969-12-31T23:59:59.9991Z", "1969-12-31T23:59:59.9999Z"), 0);
}

TEST(Timestamp, OffsetIsKeptBesideTheInstant)
{
    EXPECT_EQ(parseTimestamp("2024-03-01T12:34:56Z")->offsetMinutes, std::nullopt);
    EXPECT_EQ(parseTimestamp("2024-03-01T12:34:56.5+00:00")->offsetMinutes, 0);
    EXPECT_EQ(parseTimestamp("2024-03-01T12:34:56-08:00")->offsetMinutes, -480);
    EXPECT_EQ(parseTimestamp("2024-03-01T12:34:56+0545")->offsetMinutes, 345);
}

} // namespace
} // namespace monitorservice
