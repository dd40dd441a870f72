#include "Deployment.h"

#include "MonitorService.h"
#include "Text.h"

#include <NetworkManager.h>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

namespace {

const Deployment* living = nullptr;

constexpr int failed = 1;
constexpr int wrongSetting = 2;
constexpr int notPermitted = 3;
constexpr int noAnswer = 5;

QString variable(const char* name)
{
    return qEnvironmentVariable(name);
}

QString required(const char* name)
{
    const QString value = variable(name);
    if (value.isEmpty()) {
        throw Deployment::Unusable(wrongSetting, "%1 is not set"_q.arg(QLatin1String(name)));
    }
    return value;
}

QString tokenIn(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw Deployment::Unusable(wrongSetting,
                                   "cannot read the token file \"%1\": %2"_q.arg(path, file.errorString()));
    }
    const QString token = QString::fromUtf8(file.readAll()).trimmed();
    if (token.isEmpty() || !NetworkManager::instance().setBearerToken(token)) {
        throw Deployment::Unusable(wrongSetting, "the file \"%1\" holds no token"_q.arg(path));
    }
    return token;
}

QString randomRun()
{
    return "contract-%1"_q.arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'));
}

} // namespace

Deployment::Deployment() : run(variable("RK_CONTRACT_RUN"))
{
    if (run.isEmpty()) {
        run = randomRun();
    }
    static const QRegularExpression plain("\\A[A-Za-z0-9-]{16,}\\z"_q);
    if (!plain.match(run).hasMatch()) {
        throw Unusable(wrongSetting,
                       "RK_CONTRACT_RUN must be 16 or more letters, digits and '-', not \"%1\""_q.arg(run));
    }
    if (variable("RK_CONTRACT_BASE_API").isEmpty()) {
        startService();
    } else {
        readVariables();
    }

    RKBaseApi::GetInstance().setBaseApi(baseAddress);
    GetSoftCache()->setProjectId(project);
    NetworkManager::instance().setBearerToken(editorToken);
    askService();
    category = usableCategory();
    living = this;
}

Deployment::~Deployment()
{
    living = nullptr;
}

const Deployment& Deployment::current()
{
    return *living;
}

void Deployment::startService()
{
    m_service = std::make_unique<MonitorService>();
    m_service->admin({"category"_q, "add"_q, "Empty"_q, "Slope"_q});
    project = m_service->createProject("Bluff"_q);
    for (const char* name : {"Soil moisture", "Rainfall", "Air temperature"}) {
        m_service->admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, "Slope"_q,
                          "--name"_q, QLatin1String(name), "--alias"_q,
                          "%1 alias"_q.arg(QLatin1String(name))});
    }
    editorToken = m_service->createToken("Ana"_q, project, "editor"_q).text;
    readerToken = m_service->createToken("Ben"_q, project, "reader"_q).text;
    if (!m_service->start()) {
        throw Unusable(failed, "the service does not start"_q);
    }
    baseAddress = m_service->baseAddress();
}

void Deployment::readVariables()
{
    baseAddress = variable("RK_CONTRACT_BASE_API");
    if (!baseAddress.endsWith(QLatin1Char('/'))) {
        baseAddress += QLatin1Char('/');
    }
    project = required("RK_CONTRACT_PROJECT");
    editorToken = tokenIn(required("RK_CONTRACT_TOKEN_FILE"));
    if (!variable("RK_CONTRACT_READER_TOKEN_FILE").isEmpty()) {
        readerToken = tokenIn(variable("RK_CONTRACT_READER_TOKEN_FILE"));
    }
    NetworkManager::instance().setCaFile(variable("RK_CONTRACT_CA_FILE"));
}

void Deployment::askService()
{
    NetworkExchange last;
    const NetworkObservation observation =
        NetworkManager::instance().addObserver([&](const NetworkExchange& exchange) { last = exchange; });
    QStringList categories;
    const bool isAnswered = RKMonitoringData::instance()->getMonitoringCategory(categories);
    if (isAnswered) {
        return;
    }
    if (last.httpStatus == 0) {
        throw Unusable(noAnswer, "no answer from %1: %2"_q.arg(baseAddress, last.errorText));
    }
    if (last.error == QNetworkReply::AuthenticationRequiredError) {
        throw Unusable(notPermitted, "%1 refuses the token: %2"_q.arg(baseAddress, last.errorText));
    }
    if (last.error != QNetworkReply::NoError) {
        throw Unusable(failed,
                       "%1 does not answer as a monitoring service: %2"_q.arg(baseAddress, last.errorText));
    }
    throw Unusable(failed, "the service at %1 has no categories"_q.arg(baseAddress));
}

QString Deployment::usableCategory() const
{
    RKMonitoringData& data = *RKMonitoringData::instance();
    QStringList categories;
    data.getMonitoringCategory(categories);
    bool isAnyPermitted = false;
    for (const QString& candidate : qAsConst(categories)) {
        if (!data.canCreateMonitoring(candidate) || !data.canEditMonitoring(candidate) ||
            !data.canDeleteMonitoring(candidate)) {
            continue;
        }
        isAnyPermitted = true;
        QList<RKMonitoringSubCategory> subCategories;
        if (data.getMonitoringSubCategory(candidate, subCategories) && !subCategories.isEmpty()) {
            return candidate;
        }
    }
    if (!isAnyPermitted) {
        throw Unusable(
            notPermitted,
            "in no category of project \"%1\" may the token create, edit and delete"_q.arg(project));
    }
    throw Unusable(failed,
                   "project \"%1\" has no sub-category in a category where the token may create, edit and "
                   "delete: make one, deliveries need it"_q.arg(project));
}
