#pragma once

#include <QStringList>

namespace CLI {
class App;
}

/// What may stand for the last of `words`, one suggestion each; `words` are those after the program's name
/// and the last one is being typed (it may be empty). Where only the shell or the service can tell, one word
/// says what kind of value is wanted: "@file", "@category", "@group", "@monitoring", "@profile", "@project"
/// or
/// "@sub-category".
QStringList completions(const CLI::App& root, const QStringList& words);
