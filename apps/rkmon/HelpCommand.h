#pragma once

#include <QString>
#include <QStringList>

namespace CLI {
class App;
}

/// Adds "help [WORD...]"; the words are put into `words`.
CLI::App& addHelpCommand(CLI::App& root, QStringList& words);

/// What `words` ask for: the help of a command, or a topic. Throws a Failure (BadInput) for what is neither.
QString helpOn(const CLI::App& root, const QStringList& words);
