#include "domain/Identifier.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace monitorservice {

namespace {

constexpr std::size_t half = identifierLength / 2;
constexpr std::uint64_t largestHalf = (std::uint64_t{1} << 48U) - 1;

std::uint64_t hexadecimal(std::string_view digits)
{
    std::uint64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
}

} // namespace

std::string identifierAfter(std::string_view previous, Instant now)
{
    std::uint64_t milliseconds = static_cast<std::uint64_t>(std::max<Instant>(now, 0)) & largestHalf;
    std::uint64_t count = 0;
    if (!previous.empty()) {
        const std::uint64_t previousMilliseconds = hexadecimal(previous.substr(0, half));
        if (milliseconds <= previousMilliseconds) {
            milliseconds = previousMilliseconds;
            count = hexadecimal(previous.substr(half)) + 1;
            if (count > largestHalf) {
                ++milliseconds;
                count = 0;
            }
        }
    }
    std::array<char, identifierLength + 1> text{};
    std::snprintf(text.data(), text.size(), "%012llx%012llx", static_cast<unsigned long long>(milliseconds),
                  static_cast<unsigned long long>(count));
    return text.data();
}

} // namespace monitorservice
