#include "monitoring/MonitoringExchanges.h"

#include "frame/JsonKey.h"
#include "frame/RequestFrame.h"
#include "monitoring/MonitoringJson.h"
#include "query/WhereBuilder.h"

namespace rk {

namespace {

QJsonObject bodyOf(const RKMonitoring& monitoring)
{
    QJsonObject body;
    monitoringToJson(monitoring, body);
    return body;
}

} // namespace

bool createMonitoring(RKMonitoring& monitoring)
{
    const Exchange exchange = Exchange::post(resourceUrl("cells"), bodyOf(monitoring));
    monitoringFromJson(exchange.object(), monitoring);
    return exchange.isSuccessful();
}

bool updateMonitoring(const RKMonitoring& cached, RKMonitoring& monitoring)
{
    QJsonObject changed = bodyOf(monitoring);
    RKPub::removeCommonJsonValue(bodyOf(cached), changed);
    if (changed.isEmpty()) {
        monitoring = cached;
        return true;
    }
    const Exchange exchange = Exchange::put(resourceUrl("cells/%1").arg(monitoring.id), changed);
    monitoringFromJson(exchange.object(), monitoring);
    return exchange.isSuccessful();
}

bool deleteMonitoring(const QString& id)
{
    return Exchange::deleteResource(resourceUrl("cells/%1").arg(id)).isSuccessful();
}

bool fetchMonitoring(const QString& id, RKMonitoring& monitoring)
{
    const Exchange exchange = Exchange::get(resourceUrl("cells/%1").arg(id));
    monitoringFromJson(exchange.object(), monitoring);
    return exchange.isSuccessful();
}

bool fetchMonitoringsOfModel(const QString& modelId, QList<RKMonitoring>& monitorings)
{
    const QString where = whereEquals(jsonKey("links.rId"), modelId);
    return appendRecords(projectUrl("projects/%1/cells?where=%2").arg(where), monitorings,
                         monitoringFromJson);
}

bool countMonitorings(const RKMonitoringCondition& condition, int& count)
{
    return readCount(projectUrl("projects/%1/cells?where=%2&only_count=true").arg(buildWhere(condition)),
                     count);
}

bool fetchMonitorings(const RKMonitoringCondition& condition, int skip, int limit,
                      QList<RKMonitoring>& monitorings)
{
    const QString url = projectUrl("projects/%1/cells?where=%2&skip=%3&limit=%4").arg(buildWhere(condition));
    return appendRecords(pagedUrl(url, skip, limit), monitorings, monitoringFromJson);
}

bool fetchMonitoringNames(QList<QPair<QString, QString>>& cells)
{
    using Cell = QPair<QString, QString>;
    return appendRecords(projectUrl("projects/%1/cells"), cells, [](const QJsonObject& object, Cell& cell) {
        cell = {object.value(jsonKey("_id")).toString(), object.value(jsonKey("name")).toString()};
    });
}

} // namespace rk
