#include "Period.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "TimeZones.h"

#include <RKPub.h>

namespace {

using ZoneOf = std::function<QTimeZone()>;

// A day, YYYY-MM-DD; invalid for anything else.
QDate dayIn(const QString& text)
{
    constexpr int dayLength = 10;
    return text.size() == dayLength ? RKPub::getDateTimeByQString(text).date() : QDate();
}

// The time that a clock of the zone shows then. Throws a Failure when it skips that time.
QDateTime zonedTime(const QDateTime& clock, const QTimeZone& zone, const QString& text, const char* option)
{
    const QDateTime time(clock.date(), clock.time(), zone);
    if (time.toUTC().toTimeZone(zone).time() != clock.time()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: \"%2\" does not exist in %3, whose clocks are put forward then")
                          .arg(QLatin1String(option), text, QString::fromLatin1(zone.id())));
    }
    return time;
}

// The clock that a time without an offset shows, whatever the zone; invalid for anything else.
QDateTime clockIn(const QString& text)
{
    // Read as UTC: the zone of this machine may skip a time that the zone of the project has.
    return RKPub::getDateTimeByQString(text + QLatin1Char('Z'));
}

// When the day ends, a day earlier: the library takes the end of a period for the beginning of its last day,
// and adds the 24 hours that it has as a rule.
QDateTime endOf(const QString& text, const ZoneOf& zoneOf)
{
    if (const QDate day = dayIn(text); day.isValid()) {
        return zones::startOfDay(day.addDays(1), zoneOf()).toUTC().addDays(-1);
    }
    const QDateTime midnight = RKPub::getDateTimeByQString(text);
    const bool isMidnight =
        midnight.isValid() && midnight.timeSpec() != Qt::LocalTime && midnight.time() == QTime(0, 0);
    if (!isMidnight) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("--until: \"%1\" is not a day; give one like 2026-03-31, or "
                                     "its midnight with an offset, as 2026-03-31T00:00:00+01:00")
                          .arg(text));
    }
    return midnight;
}

} // namespace

QDateTime timeOf(const QString& text, const char* option)
{
    const QDateTime time = RKPub::getDateTimeByQString(text);
    if (!time.isValid()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: \"%2\" is not a time; give one like 2026-03-01, "
                                     "2026-03-01T08:00:00 or 2026-03-01T08:00:00+01:00")
                          .arg(QLatin1String(option), text));
    }
    return time;
}

void addPeriodOptions(CLI::App& app, Period& period, const char* since, const char* until)
{
    options::addText(app, "--since", period.since, since)->type_name("TIME");
    options::addText(app, "--until", period.until, until)->type_name("DAY");
}

QDateTime timeOf(const QString& text, const char* option, const ZoneOf& zoneOf)
{
    if (const QDate day = dayIn(text); day.isValid()) {
        return zones::startOfDay(day, zoneOf());
    }
    if (const QDateTime clock = clockIn(text); clock.isValid()) {
        return zonedTime(clock, zoneOf(), text, option);
    }
    const QDateTime time = RKPub::getDateTimeByQString(text);
    if (!time.isValid() || time.timeSpec() == Qt::LocalTime) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: \"%2\" is not a time; give one like 2026-03-01, "
                                     "2026-03-01T08:00:00 or 2026-03-01T08:00:00+01:00")
                          .arg(QLatin1String(option), text));
    }
    return time;
}

void restrictTo(const Period& period, const ZoneOf& zoneOf, RKTimePeriod& condition)
{
    if (period.since.isEmpty() && period.until.isEmpty()) {
        return;
    }
    // A period has two ends; an open one reaches beyond everything.
    constexpr int lastYear = 9999;
    condition.isAllTime = false;
    condition.startTime = period.since.isEmpty() ? QDateTime::fromMSecsSinceEpoch(0, Qt::UTC)
                                                 : timeOf(period.since, "--since", zoneOf);
    condition.endTime = period.until.isEmpty() ? QDateTime(QDate(lastYear, 12, 30), QTime(0, 0), Qt::UTC)
                                               : endOf(period.until, zoneOf);
    if (condition.startTime >= condition.endTime.addDays(1)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("--since %1 is after --until %2").arg(period.since, period.until));
    }
}
