#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/ImportNote.h"

/// Those of `points` that the service has already, in the same sub-category. Warns of one that it cannot
/// distinguish from another of the same name and depth.
QSet<PointKey> knownPoints(ServiceSession& session, const QSet<PointKey>& points, const ImportNotes& notes);
