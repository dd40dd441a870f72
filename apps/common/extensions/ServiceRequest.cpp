#include "extensions/ServiceRequest.h"

#include "Identifier.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <QJsonDocument>
#include <QPointer>

namespace extensions {

namespace {

QString addressOf(const RequestContext& context, const QString& path)
{
    return context.baseApi + QStringLiteral("monitor-service/") + path;
}

// Not the session's observer: what an event sends during the wait would be taken for this request.
NetworkExchange exchangeOf(const NetworkEventLoop& wait, const QNetworkReply* reply, const QByteArray& method)
{
    NetworkExchange exchange;
    exchange.method = method;
    exchange.error = wait.error();
    if (reply) {
        exchange.url = reply->url().toString();
        exchange.httpStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        exchange.errorText = wait.isSuccessful() ? QString() : reply->errorString();
    }
    return exchange;
}

ServiceReply waitFor(QNetworkReply* sent, const QByteArray& method)
{
    const QPointer<QNetworkReply> reply(sent);
    NetworkEventLoop wait(sent, nullptr);
    wait.exec(QEventLoop::AllEvents);
    ServiceReply result;
    result.exchange = exchangeOf(wait, reply, method);
    result.object = wait.object();
    result.array = wait.array();
    result.hasBody = reply && reply->bytesAvailable() > 0;
    // An empty array can be told from an empty object by its text alone.
    const bool isEmpty = result.object.isEmpty() && result.array.isEmpty();
    result.isArray =
        isEmpty ? result.hasBody && reply->readAll().trimmed().startsWith('[') : result.object.isEmpty();
    return result;
}

const ServiceReply& requireSuccess(const ServiceReply& reply, const RequestContext& context)
{
    if (reply.exchange.error != QNetworkReply::NoError) {
        throw requestFailure(reply.exchange, context);
    }
    return reply;
}

AnswerObject documentOf(const ServiceReply& reply, const RequestContext& context)
{
    if (requireSuccess(reply, context).isArray || !reply.hasBody) {
        const Failure failure(FailureKind::BadAnswer,
                              QStringLiteral("cannot %1: the answer is not an object").arg(context.purpose));
        throw reply.exchange.method == "GET" ? failure : afterChange(failure);
    }
    return {context.purpose, reply.object};
}

// `extent` is the parameters that say which part of it.
QString listPath(const ListRequest& list, const QString& extent)
{
    QString path = conditionPath(list.path, list.where);
    if (!list.order.isEmpty()) {
        path += QStringLiteral("&order=") + list.order;
    }
    path += extent;
    return list.more.isEmpty() ? path : path + QLatin1Char('&') + list.more;
}

} // namespace

QString resourcePath(const char* path, const QString& id)
{
    if (!canBeIdentifier(id)) {
        throw Failure(FailureKind::BadInput, QStringLiteral("\"%1\" is not an identifier").arg(id));
    }
    return QString(QLatin1String(path)).arg(id);
}

QString conditionPath(const QString& path, const QJsonObject& where)
{
    const QByteArray text = QJsonDocument(where).toJson(QJsonDocument::Compact);
    return path + QStringLiteral("?where=") + QString::fromUtf8(text);
}

ServiceReply tryToGet(const RequestContext& context, const QString& path)
{
    return waitFor(NetworkManager::instance().get(addressOf(context, path)), "GET");
}

AnswerObject get(const RequestContext& context, const QString& path)
{
    return documentOf(tryToGet(context, path), context);
}

AnswerObject put(const RequestContext& context, const QString& path, const QJsonObject& body)
{
    return documentOf(waitFor(NetworkManager::instance().putJson(addressOf(context, path), body), "PUT"),
                      context);
}

AnswerObject patch(const RequestContext& context, const QString& path, const QJsonObject& body)
{
    return documentOf(waitFor(NetworkManager::instance().patchJson(addressOf(context, path), body), "PATCH"),
                      context);
}

AnswerObject deleteResource(const RequestContext& context, const QString& path)
{
    return documentOf(waitFor(NetworkManager::instance().deleteResource(addressOf(context, path)), "DELETE"),
                      context);
}

Failure afterChange(const Failure& failure)
{
    return failure.extended(QStringLiteral("the service has carried it out all the same"));
}

QList<AnswerObject> getPage(const RequestContext& context, const ListRequest& list, int skip, int limit)
{
    const QString page = QStringLiteral("&skip=%1&limit=%2").arg(skip).arg(limit);
    const ServiceReply reply = tryToGet(context, listPath(list, page));
    if (!requireSuccess(reply, context).isArray) {
        throw Failure(FailureKind::BadAnswer,
                      QStringLiteral("cannot %1: the answer is not a list").arg(context.purpose));
    }
    return objectsOf(context.purpose, reply.array);
}

int getCount(const RequestContext& context, const ListRequest& list)
{
    return get(context, listPath(list, QStringLiteral("&only_count=true"))).smallInteger("count");
}

} // namespace extensions
