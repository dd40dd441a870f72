#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/ImportNote.h"

/// Those of `points` that the service has already, in the same sub-category. The service tells where it has
/// the extension PointSummaries. Elsewhere it is worked out, with a warning of a point that cannot be
/// distinguished from another one of the same name and depth.
QSet<PointKey> knownPoints(ServiceSession& session, const QSet<PointKey>& points, const ImportNotes& notes);
