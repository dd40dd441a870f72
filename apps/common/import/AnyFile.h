#pragma once

#include "reading/MappingProposal.h"
#include "reading/MeasuredFile.h"

#include <QByteArray>
#include <QString>

/// Reads `content`, the readings of a file at `path`, of any form that can be told by its name and content:
/// an AGS file or a table. Throws a Failure (BadInput) when the mapping is for files of another form.
MeasuredFile readAnyFile(const QString& path, const QByteArray& content, const FileMapping& mapping,
                         BadRowKeeping keeping = BadRowKeeping::Reasons);

/// Proposes a mapping for such a file, as proposeMapping() does for tables.
MappingProposal proposeMappingOfAny(const QString& path, const QByteArray& content, const FileMapping& given);
