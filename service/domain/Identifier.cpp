#include "domain/Identifier.h"

#include <algorithm>
#include <charconv>

namespace monitorservice {

namespace {

constexpr std::size_t timeDigits = 11;
constexpr std::size_t laneDigits = 3;
constexpr std::size_t countDigits = identifierLength - timeDigits - laneDigits;

std::uint64_t largest(std::size_t digits)
{
    return (std::uint64_t{1} << (4 * digits)) - 1;
}

std::uint64_t hexadecimal(std::string_view digits)
{
    std::uint64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
}

void appendHexadecimal(std::string& text, std::uint64_t value, std::size_t digits)
{
    for (std::size_t digit = digits; digit > 0; --digit) {
        text += "0123456789abcdef"[(value >> (4 * (digit - 1))) & 0xfU];
    }
}

std::string identifier(std::uint64_t milliseconds, std::uint16_t lane, std::uint64_t count)
{
    std::string text;
    text.reserve(identifierLength);
    appendHexadecimal(text, milliseconds, timeDigits);
    appendHexadecimal(text, lane, laneDigits);
    appendHexadecimal(text, count, countDigits);
    return text;
}

} // namespace

std::string identifierAfter(std::string_view previous, Instant now, std::uint16_t lane)
{
    const auto milliseconds =
        std::min(static_cast<std::uint64_t>(std::max<Instant>(now, 0)), largest(timeDigits));
    std::string next = identifier(milliseconds, lane, 0);
    if (next > previous) {
        return next;
    }
    const std::uint64_t last = hexadecimal(previous.substr(0, timeDigits));
    const std::uint64_t count = hexadecimal(previous.substr(timeDigits + laneDigits));
    const std::uint64_t ofLane = hexadecimal(previous.substr(timeDigits, laneDigits));
    if (ofLane == lane && count < largest(countDigits)) {
        return identifier(last, lane, count + 1);
    }
    return identifier(ofLane < lane ? last : last + 1, lane, 0);
}

} // namespace monitorservice
