#include "NetworkManager.h"

#include "Address.h"
#include "CurlDriver.h"
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
    NetworkObserver observer;
};

namespace {

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
    return send(QByteArrayLiteral("POST"), url, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

QNetworkReply* NetworkManager::postJson(const QString& url, const QJsonArray& body)
{
    return send(QByteArrayLiteral("POST"), url, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

QNetworkReply* NetworkManager::putJson(const QString& url, const QJsonObject& body)
{
    return send(QByteArrayLiteral("PUT"), url, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

QNetworkReply* NetworkManager::deleteResource(const QString& url)
{
    return send(QByteArrayLiteral("DELETE"), url, {});
}

void NetworkManager::abortAll()
{
    if (CurlDriver* driver = CurlDriver::ofThisThread()) {
        driver->abortAll();
    }
}

QNetworkReply* NetworkManager::send(const QByteArray& method, const QString& url, const QByteArray& body)
{
    const QString base = RKBaseApi::GetInstance().getBaseApi();
    HttpRequest request;
    request.method = method;
    request.url = encodedUrl(url, base);
    request.body = body;
    request.deadline = m_settings->deadline;
    request.connectTimeout = m_settings->connectTimeout;
    request.maximumReplySize = m_settings->maximumReplySize;
    request.caFile = m_settings->caFile;
    request.proxy = m_settings->proxy;
    const QByteArray& token = m_settings->bearerToken;
    if (!token.isEmpty() && haveSameOrigin(request.url, base.toUtf8())) {
        request.headerLines.append("Authorization: Bearer " + token);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the caller owns the reply, as with Qt's own manager
    return new HttpReply(std::move(request), m_settings->observer, token);
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

void NetworkManager::setObserver(std::function<void(const NetworkExchange&)> observer)
{
    m_settings->observer = std::move(observer);
}
