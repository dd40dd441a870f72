#pragma once

#include <QByteArray>
#include <QString>

/// All bytes of the file at `path`. Throws a Failure: BadInput when it cannot be opened, Other when it cannot
/// be read.
QByteArray contentOfFile(const QString& path);
