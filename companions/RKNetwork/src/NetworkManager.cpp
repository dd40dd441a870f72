#include "NetworkManager.h"

#include "Address.h"
#include "CurlDriver.h"
#include "ExchangeObservers.h"
#include "HttpReply.h"
#include "RKBaseApi.h"
#include "UrlEncoding.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

struct NetworkManager::Settings
{
    QByteArray bearerToken;
    std::chrono::milliseconds deadline = 30s;
    std::chrono::milliseconds connectTimeout = 10s;
    qint64 maximumReplySize = Q_INT64_C(256) * 1024 * 1024;
    QByteArray caFile;
    QByteArray proxy;
    std::shared_ptr<rk::ExchangeObservers> observers = std::make_shared<rk::ExchangeObservers>();
    NetworkObservation observation; ///< setObserver's
};

namespace {

template <typename Json>
QByteArray compactText(const Json& body)
{
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

// What libcurl takes: a long, which has 32 bits on some systems; 0 is no limit.
std::chrono::milliseconds timeLimit(std::chrono::milliseconds time)
{
    return std::clamp<std::chrono::milliseconds>(time, 0ms, std::chrono::hours(24 * 24));
}

bool mayStandInAHeader(const QString& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7F; });
}

} // namespace

NetworkManager::NetworkManager() : m_settings(std::make_unique<Settings>()) {}

NetworkManager::~NetworkManager() = default;

NetworkManager& NetworkManager::instance()
{
    static NetworkManager manager;
    return manager;
}

QNetworkReply* NetworkManager::get(const QString& url)
{
    return send(QByteArrayLiteral("GET"), url, {});
}

QNetworkReply* NetworkManager::postJson(const QString& url, const QJsonObject& body)
{
    return send(QByteArrayLiteral("POST"), url, compactText(body));
}

QNetworkReply* NetworkManager::postJson(const QString& url, const QJsonArray& body)
{
    return send(QByteArrayLiteral("POST"), url, compactText(body));
}

QNetworkReply* NetworkManager::putJson(const QString& url, const QJsonObject& body)
{
    return send(QByteArrayLiteral("PUT"), url, compactText(body));
}

QNetworkReply* NetworkManager::patchJson(const QString& url, const QJsonObject& body)
{
    return send(QByteArrayLiteral("PATCH"), url, compactText(body));
}

QNetworkReply* NetworkManager::deleteResource(const QString& url)
{
    return send(QByteArrayLiteral("DELETE"), url, {});
}

void NetworkManager::abortAll()
{
    if (rk::CurlDriver* driver = rk::CurlDriver::ofThisThread()) {
        driver->cancelAll();
    }
}

QNetworkReply* NetworkManager::send(const QByteArray& method, const QString& url, const QByteArray& body)
{
    const QString base = RKBaseApi::GetInstance().getBaseApi();
    rk::HttpRequest request;
    request.method = method;
    request.url = rk::encodedUrl(url, base);
    request.body = body;
    request.deadline = m_settings->deadline;
    request.connectTimeout = m_settings->connectTimeout;
    request.maximumReplySize = m_settings->maximumReplySize;
    request.caFile = m_settings->caFile;
    request.proxy = m_settings->proxy;
    const QByteArray& token = m_settings->bearerToken;
    if (!token.isEmpty() && rk::haveSameOrigin(request.url, base.toUtf8())) {
        request.headerLines.append("Authorization: Bearer " + token);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the caller owns the reply, as with Qt's own manager
    return new rk::HttpReply(std::move(request), m_settings->observers, token);
}

bool NetworkManager::setBearerToken(const QString& token)
{
    if (!mayStandInAHeader(token)) {
        return false;
    }
    m_settings->bearerToken = token.toLatin1();
    return true;
}

void NetworkManager::setDeadline(std::chrono::milliseconds deadline)
{
    m_settings->deadline = timeLimit(deadline);
}

std::chrono::milliseconds NetworkManager::deadline() const
{
    return m_settings->deadline;
}

void NetworkManager::setConnectTimeout(std::chrono::milliseconds timeout)
{
    m_settings->connectTimeout = timeLimit(timeout);
}

void NetworkManager::setMaximumReplySize(qint64 bytes)
{
    m_settings->maximumReplySize = std::clamp<qint64>(bytes, 0, Q_INT64_C(1024) * 1024 * 1024);
}

void NetworkManager::setCaFile(const QString& path)
{
    m_settings->caFile = QFile::encodeName(path);
}

void NetworkManager::setProxy(const QString& proxy)
{
    m_settings->proxy = proxy.toUtf8();
}

NetworkObservation NetworkManager::addObserver(NetworkObserver observer)
{
    return m_settings->observers->add(std::move(observer));
}

void NetworkManager::setObserver(NetworkObserver observer)
{
    m_settings->observation = addObserver(std::move(observer));
}
