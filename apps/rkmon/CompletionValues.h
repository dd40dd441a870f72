#pragma once

#include "Configuration.h"

#include <QString>
#include <QStringList>

/// What the words of a command line, the last of which is being typed, say of the configuration.
ConfigurationOverrides overridesIn(const QStringList& words);

/// What may stand for `typed` where `kind` is wanted, as completions() names it: names that begin with it,
/// and once something is typed identifiers, too. Asks the service of `overrides` and waits briefly. Throws a
/// Failure when that does not work.
QStringList completionValues(const ConfigurationOverrides& overrides, const QString& kind,
                             const QString& typed);
