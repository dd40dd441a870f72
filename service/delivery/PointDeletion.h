#pragma once

#include "alarm/Judgement.h"
#include "delivery/DeliveryTargets.h"
#include "delivery/Withdrawal.h"
#include "domain/PointLocation.h"
#include "domain/Stamp.h"
#include "query/Where.h"
#include "store/Session.h"
#include "store/StoredDocument.h"

#include <string>

namespace monitorservice {

/// Removes the point with its samples and takes its readings out of the alarms, which `judgement` writes. The
/// audit trail keeps all of them. What the data manage says of it is the caller's.
void removeWholePoint(Session& session, const DeliveryTarget& target, const StoredPoint& stored,
                      const Author& author, Judgement& judgement);

/// Removes the point with its samples, and takes its readings out of the alarms. The audit trail keeps all of
/// them. Throws StoreError and QueryError.
Withdrawal deletePoint(Session& session, const PointLocation& location, const std::string& owner);

/// Removes those samples of the point that match - objects with "count", "time", "value" and "timeFlag" - as
/// if they had not been measured: what was counted from them is judged anew. The audit trail keeps them.
/// Nothing is written when none matches.
Withdrawal deleteSamples(Session& session, const PointLocation& location, const Where& where,
                         const std::string& owner);

} // namespace monitorservice
