#pragma once

#include "ExitCode.h"
#include "Output.h"
#include "ServiceSession.h"
#include "extensions/ServiceExtensions.h"

#include <QString>
#include <QStringList>
#include <QTimeZone>

#include <functional>
#include <optional>

/// What a command works with: the service, and the place for its result.
class Session : public ServiceSession
{
public:
    /// Writes the warnings of `configuration`. Throws a Failure when it or this machine's time zone is wrong.
    Session(const Configuration& configuration, Output output);

    Output& output() { return m_output; }

    /// The zone that days, and times without an offset, are of: the project's, or this machine's where the
    /// service does not tell that, which the user is told once.
    QTimeZone zone();

    /// The same, for what may need it.
    std::function<QTimeZone()> zoneOf()
    {
        return [this] {
            return zone();
        };
    }

    /// The zone of the project; nothing where the service does not tell it.
    std::optional<QTimeZone> projectZone();

    /// The zone that times are shown in: the same, but nothing is said of it, as times name their offset.
    QTimeZone shownZone();

    /// Tells the user something on standard error, at once.
    void note(const QString& message) const;

    /// The same of something that may be wrong.
    void warn(const QString& message) const;

    /// Tells the user something after the result.
    void noteAfterwards(const QString& message) { m_closingNotes.append(message); }

    /// Writes the result, and then what is to be said after it.
    void finish();

private:
    Output m_output;
    QStringList m_closingNotes;
    QTimeZone m_machineZone;
    bool m_hasAskedForZone = false;
    bool m_hasToldOfZone = false;
    std::optional<QTimeZone> m_projectZone;
};

/// What a subcommand does once the command line is read; returns the exit status, or throws a Failure.
using Command = std::function<ExitCode(Session&)>;
