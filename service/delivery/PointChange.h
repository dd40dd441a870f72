#pragma once

#include "domain/PointLocation.h"
#include "store/Session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace monitorservice {

/// What is to be changed of a point that is there; what is absent stays.
struct PointChange
{
    /// 0 is a value like any other here; nothing within: the point is to have none any more.
    std::optional<std::optional<double>> initialValue;
    std::optional<std::string> alias;
    std::optional<std::int32_t> dataType;
    std::optional<std::string> offsetDirection;
};

/// Changes the point. When its initial value is another, that is noted in the audit trail, all of its
/// readings are judged anew, and alarms are told. Gives the point as it is now, and as it was when nothing
/// changed; nothing is written then. Throws StoreError.
PointLocation changePoint(Session& session, PointLocation location, const PointChange& change,
                          const std::string& owner);

} // namespace monitorservice
