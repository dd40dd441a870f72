#pragma once

#include "reading/MeasuredFile.h"

#include <QList>
#include <QString>

/// Refuses, with a Failure (BadInput), a path where a file stands already or none can be made: the bad rows
/// of an import are never written over anything.
void requireNewFile(const QString& path);

/// What a file of the bad rows of `files` holds: what stands above the rows, then the bad rows, each with its
/// reason in a further column. It can be imported as the files were, once the rows are mended. Throws a
/// Failure (BadInput) when files with bad rows differ in what stands above.
QByteArray badRowsText(const QList<const MeasuredFile*>& files);

/// Writes a new file. Throws a Failure when that does not work.
void writeNewFile(const QString& path, const QByteArray& content);
