#include "Session.h"

#include "Messages.h"

Session::Session(const Configuration& configuration, OutputForm form)
    : ServiceSession(configuration), m_output(form)
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
    for (const QString& message : qAsConst(m_closingNotes)) {
        note(message);
    }
}
