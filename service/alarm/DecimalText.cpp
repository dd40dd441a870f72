#include "alarm/DecimalText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace monitorservice {

namespace {

constexpr int significantDigits = 12;

// -d.ddddddddddde±xx
std::string_view scientific(double value, std::array<char, 32>& text)
{
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::scientific, significantDigits - 1)
                         .ptr;
    return {text.data(), static_cast<std::size_t>(end - text.data())};
}

} // namespace

std::string decimalText(double value)
{
    if (value == 0) {
        return "0";
    }
    std::array<char, 32> buffer{};
    std::string_view text = scientific(value, buffer);
    std::string decimal = value < 0 ? "-" : "";
    text.remove_prefix(decimal.size());
    const std::size_t exponentSign = text.find('e');
    const int exponent = std::atoi(text.data() + exponentSign + 1);
    std::string digits = std::string(1, text[0]) + std::string(text.substr(2, exponentSign - 2));
    digits.erase(digits.find_last_not_of('0') + 1);

    if (exponent < 0) {
        return decimal + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    }
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) {
        return decimal + digits + std::string(whole - digits.size(), '0');
    }
    return decimal + digits.insert(whole, 1, '.');
}

double rounded(double value)
{
    std::array<char, 32> buffer{};
    const std::string_view text = scientific(value, buffer);
    double result = value;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

double roundedDifference(double difference, double magnitude)
{
    const int decimals =
        magnitude > 0 ? significantDigits - 1 - static_cast<int>(std::floor(std::log10(magnitude))) : 0;
    constexpr int most = 100; // nothing that is measured is finer
    if (decimals <= 0 || decimals > most) {
        return rounded(difference);
    }
    std::array<char, most + 32> text{};
    const auto written =
        std::to_chars(text.data(), text.data() + text.size(), difference, std::chars_format::fixed, decimals);
    double result = difference;
    std::from_chars(text.data(), written.ptr, result);
    return rounded(result);
}

} // namespace monitorservice
