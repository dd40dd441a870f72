#pragma once

#include "domain/Sample.h"
#include "store/postgres/PostgresResult.h"

#include <string>

namespace monitorservice {

/// A statement that gives the days of a point for which the conditions hold on their last segment `s`: $1 is
/// the number of the project and $2 the point. The last sample of a day is that of its last part.
std::string selectDays(const std::string& conditions);

/// A statement that gives the latest day before the one named, of the point of a row.
std::string selectLatestDayBefore(const std::string& row, const std::string& day);

/// The day whose first column is this one.
DaySummary storedDay(const PostgresResult& rows, int row, int column);

} // namespace monitorservice
