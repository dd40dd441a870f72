#include "alarm/DecimalText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice {
namespace {

TEST(DecimalText, HasAtMostTwelveSignificantDigitsAndNoExponent)
{
    const std::vector<std::pair<double, const char*>> rows{{0, "0"},
                                                           {-0.0, "0"},
                                                           {6, "6"},
                                                           {-6.25, "-6.25"},
                                                           {1.5 - 0.9, "0.6"},
                                                           {0.9 - 1.5, "-0.6"},
                                                           {10, "10"},
                                                           {120, "120"},
                                                           {1e-7, "0.0000001"},
                                                           {0.1, "0.1"},
                                                           {99999999999.96, "100000000000"},
                                                           {123456789.123456, "123456789.123"},
                                                           {1.0 / 3, "0.333333333333"},
                                                           {2.0 / 3, "0.666666666667"},
                                                           {1e17, "100000000000000000"},
                                                           {9.9999999999996, "10"}};
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(decimalText(value), text);
    }
}

TEST(DecimalText, RoundedIsTheNumberOfTheText)
{
    for (const double value : {0.0, 1.5 - 0.9, -1.0 / 3, 1e-300, 123456789.123456, 5e-324}) {
        EXPECT_EQ(rounded(value), std::strtod(decimalText(value).c_str(), nullptr)) << value;
    }
}

TEST(DecimalText, DifferencesEndWhereTheDigitsOfTheirNumbersEnd)
{
    EXPECT_EQ(roundedDifference(100000.3 - 100000, 100000.3), 0.3);
    EXPECT_EQ(roundedDifference(7.701 - 7.7, 7.701), 0.001);
    EXPECT_EQ(roundedDifference(1e-7 - 1e-8, 1e-7), 9e-8);
    EXPECT_EQ(roundedDifference(0, 0), 0);
    EXPECT_EQ(roundedDifference(1.5, 1e300), 1.5);
    EXPECT_EQ(roundedDifference(1e-300, 1e-300), 1e-300);
    EXPECT_EQ(roundedDifference(-1e17, 1e17), -1e17);
}

TEST(DecimalText, LargestNumberIsDigitsToo)
{
    constexpr double largest = std::numeric_limits<double>::max();
    EXPECT_EQ(rounded(largest), 1.79769313486e308);
    EXPECT_EQ(rounded(-largest), -1.79769313486e308);
    EXPECT_EQ(decimalText(largest), "179769313486" + std::string(297, '0'));
}

} // namespace
} // namespace monitorservice
