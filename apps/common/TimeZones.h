#pragma once

#include "ServiceSession.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTimeZone>

/// The time zones that days and times without an offset are of.
namespace zones {

/// The zone of this name of the IANA time zone database. Throws a Failure (BadInput) that begins with `what`,
/// the place that the name was given in, when it is not known on this machine.
QTimeZone named(const QString& name, const QString& what);

/// The zone of the project, where its days begin; nothing where the service does not tell, or without a
/// project. Throws a Failure when it is not known on this machine.
std::optional<QTimeZone> ofProject(ServiceSession& session);

/// The zone of this machine. Throws a Failure (BadInput) when the variable TZ names one that is not known:
/// the system would silently take UTC for it.
QTimeZone ofMachine();

/// When the day begins: as a rule at midnight, but where the clocks skip that a little later.
QDateTime startOfDay(const QDate& day, const QTimeZone& zone);

} // namespace zones
