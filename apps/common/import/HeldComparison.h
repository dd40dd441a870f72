#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/ImportOutcome.h"

#include <optional>

/// What would become of the samples of `files`, judged as the service does: one that is held with the same
/// time, count, value and flag is unchanged, one with another value or flag is corrected. `known` are
/// those of their points that the service has; only of these samples are read, in the period of the files.
/// Nothing where it cannot be told which sub-category a point held is of, as may be on a service that does
/// not tell.
std::optional<SampleOutcome> compareWithHeld(ServiceSession& session, const QList<PlacedFile>& files,
                                             const QSet<PointKey>& known);
