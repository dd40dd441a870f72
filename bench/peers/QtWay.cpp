#include "QtWay.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QUrl>

#include <stdexcept>

namespace {

QString text(const QJsonObject& object, const char* key)
{
    return object[QString::fromLatin1(key)].toString();
}

QDateTime time(const QJsonObject& object, const char* key)
{
    return QDateTime::fromString(object[QString::fromLatin1(key)].toString(), Qt::ISODateWithMs);
}

} // namespace

QtWay::QtWay()
{
    m_manager.setProxy(QNetworkProxy::NoProxy);
}

QByteArray QtWay::get(const QString& url)
{
    return waitFor(m_manager.get(QNetworkRequest(QUrl(url))));
}

QByteArray QtWay::post(const QString& url, const QByteArray& body)
{
    QNetworkRequest request{QUrl(url)};
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return waitFor(m_manager.post(request, body));
}

QByteArray QtWay::waitFor(QNetworkReply* reply)
{
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        throw std::runtime_error("QNetworkAccessManager failed");
    }
    return reply->readAll();
}

QList<RKPointLocation> QtWay::points(const QJsonArray& array)
{
    QList<RKPointLocation> points;
    for (int i = 0; i < array.size(); ++i) {
        const QJsonObject object = array[i].toObject();
        RKPointLocation point;
        point.id = text(object, "_id");
        point.cellId = text(object, "cellId");
        point.name = text(object, "name");
        point.category = text(object, "category");
        point.dataType = object[QStringLiteral("dataType")].toInt();
        point.initialValue = object[QStringLiteral("initialValue")].toInt();
        point.offsetDirection = text(object, "offsetDirection");
        point.depth = text(object, "depth");
        point.insertCount = object[QStringLiteral("insertCount")].toInt();
        point.lastCount = object[QStringLiteral("lastCount")].toInt();
        point.lastDate = time(object, "lastDate");
        point.createdAt = time(object, "createdAt");
        point.createdBy = text(object, "createdBy");
        point.updatedAt = time(object, "updatedAt");
        point.updatedBy = text(object, "updatedBy");
        const QJsonArray samples = object[QStringLiteral("data")].toArray();
        for (int j = 0; j < samples.size(); ++j) {
            const QJsonObject element = samples[j].toObject();
            RKPointLocationData sample;
            sample.count = element[QStringLiteral("count")].toInt();
            sample.time = time(element, "time");
            sample.value = element[QStringLiteral("value")].toDouble();
            sample.timeFlag = text(element, "timeFlag");
            point.data.append(sample);
        }
        const QJsonArray links = object[QStringLiteral("entity")].toArray();
        for (int j = 0; j < links.size(); ++j) {
            const QJsonObject link = links[j].toObject();
            point.links[text(link, "type")].append(text(link, "rId"));
        }
        points.append(point);
    }
    return points;
}
