#include "Period.h"

#include "CommandOptions.h"
#include "Failure.h"

#include <RKPub.h>

namespace {

// A day of the local zone, or its midnight in another one.
QDateTime dayOf(const QString& text)
{
    constexpr int dayLength = 10; // YYYY-MM-DD
    const QDateTime day = RKPub::getDateTimeByQString(text);
    const bool isDate = text.size() == dayLength;
    const bool isMidnight = day.timeSpec() != Qt::LocalTime && day.time() == QTime(0, 0);
    if (!day.isValid() || !(isDate || isMidnight)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("--until: \"%1\" is not a day; give one like 2026-03-31, or "
                                     "its midnight with an offset, as 2026-03-31T00:00:00+01:00")
                          .arg(text));
    }
    return day;
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

void restrictTo(const Period& period, RKTimePeriod& condition)
{
    if (period.since.isEmpty() && period.until.isEmpty()) {
        return;
    }
    // A period has two ends; an open one reaches beyond everything.
    constexpr int lastYear = 9999;
    condition.isAllTime = false;
    condition.startTime =
        period.since.isEmpty() ? QDateTime::fromMSecsSinceEpoch(0, Qt::UTC) : timeOf(period.since, "--since");
    condition.endTime = period.until.isEmpty() ? QDateTime(QDate(lastYear, 12, 30), QTime(0, 0), Qt::UTC)
                                               : dayOf(period.until);
    if (condition.startTime >= condition.endTime.addDays(1)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("--since %1 is after --until %2").arg(period.since, period.until));
    }
}
