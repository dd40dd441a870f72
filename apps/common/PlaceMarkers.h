#pragma once

#include <QString>

/// The library composes addresses from templates with numbered places (QString::arg), and would take such a
/// marker in a condition's text for one of them.
namespace markers {

/// Whether part of `text` would be taken for a place: a percent sign, perhaps an L, and a digit of any
/// script.
bool areIn(const QString& text);

/// The same pattern (regular expression) without a percent sign in its text, when it would be taken for a
/// place.
QString keptOutOf(const QString& pattern);

/// A pattern that matches `text` and nothing else, though the service ignores case in patterns; without
/// markers.
QString exactPattern(const QString& text);

/// `text` when it can be asked for as it is; else throws a Failure (BadInput) whose message begins with
/// `what`, the place that the user gave it in.
QString requireNone(const QString& text, const char* what);

} // namespace markers
