#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/ImportNote.h"

#include <QSet>

/// Sets the initial values of `points`, which have just been made, to 0: a delivery says none with 0. Where
/// the service cannot do that, a warning says what their variations count from instead. Setting them again is
/// harmless.
void setZeroInitialValues(ServiceSession& session, const QSet<PointKey>& points, const ImportNotes& notes);
