#pragma once

#include "domain/Change.h"
#include "store/Session.h"

namespace monitorservice {

/// Adds an entry to the audit trail: in the session that makes the change, so that neither comes to be
/// without the other. The caller says who it was in `author.name`; identifier and time are the session's.
/// Throws StoreError.
void record(Session& session, Change change);

} // namespace monitorservice
