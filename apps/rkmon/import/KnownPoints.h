#pragma once

#include "Session.h"
#include "import/Deliveries.h"

/// Those of `points` that the service has already.
QSet<PointKey> knownPoints(Session& session, const QSet<PointKey>& points);
