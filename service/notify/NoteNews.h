#pragma once

#include "store/Session.h"

#include <string>

namespace monitorservice {

/// To be called in the transaction that raises an alarm or changes its details: each recipient of its
/// monitoring, and the webhook, will be told what is new to them. Whether anything is, is found out when it
/// is sent, so that calling this once too often is harmless, and a delivery is not held up. Throws
/// StoreError, StoreFailure::Conflict among them when there is no such alarm.
void noteNews(Session& session, const std::string& alarm);

} // namespace monitorservice
