#include "time/Instant.h"

#include <date/date.h>

#include <array>
#include <chrono>
#include <cstdlib>

namespace monitorservice {

namespace {

constexpr std::int64_t millisecondsPerMinute = 60'000;

// Exactly so many digits. Written by hand: a page holds a hundred thousand times.
void appendDigits(std::string& out, unsigned number, std::size_t digits)
{
    std::array<char, 4> text{};
    for (std::size_t i = digits; i > 0; --i) {
        text.at(i - 1) = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    out.append(text.data(), digits);
}

void appendYear(std::string& out, int year)
{
    if (year >= 0 && year <= 9999) {
        appendDigits(out, static_cast<unsigned>(year), 4);
    } else {
        out += std::to_string(year); // no calendar that this service reads
    }
}

} // namespace

Instant systemNow()
{
    using std::chrono::milliseconds;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<milliseconds>(now).count();
}

std::string isoText(Instant instant)
{
    return isoText(instant, std::nullopt);
}

std::string isoText(Instant instant, std::optional<int> offsetMinutes)
{
    std::string text;
    appendIsoText(text, instant, offsetMinutes);
    return text;
}

void appendIsoText(std::string& out, Instant instant, std::optional<int> offsetMinutes)
{
    using std::chrono::milliseconds;
    const date::sys_time<milliseconds> time{
        milliseconds(instant + offsetMinutes.value_or(0) * millisecondsPerMinute)};
    const auto days = date::floor<date::days>(time);
    const date::year_month_day day(days);
    const date::hh_mm_ss<milliseconds> clock(time - days);
    appendYear(out, static_cast<int>(day.year()));
    appendDigits(out += '-', static_cast<unsigned>(day.month()), 2);
    appendDigits(out += '-', static_cast<unsigned>(day.day()), 2);
    appendDigits(out += 'T', static_cast<unsigned>(clock.hours().count()), 2);
    appendDigits(out += ':', static_cast<unsigned>(clock.minutes().count()), 2);
    appendDigits(out += ':', static_cast<unsigned>(clock.seconds().count()), 2);
    appendDigits(out += '.', static_cast<unsigned>(clock.subseconds().count()), 3);
    if (!offsetMinutes) {
        out += 'Z';
        return;
    }
    const auto minutes = static_cast<unsigned>(std::abs(*offsetMinutes));
    appendDigits(out += *offsetMinutes < 0 ? '-' : '+', minutes / 60, 2);
    appendDigits(out += ':', minutes % 60, 2);
}

} // namespace monitorservice
