#include "TimeZones.h"

#include "extensions/ServiceExtensions.h"

#include <QRegularExpression>

namespace zones {

namespace {

// Rules without a name as POSIX writes them in TZ: CET-1CEST, <+0330>-3:30.
bool isRule(const QString& text)
{
    static const QRegularExpression rule(
        QStringLiteral("\\A(?:[A-Za-z]{3,}|<[A-Za-z0-9+-]{3,}>)[+-]?\\d{1,2}(?::\\d{2}){0,2}\\S*\\z"));
    return rule.match(text).hasMatch();
}

bool isKnown(const QString& name)
{
    return QTimeZone::isTimeZoneIdAvailable(name.toUtf8());
}

} // namespace

QTimeZone named(const QString& name, const QString& what)
{
    if (!isKnown(name)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: \"%2\" is no time zone known on this machine; one is called like "
                                     "Europe/Vienna")
                          .arg(what, name));
    }
    return QTimeZone(name.toUtf8());
}

std::optional<QTimeZone> ofProject(ServiceSession& session)
{
    if (session.project().isEmpty() || !session.extensions().has(Extension::Projects)) {
        return std::nullopt;
    }
    return named(session.extensions().project(session.project()).timeZone,
                 QStringLiteral("the project's time zone"));
}

QTimeZone ofMachine()
{
    QString name = QString::fromUtf8(qgetenv("TZ"));
    if (name.startsWith(QLatin1Char(':'))) {
        name.remove(0, 1);
    }
    const bool isFile = name.startsWith(QLatin1Char('/'));
    if (!name.isEmpty() && !isFile && !isKnown(name) && !isRule(name)) {
        return named(name, QStringLiteral("TZ"));
    }
    return QTimeZone::systemTimeZone();
}

QDateTime startOfDay(const QDate& day, const QTimeZone& zone)
{
    return day.startOfDay(zone);
}

} // namespace zones
