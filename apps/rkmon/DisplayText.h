#pragma once

#include <QString>

/// Text as a terminal shows it, in cells: East Asian wide characters take two, combining ones none (Unicode
/// Standard Annex #11).
namespace display {

/// `text` with everything that would steer the terminal or reorder the line made visible: control characters,
/// line and paragraph separators and the controls of bidirectional text become `\n`, `\t`, `\x1b`, `\u202e`.
QString escaped(const QString& text);

/// Cells that `text` takes.
int width(const QString& text);

/// `text` in at most `cells` cells; what is cut off is shown by an ellipsis. A character is never separated
/// from its combining marks.
QString truncated(const QString& text, int cells);

/// `text` with blanks up to `cells` cells.
QString padded(const QString& text, int cells);

} // namespace display
