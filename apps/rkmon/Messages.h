#pragma once

#include <QString>

/// Writes "rkmon: `message`" and a line end to standard error. What came from elsewhere (names, the service's
/// words) is made safe to show.
void writeMessage(const QString& message);

/// Writes `message`, which names its own source ("FILE:LINE: reason"), the same way.
void writePlainMessage(const QString& message);
