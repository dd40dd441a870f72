#include "store/postgres/PostgresExcesses.h"

namespace monitorservice {

void PostgresExcesses::visit(std::int64_t point, Instant from, Instant before, const Visitor& visitor) const
{
    show(m_connection.run("SELECT time, count, alarm FROM excesses WHERE project_number = $1 AND point = $2 "
                          "AND time >= $3 AND time < $4 ORDER BY time, count",
                          projectNumberOf(point), point, from, before),
         visitor);
}

void PostgresExcesses::visitOfAlarm(std::int64_t point, const std::string& alarm,
                                    const Visitor& visitor) const
{
    show(m_connection.run("SELECT time, count, alarm FROM excesses WHERE project_number = $1 AND alarm = $2 "
                          "AND point = $3 ORDER BY time, count",
                          projectNumberOf(point), alarm, point),
         visitor);
}

// The latest sample of a point is the last one of its last segment.
std::vector<std::string> PostgresExcesses::openAlarms(const std::string& project) const
{
    m_samples.flush();
    const PostgresResult alarms = m_connection.run(
        "SELECT DISTINCT e.alarm FROM point_locations AS p JOIN excesses AS e "
        "ON e.project_number = p.project_number AND e.point = p.point AND e.time = p.last_time "
        "WHERE p.project_number = $1 AND (e.time, e.count) = (SELECT s.last_time, s.last_count "
        "FROM sample_segments AS s WHERE s.project_number = p.project_number AND s.point = p.point "
        "ORDER BY s.day DESC, s.part DESC LIMIT 1) ORDER BY e.alarm",
        m_projects.of(project));
    return alarms.each(PostgresResult::firstText);
}

void PostgresExcesses::insert(std::int64_t point, const ReadingInExcess& reading)
{
    m_connection.post("INSERT INTO excesses (project_number, point, time, count, alarm) VALUES "
                      "($1, $2, $3, $4, $5)",
                      projectNumberOf(point), point, reading.time, reading.count, reading.alarm);
}

void PostgresExcesses::remove(std::int64_t point, Instant time, std::int32_t count)
{
    m_connection.post("DELETE FROM excesses WHERE project_number = $1 AND point = $2 AND time = $3 AND "
                      "count = $4",
                      projectNumberOf(point), point, time, count);
}

void PostgresExcesses::show(const PostgresResult& rows, const Visitor& visitor) const
{
    for (int row = 0; row < rows.rows(); ++row) {
        m_connection.show(visitor, ReadingInExcess{rows.integer(row, 0),
                                                   static_cast<std::int32_t>(rows.integer(row, 1)),
                                                   rows.text(row, 2)});
    }
}

} // namespace monitorservice
