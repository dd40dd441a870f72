#pragma once

#include "Session.h"
#include "import/Deliveries.h"

/// Those of `points` that the service has already, in the same sub-category. Warns of one that it cannot tell
/// apart from another of the same name and depth.
QSet<PointKey> knownPoints(Session& session, const QSet<PointKey>& points);
