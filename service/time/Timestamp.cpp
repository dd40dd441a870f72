#include "time/Timestamp.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace monitorservice {

namespace {

constexpr std::size_t secondsEnd = 19; // "YYYY-MM-DDThh:mm:ss"
constexpr int largestOffsetMinutes = 14 * 60;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

// The number written in `count` digits at `begin`, or -1 when they are not all digits.
int readDigits(std::string_view text, std::size_t begin, std::size_t count)
{
    if (text.size() < begin + count) {
        return -1;
    }
    int number = 0;
    for (std::size_t i = begin; i < begin + count; ++i) {
        if (!isDigit(text[i])) {
            return -1;
        }
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

int daysInMonth(int year, int month)
{
    constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return month == 2 && leapYear ? 29 : days[static_cast<std::size_t>(month) - 1];
}

// Days from 0000-03-01 of the proleptic Gregorian calendar; years are counted from March, so that a leap day
// is the last day of its year.
std::int64_t daysFromMarchZero(int year, int month, int day)
{
    const std::int64_t marchYear = month > 2 ? year : year - 1;
    const std::int64_t marchMonth = (month + 9) % 12;
    const auto floorDivide = [](std::int64_t dividend, std::int64_t divisor) {
        return dividend >= 0 ? dividend / divisor : -((divisor - 1 - dividend) / divisor);
    };
    const std::int64_t leapDays =
        floorDivide(marchYear, 4) - floorDivide(marchYear, 100) + floorDivide(marchYear, 400);
    return marchYear * 365 + leapDays + (marchMonth * 153 + 2) / 5 + day - 1;
}

// Seconds since 1970 of the date and time at the beginning of `text`, as if at offset zero.
std::optional<std::int64_t> readSeconds(std::string_view text)
{
    if (text.size() < secondsEnd || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' ||
        text[16] != ':') {
        return std::nullopt;
    }
    const int year = readDigits(text, 0, 4);
    const int month = readDigits(text, 5, 2);
    const int day = readDigits(text, 8, 2);
    const int hour = readDigits(text, 11, 2);
    const int minute = readDigits(text, 14, 2);
    const int second = readDigits(text, 17, 2);
    if (year < 0 || month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month)) {
        return std::nullopt;
    }
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
        return std::nullopt;
    }
    const std::int64_t days = daysFromMarchZero(year, month, day) - daysFromMarchZero(1970, 1, 1);
    return ((days * 24 + hour) * 60 + minute) * 60 + second;
}

// Minutes east of Greenwich.
std::optional<int> readOffset(std::string_view text)
{
    if (text == "Z") {
        return 0;
    }
    if (text.empty() || (text[0] != '+' && text[0] != '-')) {
        return std::nullopt;
    }
    const bool withColon = text.size() == 6 && text[3] == ':';
    if (!withColon && text.size() != 5) {
        return std::nullopt;
    }
    const int hours = readDigits(text, 1, 2);
    const int minutes = readDigits(text, withColon ? 4 : 3, 2);
    if (hours < 0 || minutes < 0 || minutes > 59 || hours * 60 + minutes > largestOffsetMinutes) {
        return std::nullopt;
    }
    const int offset = hours * 60 + minutes;
    return text[0] == '-' ? -offset : offset;
}

} // namespace

std::optional<Timestamp> parseTimestamp(std::string_view text)
{
    const std::optional<std::int64_t> seconds = readSeconds(text);
    if (!seconds) {
        return std::nullopt;
    }

    std::string_view rest = text.substr(secondsEnd);
    std::string_view fraction;
    if (!rest.empty() && rest.front() == '.') {
        rest.remove_prefix(1);
        const auto end = std::find_if_not(rest.begin(), rest.end(), isDigit);
        fraction = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
        if (fraction.empty()) {
            return std::nullopt;
        }
        rest.remove_prefix(fraction.size());
    }
    const std::optional<int> offset = readOffset(rest);
    if (!offset) {
        return std::nullopt;
    }

    int milliseconds = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        milliseconds = milliseconds * 10 + (i < fraction.size() ? fraction[i] - '0' : 0);
    }
    fraction.remove_prefix(std::min<std::size_t>(3, fraction.size()));
    while (!fraction.empty() && fraction.back() == '0') {
        fraction.remove_suffix(1);
    }
    return Timestamp{(*seconds - *offset * 60) * 1000 + milliseconds, fraction,
                     rest == "Z" ? std::nullopt : offset};
}

int compare(const Timestamp& left, const Timestamp& right)
{
    if (left.milliseconds != right.milliseconds) {
        return left.milliseconds < right.milliseconds ? -1 : 1;
    }
    // Without trailing zeros, fractional digits order as text.
    return left.finerDigits.compare(right.finerDigits);
}

} // namespace monitorservice
