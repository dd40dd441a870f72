#pragma once

#include "ServiceSession.h"
#include "import/ImportNote.h"
#include "reading/MeasuredFile.h"

#include <QString>

/// Reads a file of readings. Times of an AGS file that name no offset are those of the project's zone, which
/// is noted, where the mapping says no other and the service tells it. Throws a Failure when the file cannot
/// be read, or a request fails.
MeasuredFile readOnProjectClock(ServiceSession& session, const QString& path, const FileMapping& mapping,
                                BadRowKeeping keeping, const ImportNotes& notes);
