#include "store/Instant.h"

#include <date/date.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace monitorservice {

namespace {

constexpr std::int64_t millisecondsPerMinute = 60'000;

} // namespace

Instant systemNow()
{
    using std::chrono::milliseconds;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<milliseconds>(now).count();
}

std::string isoText(Instant instant, std::optional<int> offsetMinutes)
{
    if (!offsetMinutes) {
        return isoText(instant);
    }
    std::string text = isoText(instant + *offsetMinutes * millisecondsPerMinute);
    const int minutes = std::abs(*offsetMinutes);
    std::array<char, 16> offset{};
    std::snprintf(offset.data(), offset.size(), "%c%02d:%02d", *offsetMinutes < 0 ? '-' : '+', minutes / 60,
                  minutes % 60);
    text.replace(text.size() - 1, 1, offset.data());
    return text;
}

std::string isoText(Instant instant)
{
    using std::chrono::milliseconds;
    const date::sys_time<milliseconds> time{milliseconds(instant)};
    const auto days = date::floor<date::days>(time);
    const date::year_month_day day(days);
    const date::hh_mm_ss<milliseconds> clock(time - days);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return text.data();
}

} // namespace monitorservice
