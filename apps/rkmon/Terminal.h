#pragma once

#include <QString>

#include <cstdio>

/// What the standard streams are connected to.
namespace terminal {

/// Whether a person reads or types at the other end.
bool isTerminal(std::FILE* stream);

/// Columns of the terminal behind standard output: COLUMNS when set, else what the terminal says, else 80.
int width();

/// Lines of it: LINES when set, else what the terminal says, else 24.
int height();

/// Whether standard output may carry colour: a terminal that can, and NO_COLOR (https://no-color.org) unset.
bool hasColour();

/// Whether the user can be asked: standard input is typed and standard error is read by a person.
bool canAsk();

/// Asks a question on standard error; true when the answer is y or yes. Anything else, and no answer, is no.
bool confirm(const QString& question);

/// Makes the console show UTF-8, and a closed pipe an error of the write instead of the end of the process.
void prepareStreams();

} // namespace terminal
