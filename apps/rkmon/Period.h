#pragma once

#include <QDateTime>
#include <QString>
#include <RKTimePeriod.h>

namespace CLI {
class App;
}

/// A period as the user says it; empty texts leave an end open.
struct Period
{
    QString since;
    QString until;
};

/// Adds --since and --until; `since` and `until` say what they mean.
void addPeriodOptions(CLI::App& app, Period& period, const char* since, const char* until);

/// The time that `text` says, which was given with `option`. Throws a Failure (BadInput) when it is none.
QDateTime timeOf(const QString& text, const char* option);

/// Restricts `condition` to the period. Throws a Failure (BadInput) for a time that cannot be read.
void restrictTo(const Period& period, RKTimePeriod& condition);
