#pragma once

#include <QString>
#include <QStringList>

/// The candidate that `word` is most likely a slip of the keyboard for; empty when none is close.
QString closest(const QString& word, const QStringList& candidates);
