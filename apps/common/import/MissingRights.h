#pragma once

#include "ServiceSession.h"

#include <QSet>
#include <QString>
#include <QStringList>

/// Why the token may not deliver to monitorings of `categories`, a sentence for each right that it lacks:
/// it must be permitted to create and, when samples that are held get other values, to edit.
QStringList missingRights(ServiceSession& session, const QSet<QString>& categories, bool corrects);
