#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>
#include <RKTimePeriod.h>

#include <functional>

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

/// The time that `text` says, which was given with `option`: a day is when it begins, and a time without an
/// offset is one, in the zone that `zoneOf` gives. Throws a Failure (BadInput) when it is none.
QDateTime timeOf(const QString& text, const char* option, const std::function<QTimeZone()>& zoneOf);

/// Restricts `condition` to the period; its days, and its times without an offset, are of the zone that
/// `zoneOf` gives, which is only asked when there is one. Throws a Failure (BadInput) for a time that cannot
/// be read.
void restrictTo(const Period& period, const std::function<QTimeZone()>& zoneOf, RKTimePeriod& condition);
