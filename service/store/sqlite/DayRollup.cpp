#include "store/sqlite/DayRollup.h"

#include "store/sqlite/SampleRows.h"

#include <tuple>
#include <utility>

namespace monitorservice {

namespace {

// Columns day, time, count, offset_minutes, value, samples.
DaySummary summaryIn(const SqliteStatement& row)
{
    return {row.integer(0),   row.integer(1), static_cast<std::int32_t>(row.integer(2)),
            offsetIn(row, 3), row.real(4),    row.integer(5)};
}

std::optional<DaySummary> firstSummaryOf(SqliteStatement& statement)
{
    return statement.step() ? std::optional(summaryIn(statement)) : std::nullopt;
}

bool isBefore(const Sample& sample, const DaySummary& last)
{
    return std::tie(sample.time, sample.count) < std::tie(last.time, last.count);
}

} // namespace

void DayRollup::inserted(std::int64_t point, const DayPeriod& day, const Sample& sample)
{
    DaySummary& inserted = changeOf(point, day).inserted;
    if (inserted.samples == 0 || !isBefore(sample, inserted)) {
        inserted = {day.day, sample.time, sample.count, sample.offsetMinutes, sample.value, inserted.samples};
    }
    ++inserted.samples;
}

void DayRollup::replaced(std::int64_t point, const DayPeriod& day, const Sample& sample)
{
    std::optional<DaySummary>& replaced = changeOf(point, day).replaced;
    if (!replaced || !isBefore(sample, *replaced)) {
        replaced = {day.day, sample.time, sample.count, sample.offsetMinutes, sample.value, 0};
    }
}

void DayRollup::removed(std::int64_t point, const DayPeriod& day)
{
    changeOf(point, day).hasRemoved = true;
}

void DayRollup::write()
{
    if (!m_change) {
        return;
    }
    const Change change = *std::exchange(m_change, std::nullopt);
    if (change.hasRemoved) {
        recount(change.point, change.day);
        return;
    }
    if (change.inserted.samples > 0) {
        add(change.point, change.inserted);
    }
    // What was inserted may have been replaced since.
    if (change.replaced) {
        correct(change.point, *change.replaced);
    }
}

void DayRollup::visit(std::int64_t point, std::int64_t first, std::int64_t last,
                      const Measurements::DayVisitor& visitor)
{
    write();
    SqliteStatement statement =
        m_connection.statement("SELECT day, time, count, offset_minutes, value, samples FROM day_rollup "
                               "WHERE point = ? AND day BETWEEN ? AND ? ORDER BY day");
    statement.bind(point, first, last);
    while (statement.step()) {
        m_connection.show(visitor, summaryIn(statement));
    }
}

std::optional<DaySummary> DayRollup::latestBefore(std::int64_t point, std::int64_t day)
{
    write();
    SqliteStatement statement =
        m_connection.statement("SELECT day, time, count, offset_minutes, value, samples FROM day_rollup "
                               "WHERE point = ? AND day < ? ORDER BY day DESC LIMIT 1");
    statement.bind(point, day);
    return firstSummaryOf(statement);
}

std::optional<DaySummary> DayRollup::earliestAfter(std::int64_t point, std::int64_t day)
{
    write();
    SqliteStatement statement =
        m_connection.statement("SELECT day, time, count, offset_minutes, value, samples FROM day_rollup "
                               "WHERE point = ? AND day > ? ORDER BY day LIMIT 1");
    statement.bind(point, day);
    return firstSummaryOf(statement);
}

DayRollup::Change& DayRollup::changeOf(std::int64_t point, const DayPeriod& day)
{
    if (m_change && (m_change->point != point || m_change->day.day != day.day)) {
        write();
    }
    if (!m_change) {
        m_change = Change{point, day, {}, std::nullopt, false};
    }
    return *m_change;
}

void DayRollup::add(std::int64_t point, const DaySummary& inserted)
{
    SqliteStatement statement = m_connection.statement(
        "INSERT INTO day_rollup AS held (point, day, time, count, offset_minutes, value, samples) "
        "VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT (point, day) DO UPDATE SET "
        "samples = held.samples + excluded.samples, (time, count, offset_minutes, value) = "
        "(SELECT held.time, held.count, held.offset_minutes, held.value "
        "WHERE (held.time, held.count) > (excluded.time, excluded.count) UNION ALL "
        "SELECT excluded.time, excluded.count, excluded.offset_minutes, excluded.value LIMIT 1)");
    statement.bind(point, inserted.day, inserted.time, std::int64_t{inserted.count},
                   offsetColumn(inserted.offsetMinutes), inserted.value, inserted.samples);
    statement.run();
}

// Only the last sample of the day matters.
void DayRollup::correct(std::int64_t point, const DaySummary& replaced)
{
    m_connection
        .statement("UPDATE day_rollup SET value = ? WHERE point = ? AND day = ? AND time = ? AND count = ?")
        .bind(replaced.value, point, replaced.day, replaced.time, std::int64_t{replaced.count})
        .run();
}

void DayRollup::recount(std::int64_t point, const DayPeriod& day)
{
    m_connection.statement("DELETE FROM day_rollup WHERE point = ? AND day = ?").bind(point, day.day).run();
    m_connection
        .statement("INSERT INTO day_rollup (point, day, time, count, offset_minutes, value, samples) "
                   "SELECT point, ?2, time, count, offset_minutes, value, "
                   "(SELECT count(*) FROM samples WHERE point = ?1 AND time >= ?3 AND time < ?4) "
                   "FROM samples WHERE point = ?1 AND time >= ?3 AND time < ?4 "
                   "ORDER BY time DESC, count DESC LIMIT 1")
        .bind(point, day.day, day.from, day.before)
        .run();
}

} // namespace monitorservice
