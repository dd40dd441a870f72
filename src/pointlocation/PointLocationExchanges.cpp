#include "pointlocation/PointLocationExchanges.h"

#include "frame/JsonKey.h"
#include "frame/RequestFrame.h"
#include "pointlocation/PointLocationJson.h"
#include "query/WhereBuilder.h"

namespace rk {

namespace {

QJsonArray bodyOf(const QList<RKPointLocation>& points)
{
    QJsonArray body;
    for (const RKPointLocation& point : points) {
        QJsonObject object;
        pointLocationToJson(point, object);
        body.append(object);
    }
    return body;
}

} // namespace

bool createPointLocations(const QList<RKPointLocation>& points)
{
    return Exchange::post(resourceUrl("pointLocations"), bodyOf(points)).isSuccessful();
}

bool createPointLocations(const QList<QList<RKPointLocation>>& batches, QString& message)
{
    QJsonArray body;
    for (const QList<RKPointLocation>& batch : batches) {
        body.append(bodyOf(batch));
    }
    const Exchange exchange = Exchange::post(resourceUrl("pointLocations"), body);

    const QNetworkReply::NetworkError error = exchange.error();
    if (error == QNetworkReply::InternalServerError) {
        message = exchange.object().value(jsonKey("message")).toString();
    } else if (error == QNetworkReply::UnknownServerError) {
        // Copied: the text of a QStringLiteral would be gone with the library, should it be unloaded.
        message = QLatin1String("Connection closed prematurely");
    }
    return exchange.isSuccessful();
}

bool fetchPointLocations(const RKPointLocationCondition& condition, QList<RKPointLocation>& points)
{
    const QString url = projectUrl("projects/%1/pointLocations?where=%2&expand=true");
    return appendRecords(url.arg(buildWhere(condition)), points, pointLocationFromJson);
}

bool fetchPointLocationsByGuid(const QString& uuid, QList<RKPointLocation>& points)
{
    const QString url = projectUrl("projects/%1/pointLocations?expand=true&where=%2");
    return appendRecords(url.arg(whereEquals(jsonKey("uuid"), uuid)), points, pointLocationFromJson);
}

bool fetchPointLocation(const QString& pointId, RKPointLocation& point)
{
    const Exchange exchange = Exchange::get(resourceUrl("pointLocations/%1").arg(pointId));
    pointLocationFromJson(exchange.object(), point);
    return exchange.isSuccessful();
}

bool fetchNewestPointLocation(const RKPointLocationCondition& condition, RKPointLocation& point)
{
    const QString url =
        projectUrl("projects/%1/pointLocations?where=%2&expand=true&order=-data.time&limit=1&skip=0");
    const ListAnswer answer = getList(url.arg(buildWhere(condition)));
    if (!answer.objects.isEmpty()) {
        pointLocationFromJson(answer.objects.first(), point);
    }
    return answer.isSuccessful;
}

bool updatePointLocationLinks(const RKPointLocationCondition& condition,
                              const QMap<QString, QStringList>& links)
{
    const QJsonObject body{{jsonKey("links"), RKPub::linksEntityToJsonArray(links)}};
    const QString url = resourceUrl("pointLocations?where=%1").arg(buildWhere(condition));
    return Exchange::put(url, body).isSuccessful();
}

} // namespace rk
