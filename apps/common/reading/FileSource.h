#pragma once

#include "reading/FileMapping.h"

#include <QByteArray>
#include <QString>

/// The table of a file as text, with the mapping that reads it.
struct FileSource
{
    QByteArray content;
    FileMapping mapping;
};

/// The content of the file at `path`; of a spreadsheet the sheet that the mapping says, as text. Throws a
/// Failure when it cannot be read.
FileSource sourceOf(const QString& path, const FileMapping& mapping);
