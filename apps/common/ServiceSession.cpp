#include "ServiceSession.h"

#include "Lookup.h"
#include "extensions/ServiceExtensions.h"

#include <RKSoftCache.h>

ServiceSession::ServiceSession(const Configuration& configuration)
    : m_configuration(configuration), m_extensions(std::make_unique<ServiceExtensions>(*this))
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

QString ServiceSession::project()
{
    if (!m_configuration.projectName.isEmpty()) {
        lookUpProject();
    }
    return m_configuration.project;
}

void ServiceSession::lookUpProject()
{
    if (!m_extensions->has(Extension::Projects)) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral(
                "\"%1\" is not the identifier of a project, and the service at %2 cannot tell which "
                "project has this name (\"%3\" is not among its extensions)")
                .arg(m_configuration.projectName, m_configuration.baseApi, nameOf(Extension::Projects)));
    }
    m_configuration.project = lookup::project(*m_extensions, m_configuration.projectName).id;
    m_configuration.projectName.clear();
    GetSoftCache()->setProjectId(m_configuration.project);
}

RKMonitoringData& ServiceSession::projectData()
{
    if (project().isEmpty()) {
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
