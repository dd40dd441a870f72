#pragma once

#include "alarm/Excess.h"
#include "domain/MonitoredQuantity.h"
#include "store/Session.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// What the variations of a point's readings are counted from; nothing while it has neither an initial value
/// nor a reading.
std::optional<double> referenceOf(const Measurements& measurements, std::int64_t point,
                                  const std::optional<double>& initialValue);

/// The points of one name that have a reference, one for each depth, by depth as text.
std::vector<std::shared_ptr<const JudgedPoint>>
namedPoints(const Session& session, const MonitoredQuantity& quantity, const std::string& name);

} // namespace monitorservice
