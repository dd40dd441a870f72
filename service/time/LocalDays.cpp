#include "time/LocalDays.h"

#include <date/tz.h>

#include <chrono>
#include <stdexcept>

namespace monitorservice {

namespace {

using std::chrono::milliseconds;

constexpr std::int64_t millisecondsPerDay = 24LL * 60 * 60 * 1000;
// The database says "for ever" with instants that milliseconds cannot hold.
constexpr Instant earliest = -100'000 * 366 * millisecondsPerDay;
constexpr Instant latest = 100'000 * 366 * millisecondsPerDay;
// No clock was ever put so far: what is farther from a change of the offset is on the wall only once.
constexpr std::int64_t farFromAJump = 2 * millisecondsPerDay;

Instant bounded(date::sys_seconds time)
{
    const std::int64_t seconds = time.time_since_epoch().count();
    if (seconds <= earliest / 1000) {
        return earliest;
    }
    return seconds >= latest / 1000 ? latest : seconds * 1000;
}

const date::time_zone* located(const std::string& name)
{
    try {
        return date::locate_zone(name);
    } catch (const std::runtime_error&) {
        throw UnknownTimeZone("the system's time zone database has no zone \"" + name + "\"");
    }
}

} // namespace

LocalDays::LocalDays(const std::string& timeZone) : m_zone(located(timeZone)) {}

DayPeriod LocalDays::periodOf(Instant instant)
{
    if (instant >= m_period.from && instant < m_period.before) {
        return m_period;
    }
    const milliseconds local(instant + offsetAt(instant));
    const std::int64_t onTheWall = date::floor<date::days>(local).count();
    const Instant next = beginOf(onTheWall + 1);
    m_period = instant < next ? DayPeriod{onTheWall, beginOf(onTheWall), next}
                              : DayPeriod{onTheWall + 1, next, beginOf(onTheWall + 2)};
    return m_period;
}

Instant LocalDays::beginOf(std::int64_t day) const
{
    const Instant expected = day * millisecondsPerDay - m_offset;
    if (expected - farFromAJump >= m_from && expected + farFromAJump < m_before) {
        return expected;
    }
    const date::local_days midnight{date::days(day)};
    return m_zone->to_sys(date::local_seconds(midnight), date::choose::earliest).time_since_epoch().count() *
           1000;
}

int LocalDays::offsetMinutesAt(Instant instant)
{
    return static_cast<int>(offsetAt(instant) / (60LL * 1000));
}

std::int64_t LocalDays::offsetAt(Instant instant)
{
    if (instant < m_from || instant >= m_before) {
        const date::sys_time<milliseconds> time{milliseconds(instant)};
        const date::sys_info info = m_zone->get_info(time);
        m_from = bounded(info.begin);
        m_before = bounded(info.end);
        m_offset = info.offset.count() * 1000;
    }
    return m_offset;
}

} // namespace monitorservice
