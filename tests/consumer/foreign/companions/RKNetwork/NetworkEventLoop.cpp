#include "NetworkEventLoop.h"

#include <QJsonDocument>

NetworkEventLoop::NetworkEventLoop(QNetworkReply* reply, QObject* parent) : QEventLoop(parent), m_reply(reply)
{
}

NetworkEventLoop::~NetworkEventLoop() = default;

int NetworkEventLoop::exec(QEventLoop::ProcessEventsFlags flags)
{
    connect(m_reply.get(), &QNetworkReply::finished, this, &QEventLoop::quit);
    const int code = QEventLoop::exec(flags);
    m_answer = m_reply->readAll();
    return code;
}

bool NetworkEventLoop::isSuccessful() const
{
    return error() == QNetworkReply::NoError;
}

QNetworkReply::NetworkError NetworkEventLoop::error() const
{
    return m_reply->error();
}

QJsonObject NetworkEventLoop::object() const
{
    return QJsonDocument::fromJson(m_answer).object();
}

QList<QJsonObject> NetworkEventLoop::objectList() const
{
    QList<QJsonObject> objects;
    const QJsonArray elements = array();
    for (const QJsonValue& element : elements) {
        objects.append(element.toObject());
    }
    return objects;
}

QJsonArray NetworkEventLoop::array() const
{
    return QJsonDocument::fromJson(m_answer).array();
}
