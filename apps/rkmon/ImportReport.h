#pragma once

#include "Session.h"
#include "import/PointImport.h"

/// Gives what an import did, or would do, as the command's result, and tells the user what to look at: new
/// points, corrected values, alarms, rights that are missing.
void report(Session& session, const ImportResult& result);
