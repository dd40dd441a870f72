#include "alarm/Thresholds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace monitorservice {
namespace {

constexpr DayVariationKind unit = DayVariationKind::Unit;
constexpr DayVariationKind percent = DayVariationKind::Percent;

struct Row
{
    const char* what;
    PointReading reading;
    Limits limits;
    double total;
    std::optional<double> day;
    double totalBeyond;
    double dayBeyond;
};

PointReading reading(double initial, double latest)
{
    return {initial, latest, std::nullopt};
}

PointReading reading(double initial, double previous, std::int64_t daysBefore, double latest)
{
    return {initial, latest, PointReading::PreviousDay{previous, daysBefore}};
}

TEST(Thresholds, VariationsAndWhatGoesBeyondTheLimits)
{
    const std::vector<Row> rows{
        {"total over", reading(10, 16), {unit, 0, 5}, 6, std::nullopt, 1, 0},
        {"total at the limit", reading(10, 15), {unit, 0, 5}, 5, std::nullopt, 0, 0},
        {"total falling", reading(10, 2), {unit, 0, 5}, -8, std::nullopt, 3, 0},
        {"no total limit", reading(0, 1000), {unit, 1, 0}, 1000, std::nullopt, 0, 0},
        {"day over", reading(10, 11, 1, 14), {unit, 2, 0}, 4, 3, 0, 1},
        {"day at the limit", reading(10, 11, 1, 13), {unit, 2, 0}, 3, 2, 0, 0},
        {"day falling", reading(10, 14, 1, 11), {unit, 2, 0}, 1, -3, 0, 1},
        {"no day limit", reading(10, 0, 1, 100), {unit, 0, 0}, 90, 100, 0, 0},
        {"gap of four days", reading(0, 1, 4, 13), {unit, 2, 0}, 13, 3, 0, 1},
        {"gap keeps it below", reading(0, 1, 6, 13), {unit, 2, 0}, 13, 2, 0, 0},
        {"percent over", reading(200, 210, 1, 220), {percent, 4, 0}, 20, 5, 0, 1},
        {"percent below", reading(200, 210, 1, 220), {percent, 5, 0}, 20, 5, 0, 0},
        {"percent over several days", reading(200, 210, 2, 230), {percent, 4, 0}, 30, 5, 0, 1},
        {"percent of a negative initial value", reading(-200, -210, 1, -220), {percent, 4, 0}, -20, -5, 0, 1},
        {"percent of zero", reading(0, 1, 1, 100), {percent, 1, 0}, 100, std::nullopt, 0, 0},
        {"percent of zero with a total limit",
         reading(0, 1, 1, 100),
         {percent, 1, 90},
         100,
         std::nullopt,
         10,
         0},
        {"both over", reading(0, 10, 1, 20), {unit, 4, 15}, 20, 10, 5, 6},
        {"negative limits are none", reading(0, 10, 1, 20), {unit, -4, -15}, 20, 10, 0, 0},
    };
    for (const Row& row : rows) {
        const Variation found = variationOf(row.reading, row.limits);
        EXPECT_DOUBLE_EQ(found.total, row.total) << row.what;
        ASSERT_EQ(found.day.has_value(), row.day.has_value()) << row.what;
        EXPECT_DOUBLE_EQ(found.day.value_or(0), row.day.value_or(0)) << row.what;
        EXPECT_DOUBLE_EQ(found.totalBeyond, row.totalBeyond) << row.what;
        EXPECT_DOUBLE_EQ(found.dayBeyond, row.dayBeyond) << row.what;
        EXPECT_EQ(found.isOver(), row.totalBeyond > 0 || row.dayBeyond > 0) << row.what;
    }
}

TEST(Thresholds, SeverityIsTheGreatestProportionToALimit)
{
    EXPECT_DOUBLE_EQ(variationOf(reading(0, 10, 1, 20), {unit, 4, 16}).severity, 2.5);
    EXPECT_DOUBLE_EQ(variationOf(reading(0, 10, 1, 20), {unit, 0, 16}).severity, 1.25);
    EXPECT_DOUBLE_EQ(variationOf(reading(0, 20), {}).severity, 0);
}

TEST(Thresholds, ResultsStayFinite)
{
    constexpr double largest = std::numeric_limits<double>::max();
    const Variation found = variationOf(reading(-largest, -largest, 1, largest), {percent, 1, 1});
    EXPECT_TRUE(std::isfinite(found.total));
    EXPECT_TRUE(std::isfinite(*found.day));
    EXPECT_TRUE(std::isfinite(found.totalBeyond));
    EXPECT_TRUE(std::isfinite(found.dayBeyond));
    EXPECT_TRUE(std::isfinite(found.severity));
    const Variation tiny = variationOf(reading(5e-324, 0, 1, 1), {percent, 1, 1e-300});
    EXPECT_TRUE(std::isfinite(*tiny.day));
    EXPECT_TRUE(std::isfinite(tiny.severity));
}

} // namespace
} // namespace monitorservice
