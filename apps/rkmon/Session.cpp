#include "Session.h"

#include "Messages.h"

#include <utility>

Session::Session(const Configuration& configuration, Output output)
    : ServiceSession(configuration), m_output(std::move(output))
{
    for (const QString& warning : configuration.warnings) {
        warn(warning);
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
