#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QNetworkReply>
#include <QString>

/// A wire in memory: it notes each request as it was composed and hands out the answer that is set.
class NetworkManager
{
public:
    struct Request
    {
        QByteArray method;
        QString url;
        QJsonValue body;
    };

    static NetworkManager& instance();

    QNetworkReply* get(const QString& url);
    QNetworkReply* postJson(const QString& url, const QJsonObject& body);
    QNetworkReply* postJson(const QString& url, const QJsonArray& body);
    QNetworkReply* putJson(const QString& url, const QJsonObject& body);
    QNetworkReply* deleteResource(const QString& url);

    /// The answer of the next requests.
    QByteArray answer = "{}";
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QList<Request> requests;

private:
    QNetworkReply* note(const QByteArray& method, const QString& url, const QJsonValue& body);
};
