#include "ServiceSession.h"

ServiceSession::ServiceSession(const Configuration& configuration) : m_configuration(configuration)
{
    applyConfiguration(m_configuration);
    NetworkManager::instance().setObserver([this](const NetworkExchange& exchange) {
        m_lastExchange = exchange;
        if (!m_keepsAnswer) {
            m_lastExchange->answer.clear();
        }
    });
}

ServiceSession::~ServiceSession()
{
    NetworkManager::instance().setObserver({});
}

RKMonitoringData& ServiceSession::projectData()
{
    if (m_configuration.project.isEmpty()) {
        throw missingSetting(Setting::Project);
    }
    return data();
}

void ServiceSession::requireAnswer(const QString& purpose, Repetition repetition) const
{
    if (!m_lastExchange) {
        throw Failure(FailureKind::Other, QStringLiteral("cannot %1: no request was sent").arg(purpose));
    }
    if (m_lastExchange->error != QNetworkReply::NoError) {
        throw requestFailure(*m_lastExchange,
                             {purpose, m_configuration.baseApi, m_configuration.tokenFile, repetition});
    }
}
