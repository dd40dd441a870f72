#pragma once

#include <QByteArray>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QNetworkReply>

#include <memory>

class NetworkEventLoop : public QEventLoop
{
public:
    NetworkEventLoop(QNetworkReply* reply, QObject* parent);
    ~NetworkEventLoop() override;

    int exec(QEventLoop::ProcessEventsFlags flags);
    bool isSuccessful() const;
    QNetworkReply::NetworkError error() const;
    QJsonObject object() const;
    QList<QJsonObject> objectList() const;
    QJsonArray array() const;

private:
    std::unique_ptr<QNetworkReply> m_reply;
    QByteArray m_answer;
};
