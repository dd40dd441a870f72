#pragma once

#include "alarm/NamedPoints.h"
#include "domain/AlarmDepth.h"
#include "time/LocalDays.h"

#include <vector>

namespace monitorservice {

/// The total variation at each depth of a point name, as of the measurement that a detail tells of: the
/// reading of the same time and count, or the last one by that day where a depth was not measured with it.
/// Depths that were not measured by then are left out.
std::vector<AlarmDepth> depthsOf(const Session& session, LocalDays& days, const AlarmDetail& detail,
                                 const std::vector<std::shared_ptr<const JudgedPoint>>& points);

/// Makes these the depths of the detail, which is stored. Gives whether anything changed.
bool replaceDepths(Session& session, const std::string& project, const std::string& detail,
                   std::vector<AlarmDepth> depths);

} // namespace monitorservice
