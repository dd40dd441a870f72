#pragma once

#include <QString>

/// Whether `text` is an identifier as the service gives it: 24 hexadecimal digits.
bool isIdentifier(const QString& text);

/// Whether `text` can stand for a resource in the path of a request, as identifiers of other services may.
bool canBeIdentifier(const QString& text);
