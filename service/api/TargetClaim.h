#pragma once

#include "store/Store.h"

#include <string>

namespace monitorservice {

/// What a request needs that changes a point location or its samples: the monitoring and sub-category that it
/// is of, which it never leaves. Everything when there is no such point, which is found out in its turn.
Claim claimOfPoint(const Session& session, const std::string& point);

/// What a request needs that takes a delivery back, by the identifier of its history entry. Everything when
/// there is no such delivery.
Claim claimOfDelivery(const Session& session, const std::string& history);

} // namespace monitorservice
