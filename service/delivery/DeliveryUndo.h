#pragma once

#include "delivery/Withdrawal.h"
#include "domain/DataManage.h"
#include "domain/History.h"
#include "store/Session.h"

#include <string>

namespace monitorservice {

/// Takes the latest delivery of a data manage back: the samples that it inserted go, those that it corrected
/// and the descriptions that it changed are as they were, unless they have been changed since, the points
/// that it made go, and days, alarms and history follow. Its number must be that of the latest one, and not
/// 0. The audit trail keeps what was delivered. Throws StoreError.
Withdrawal undoDelivery(Session& session, const DataManage& dataManage, const History& history,
                        const std::string& owner);

} // namespace monitorservice
