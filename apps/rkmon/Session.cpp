#include "Session.h"

#include "Messages.h"
#include "TimeZones.h"

#include <utility>

Session::Session(const Configuration& configuration, Output output)
    : ServiceSession(configuration), m_output(std::move(output)), m_machineZone(zones::ofMachine())
{
    m_output.setZone([this] { return shownZone(); });
    for (const QString& warning : configuration.warnings) {
        warn(warning);
    }
}

std::optional<QTimeZone> Session::projectZone()
{
    if (!m_hasAskedForZone) {
        m_projectZone = zones::ofProject(*this);
        m_hasAskedForZone = true;
    }
    return m_projectZone;
}

QTimeZone Session::zone()
{
    if (const std::optional<QTimeZone> zone = projectZone()) {
        return *zone;
    }
    if (!m_hasToldOfZone && !project().isEmpty()) {
        note(QStringLiteral(
                 "the service does not tell the project's time zone; days are those of this machine, %1")
                 .arg(QString::fromLatin1(m_machineZone.id())));
        m_hasToldOfZone = true;
    }
    return m_machineZone;
}

QTimeZone Session::shownZone()
{
    // A result is shown even when its zone cannot be asked for: what was changed before has been changed.
    try {
        return projectZone().value_or(m_machineZone);
    } catch (const Failure&) {
        return m_machineZone;
    }
}

void Session::note(const QString& message) const
{
    writeMessage(message);
}

void Session::warn(const QString& message) const
{
    writeMessage(QStringLiteral("warning: ") + message);
}

void Session::finish()
{
    m_output.flush();
    if (m_output.hasUnusedColumns()) {
        warn(QStringLiteral("--columns chooses columns of lists, and this is none"));
    }
    for (const QString& message : qAsConst(m_closingNotes)) {
        note(message);
    }
}
