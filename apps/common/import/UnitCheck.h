#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"

#include <QList>
#include <QStringList>

/// Units that files say of their readings and that are not those of the sub-categories, or differ among
/// themselves where the service tells none: "FILE:LINE: reason". Nothing is converted. Asks the service only
/// when a file says a unit. Throws a Failure when that does not work.
QStringList unitProblems(ServiceSession& session, const QList<PlacedFile>& files);
