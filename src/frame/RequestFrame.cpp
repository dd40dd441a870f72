#include "frame/RequestFrame.h"

#include "frame/JsonKey.h"
#include "frame/ProjectIdentifier.h"

namespace rk {

namespace {

QString joined(const QString& text, const char* suffix)
{
    return text + QString::fromUtf8(suffix);
}

} // namespace

QString resourceUrl(const char* pathTemplate)
{
    const QString service = joined(RKBaseApi::GetInstance().getBaseApi(), "monitor-service/");
    return joined(service, pathTemplate);
}

QString projectUrl(const char* pathTemplate)
{
    return resourceUrl(pathTemplate).arg(projectIdentifier());
}

QString pagedUrl(const QString& url, int skip, int limit)
{
    // One after the other, not with the two-argument form: a marker that a where text brought along is
    // filled like any other.
    return url.arg(skip).arg(limit);
}

Exchange::Exchange(QNetworkReply* reply) : m_wait(reply, nullptr)
{
    m_wait.exec(QEventLoop::AllEvents);
}

Exchange Exchange::get(const QString& url)
{
    return Exchange(NetworkManager::instance().get(url));
}

Exchange Exchange::post(const QString& url, const QJsonObject& body)
{
    return Exchange(NetworkManager::instance().postJson(url, body));
}

Exchange Exchange::post(const QString& url, const QJsonArray& body)
{
    return Exchange(NetworkManager::instance().postJson(url, body));
}

Exchange Exchange::put(const QString& url, const QJsonObject& body)
{
    return Exchange(NetworkManager::instance().putJson(url, body));
}

Exchange Exchange::deleteResource(const QString& url)
{
    return Exchange(NetworkManager::instance().deleteResource(url));
}

ListAnswer getList(const QString& url)
{
    const Exchange exchange = Exchange::get(url);
    return {exchange.objectList(), exchange.isSuccessful()};
}

bool readCount(const QString& url, int& count)
{
    const Exchange exchange = Exchange::get(url);
    count = exchange.object().value(jsonKey("count")).toInt(0);
    return exchange.isSuccessful();
}

} // namespace rk
