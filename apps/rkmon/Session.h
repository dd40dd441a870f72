#pragma once

#include "ExitCode.h"
#include "Output.h"
#include "ServiceSession.h"
#include "extensions/ServiceExtensions.h"

#include <QString>
#include <QStringList>

#include <functional>

/// What a command works with: the service, and the place for its result.
class Session : public ServiceSession
{
public:
    /// Writes the warnings of `configuration`.
    Session(const Configuration& configuration, Output output);

    Output& output() { return m_output; }

    /// What the service can beyond the library's operations; asked at the first use.
    ServiceExtensions& extensions() { return m_extensions; }

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
    ServiceExtensions m_extensions{*this};
    QStringList m_closingNotes;
};

/// What a subcommand does once the command line is read; returns the exit status, or throws a Failure.
using Command = std::function<ExitCode(Session&)>;
