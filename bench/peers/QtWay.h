#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QString>
#include <RKPointLocation.h>

/// Qt's own means, used the way such code is usually written: QNetworkAccessManager and a nested event loop,
/// QJsonDocument, operator[] with a key per member, QDateTime::fromString.
class QtWay
{
public:
    QtWay();

    /// The answer's body; throws when there is none.
    QByteArray get(const QString& url);
    QByteArray post(const QString& url, const QByteArray& body);

    static QList<RKPointLocation> points(const QJsonArray& array);

private:
    QByteArray waitFor(QNetworkReply* reply);

    QNetworkAccessManager m_manager;
};
