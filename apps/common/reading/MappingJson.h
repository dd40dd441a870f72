#pragma once

#include "reading/FileMapping.h"

#include <QJsonObject>

/// What `mapping` says of files that differ from one another only in their readings, as readFileMapping()
/// takes it: columns, constants, types, times, the sheet and what is not read.
QJsonObject jsonOf(const FileMapping& mapping);
