#include "MonitoringFilter.h"

#include "CommandOptions.h"
#include "Failure.h"

#include <RKPub.h>

#include <QRegularExpression>

namespace {

/// Whether the library would take part of `text` for a place marker of its URL templates and fill it with a
/// number (QString::arg: a per cent sign, perhaps an L, and a digit of any script).
bool holdsPlaceMarker(const QString& text)
{
    static const QRegularExpression marker(QStringLiteral("%L?\\d"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    return marker.match(text).hasMatch();
}

/// The same pattern without a per cent sign in its text, as a pattern can name the character by its code.
QString withoutPerCentSigns(const QString& pattern)
{
    const QLatin1String code("\\x25");
    QString result;
    bool isQuoted = false; // between \Q and \E
    for (int i = 0; i < pattern.size(); ++i) {
        const QChar character = pattern.at(i);
        const QChar next = i + 1 < pattern.size() ? pattern.at(i + 1) : QChar();
        if (character == QLatin1Char('%')) {
            result += isQuoted ? QStringLiteral("\\E\\x25\\Q") : QString(code);
        } else if (character == QLatin1Char('\\') && isQuoted) {
            isQuoted = next != QLatin1Char('E');
            result += character;
        } else if (character == QLatin1Char('\\') && next == QLatin1Char('%')) {
            result += code;
            ++i;
        } else if (character == QLatin1Char('\\') && !next.isNull()) {
            isQuoted = next == QLatin1Char('Q');
            result += character;
            result += next;
            ++i;
        } else {
            result += character;
        }
    }
    return result;
}

/// A pattern that matches `text` and nothing else, though the service ignores case in patterns.
QString exactPattern(const QString& text)
{
    return QStringLiteral("(?-i)\\A%1\\z").arg(withoutPerCentSigns(QRegularExpression::escape(text)));
}

QDateTime timeOf(const QString& text, const char* option)
{
    const QDateTime time = RKPub::getDateTimeByQString(text);
    if (!time.isValid())
        throw Failure(ExitCode::Usage, QStringLiteral("%1: \"%2\" is not a time; give one like 2026-03-01, "
                                                      "2026-03-01T08:00:00 or 2026-03-01T08:00:00+01:00")
                                           .arg(QLatin1String(option), text));
    return time;
}

QDateTime dayOf(const QString& text)
{
    constexpr int dayLength = 10; // YYYY-MM-DD
    const QDateTime day = RKPub::getDateTimeByQString(text);
    if (!day.isValid() || text.size() != dayLength)
        throw Failure(ExitCode::Usage,
                      QStringLiteral("--until: \"%1\" is not a day; give one like 2026-03-31").arg(text));
    return day;
}

void restrictTime(const MonitoringFilter& filter, RKMonitoringCondition& condition)
{
    if (filter.since.isEmpty() && filter.until.isEmpty())
        return;
    // A period has two ends; an open one reaches beyond every monitoring.
    constexpr int lastYear = 9999;
    condition.isAllTime = false;
    condition.startTime =
        filter.since.isEmpty() ? QDateTime::fromMSecsSinceEpoch(0, Qt::UTC) : timeOf(filter.since, "--since");
    condition.endTime = filter.until.isEmpty() ? QDateTime(QDate(lastYear, 12, 30), QTime(0, 0), Qt::UTC)
                                               : dayOf(filter.until);
    if (condition.startTime >= condition.endTime.addDays(1))
        throw Failure(ExitCode::Usage,
                      QStringLiteral("--since %1 is after --until %2").arg(filter.since, filter.until));
}

} // namespace

void addFilterOptions(CLI::App& app, MonitoringFilter& filter)
{
    CLI::Option* name = options::addText(app, "--name", filter.name,
                                         "Names that contain this regular expression, case ignored")
                            ->type_name("PATTERN");
    options::addText(app, "--exact-name", filter.exactName, "This name, letter for letter")
        ->type_name("NAME")
        ->excludes(name);
    options::addText(app, "--model", filter.model, "Linked to this model")->type_name("MODEL");
    options::addText(app, "--since", filter.since, "Created at this time or later")->type_name("TIME");
    options::addText(app, "--until", filter.until, "Created on this day or earlier")->type_name("DAY");
}

RKMonitoringCondition conditionOf(const MonitoringFilter& filter)
{
    RKMonitoringCondition condition;
    condition.name = holdsPlaceMarker(filter.name) ? withoutPerCentSigns(filter.name) : filter.name;
    if (holdsPlaceMarker(filter.exactName))
        condition.name = exactPattern(filter.exactName);
    else
        condition.exactName = filter.exactName;
    if (holdsPlaceMarker(filter.model))
        throw Failure(ExitCode::Usage,
                      QStringLiteral("--model: \"%1\" cannot be asked for, as it holds a per cent sign "
                                     "and a digit")
                          .arg(filter.model));
    condition.modelId = filter.model;
    restrictTime(filter, condition);
    return condition;
}
