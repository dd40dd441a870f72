#include "store/sqlite/SqliteExcesses.h"

namespace monitorservice {

void SqliteExcesses::show(SqliteStatement& statement, const Visitor& visitor) const
{
    while (statement.step()) {
        m_connection.show(visitor, ReadingInExcess{statement.integer(0),
                                                   static_cast<std::int32_t>(statement.integer(1)),
                                                   statement.text(2)});
    }
}

void SqliteExcesses::visit(std::int64_t point, Instant from, Instant before, const Visitor& visitor) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT time, count, alarm FROM excesses WHERE point = ? AND time >= ? AND "
                               "time < ? ORDER BY time, count");
    show(statement.bind(point, from, before), visitor);
}

void SqliteExcesses::visitOfAlarm(std::int64_t point, const std::string& alarm, const Visitor& visitor) const
{
    SqliteStatement statement = m_connection.statement(
        "SELECT time, count, alarm FROM excesses WHERE alarm = ? AND point = ? ORDER BY time, count");
    show(statement.bind(alarm, point), visitor);
}

// Most points have no excess at their latest time: only for those that have is the count looked up.
std::vector<std::string> SqliteExcesses::openAlarms(const std::string& project) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT DISTINCT e.alarm FROM point_locations AS p JOIN excesses AS e "
                               "ON e.point = p.point AND e.time = p.last_time WHERE p.project = ? AND "
                               "e.count = (SELECT max(s.count) FROM samples AS s WHERE s.point = e.point "
                               "AND s.time = e.time) ORDER BY e.alarm");
    statement.bind(project);
    std::vector<std::string> alarms;
    while (statement.step()) {
        alarms.push_back(statement.text(0));
    }
    return alarms;
}

void SqliteExcesses::insert(std::int64_t point, const ReadingInExcess& reading)
{
    m_connection.statement("INSERT INTO excesses (point, time, count, alarm) VALUES (?, ?, ?, ?)")
        .bind(point, reading.time, std::int64_t{reading.count}, reading.alarm)
        .run();
}

void SqliteExcesses::remove(std::int64_t point, Instant time, std::int32_t count)
{
    m_connection.statement("DELETE FROM excesses WHERE point = ? AND time = ? AND count = ?")
        .bind(point, time, std::int64_t{count})
        .run();
}

} // namespace monitorservice
