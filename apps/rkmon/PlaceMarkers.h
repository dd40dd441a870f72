#pragma once

#include <QString>

/// The library composes addresses from templates with numbered places (QString::arg), and would take such a
/// marker in a condition's text for one of them.
namespace markers {

/// Whether part of `text` would be taken for a place: a per cent sign, perhaps an L, and a digit of any
/// script.
bool areIn(const QString& text);

/// The same pattern (regular expression) without a per cent sign in its text, when it would be taken for a
/// place.
QString keptOutOf(const QString& pattern);

/// A pattern that matches `text` and nothing else, though the service ignores case in patterns; without
/// markers.
QString exactPattern(const QString& text);

/// `text`, the value of `option`, when it can be asked for as it is; else throws a usage Failure.
QString requireNone(const QString& text, const char* option);

} // namespace markers
