#include "json/JsonText.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace monitorservice {
namespace {

std::string written(double number)
{
    std::string text;
    appendJsonNumber(text, number);
    return text;
}

// The reader of all stored documents.
double readBack(const std::string& text)
{
    simdjson::dom::parser parser;
    double number = std::numeric_limits<double>::quiet_NaN();
    const auto error = parser.parse(text).get(number);
    EXPECT_EQ(error, simdjson::SUCCESS) << text;
    return number;
}

TEST(JsonText, NumbersAreShort)
{
    EXPECT_EQ(written(0), "0");
    EXPECT_EQ(written(-0.0), "0");
    EXPECT_EQ(written(0.1), "0.1");
    EXPECT_EQ(written(-12.5), "-12.5");
    EXPECT_EQ(written(99999999999999984), "99999999999999984");
    EXPECT_EQ(written(1e17), "1e+17");
    EXPECT_EQ(written(18446744073709551615.0), "1.8446744073709552e+19");
    EXPECT_EQ(written(5e-324), "5e-324");
}

// Numbers of every shape: all magnitudes by their bits, whole numbers around the limits of 64 bits, decimals
// as they are measured, neighbours of powers of two and ten.
std::vector<double> numbersOfAllShapes()
{
    std::vector<double> numbers{0, std::numeric_limits<double>::max(), std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min()};
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        numbers.insert(numbers.end(), {power, std::nextafter(power, 0.0), std::nextafter(power, power * 2)});
    }
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::pow(10.0, exponent);
        numbers.insert(numbers.end(), {power, std::nextafter(power, 0.0), std::nextafter(power, power * 2)});
    }
    std::mt19937_64 random(20240301);
    for (int i = 0; i < 200'000; ++i) {
        const std::uint64_t bits = random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        numbers.push_back(number);
        numbers.push_back(static_cast<double>(bits)); // whole, up to 2^64
        numbers.push_back(std::floor(std::pow(10.0, 15 + static_cast<double>(bits % 8000) / 1000)));
        numbers.push_back(static_cast<double>(bits % 2'000'000) / 1000 - 1000);
    }
    return numbers;
}

TEST(JsonText, EveryFiniteNumberReadsBackAsTheSame)
{
    std::size_t wrong = 0;
    for (const double magnitude : numbersOfAllShapes()) {
        for (const double number : {magnitude, -magnitude}) {
            if (std::isfinite(number) && readBack(written(number)) != number) {
                ++wrong;
                ADD_FAILURE() << written(number);
            }
        }
        ASSERT_LT(wrong, 10U);
    }
}

TEST(JsonText, ControlCharactersAndQuotesAreEscaped)
{
    std::string text;
    appendJsonString(text, std::string("a\"b\\c\n\x01") + "ü");
    EXPECT_EQ(text, "\"a\\\"b\\\\c\\n\\u0001ü\"");
}

} // namespace
} // namespace monitorservice
