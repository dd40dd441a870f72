#include "store/postgres/StoredDays.h"

namespace monitorservice {

namespace {

const std::string columns =
    "SELECT s.day, s.last_time, s.last_count, s.last_offset_minutes, s.last_value, "
    "(SELECT sum(d.samples) FROM sample_segments AS d WHERE d.project_number = s.project_number AND "
    "d.point = s.point AND d.day = s.day) AS samples FROM sample_segments AS s WHERE ";

} // namespace

std::string selectDays(const std::string& conditions)
{
    return columns +
           "s.project_number = $1 AND s.point = $2 AND NOT EXISTS (SELECT 1 FROM sample_segments "
           "AS l WHERE l.project_number = s.project_number AND l.point = s.point AND "
           "l.day = s.day AND l.part > s.part) AND " +
           conditions;
}

std::string selectLatestDayBefore(const std::string& row, const std::string& day)
{
    return columns + "s.project_number = " + row + ".project_number AND s.point = " + row +
           ".point AND s.day < " + day + " ORDER BY s.day DESC, s.part DESC LIMIT 1";
}

DaySummary storedDay(const PostgresResult& rows, int row, int column)
{
    DaySummary day;
    day.day = rows.integer(row, column);
    day.time = rows.integer(row, column + 1);
    day.count = static_cast<std::int32_t>(rows.integer(row, column + 2));
    if (!rows.isNull(row, column + 3)) {
        day.offsetMinutes = static_cast<int>(rows.integer(row, column + 3));
    }
    day.value = rows.real(row, column + 4);
    day.samples = rows.integer(row, column + 5);
    return day;
}

} // namespace monitorservice
