#include "Session.h"

#include "Messages.h"

Session::Session(const Configuration& configuration, OutputForm form)
    : m_configuration(configuration), m_output(form)
{
    applyConfiguration(m_configuration);
    NetworkManager::instance().setObserver(
        [this](const NetworkExchange& exchange) { m_lastExchange = exchange; });
    for (const QString& warning : qAsConst(m_configuration.warnings)) {
        note(QStringLiteral("warning: ") + warning);
    }
}

Session::~Session()
{
    NetworkManager::instance().setObserver({});
}

RKMonitoringData& Session::projectData()
{
    if (m_configuration.project.isEmpty()) {
        throw missingSetting(QStringLiteral("project"), QStringLiteral("--project"),
                             QStringLiteral("RKMON_PROJECT"), QStringLiteral("project"));
    }
    return data();
}

void Session::note(const QString& message) const
{
    writeMessage(message);
}

void Session::finish()
{
    m_output.flush();
    for (const QString& message : qAsConst(m_closingNotes)) {
        note(message);
    }
}

void Session::requireAnswer(const QString& purpose, Repetition repetition) const
{
    if (!m_lastExchange) {
        throw Failure(ExitCode::Failed, QStringLiteral("cannot %1: no request was sent").arg(purpose));
    }
    if (m_lastExchange->error != QNetworkReply::NoError) {
        throw requestFailure(*m_lastExchange,
                             {purpose, m_configuration.baseApi, m_configuration.tokenFile, repetition});
    }
}
