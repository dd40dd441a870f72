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
    JudgedValue judged;
    Limits limits;
    double total;
    std::optional<double> day;
    double totalExcess;
    double dailyExcess;
};

JudgedValue reading(double initial, double latest)
{
    return {initial, latest, std::nullopt};
}

JudgedValue reading(double initial, double previous, std::int64_t daysBefore, double latest)
{
    return {initial, latest, JudgedValue::PreviousDay{previous, daysBefore}};
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
        const Variation found = variationOf(row.judged, row.limits);
        EXPECT_DOUBLE_EQ(found.total, row.total) << row.what;
        ASSERT_EQ(found.daily.has_value(), row.day.has_value()) << row.what;
        EXPECT_DOUBLE_EQ(found.daily.value_or(0), row.day.value_or(0)) << row.what;
        EXPECT_DOUBLE_EQ(found.totalExcess, row.totalExcess) << row.what;
        EXPECT_DOUBLE_EQ(found.dailyExcess, row.dailyExcess) << row.what;
        EXPECT_EQ(isOverLimit(row.judged, row.limits), row.totalExcess > 0 || row.dailyExcess > 0)
            << row.what;
    }
}

// Decimal fractions at their limit: none of them is beyond it, and the next thousandth is.
TEST(Thresholds, VariationAtItsLimitIsNotBeyondIt)
{
    for (int reference = 0; reference <= 200'000; reference += 1'379) {
        for (const int limit : {1, 10, 100, 300, 1'100, 7'700, 25'000}) {
            for (const int sign : {-1, 1}) {
                const auto value = [](int thousandths) {
                    return thousandths / 1000.0;
                };
                const JudgedValue at{value(reference), value(reference + sign * limit),
                                     JudgedValue::PreviousDay{value(reference), 1}};
                EXPECT_FALSE(isOverLimit(at, {unit, value(limit), value(limit)}))
                    << reference << ' ' << limit;
                const JudgedValue beyond{value(reference), value(reference + sign * (limit + 1)),
                                         JudgedValue::PreviousDay{value(reference), 1}};
                const Variation found = variationOf(beyond, {unit, value(limit), value(limit)});
                EXPECT_DOUBLE_EQ(found.totalExcess, 0.001) << reference << ' ' << limit;
                EXPECT_DOUBLE_EQ(found.dailyExcess, 0.001) << reference << ' ' << limit;
            }
        }
    }
}

TEST(Thresholds, PercentAtTheirLimitAreNotBeyondIt)
{
    // 3 % of 0.7 is 0.021.
    EXPECT_FALSE(isOverLimit(reading(0.7, 0.7, 1, 0.721), {percent, 3, 0}));
    EXPECT_TRUE(isOverLimit(reading(0.7, 0.7, 1, 0.7210001), {percent, 3, 0}));
}

TEST(Thresholds, LimitOfOneSideLeavesTheOtherFree)
{
    const Limits rising{unit, 2, 5, LimitSide::Rising, LimitSide::Rising};
    const Limits falling{unit, 2, 5, LimitSide::Falling, LimitSide::Falling};
    const Variation up = variationOf(reading(0, 3, 1, 6), rising);
    EXPECT_EQ(up.totalExcess, 1);
    EXPECT_EQ(up.dailyExcess, 1);
    EXPECT_FALSE(isOverLimit(reading(0, 3, 1, 6), falling));
    const Variation down = variationOf(reading(0, -3, 1, -6), falling);
    EXPECT_EQ(down.total, -6);
    EXPECT_EQ(down.totalExcess, 1);
    EXPECT_EQ(down.dailyExcess, 1);
    EXPECT_FALSE(isOverLimit(reading(0, -3, 1, -6), rising));
    const Variation percentDown =
        variationOf(reading(-100, -100, 1, -106), {percent, 5, 0, LimitSide::Falling, LimitSide::Both});
    EXPECT_EQ(percentDown.dailyExcess, 1);
}

TEST(Thresholds, ExcessHasNoDigitsThatWereNotMeasured)
{
    EXPECT_EQ(variationOf(reading(100, 105.1), {unit, 0, 5}).totalExcess, 0.1);
}

TEST(Thresholds, DailyVariationIsComparedInTheUnitOfTheValues)
{
    EXPECT_DOUBLE_EQ(inUnitOfValues(5, percent, -200), 10);
    EXPECT_DOUBLE_EQ(inUnitOfValues(5, unit, -200), 5);
}

TEST(Thresholds, ResultsStayFinite)
{
    constexpr double largest = std::numeric_limits<double>::max();
    const Variation found = variationOf(reading(-largest, -largest, 1, largest), {percent, 1, 1});
    EXPECT_TRUE(std::isfinite(found.total));
    EXPECT_TRUE(std::isfinite(*found.daily));
    EXPECT_TRUE(std::isfinite(found.totalExcess));
    EXPECT_TRUE(std::isfinite(found.dailyExcess));
    const Variation tiny = variationOf(reading(5e-324, 0, 1, 1), {percent, 1, 1e-300});
    EXPECT_TRUE(std::isfinite(*tiny.daily));
    EXPECT_TRUE(std::isfinite(tiny.dailyExcess));
}

} // namespace
} // namespace monitorservice
