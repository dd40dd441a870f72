#pragma once

#include <QString>

/// Whether `text` is an identifier as the service gives it: 24 hexadecimal digits.
bool isIdentifier(const QString& text);
