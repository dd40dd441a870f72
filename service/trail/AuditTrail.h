#pragma once

#include "domain/Change.h"
#include "store/Session.h"

namespace monitorservice {

/// Adds an entry to the audit trail: in the session that makes the change, so that neither comes to be
/// without the other. The caller says who it was in `author.name`; identifier and time are the session's.
/// Throws StoreError.
void record(Session& session, Change change);

/// The same of something that is there before and after: `was` has what was there as `before`, `is` has what
/// is there now as `after`. It is one entry; when the category is another now, it is one in each of the two,
/// so that nobody reads in one of them what belongs to the other.
void recordReplaced(Session& session, Change was, Change is);

} // namespace monitorservice
