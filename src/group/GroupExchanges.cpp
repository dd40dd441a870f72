#include "group/GroupExchanges.h"

#include "frame/JsonKey.h"
#include "frame/RequestFrame.h"
#include "group/GroupJson.h"
#include "query/WhereBuilder.h"

namespace rk {

namespace {

QJsonObject bodyOf(const PointLocSetting& group)
{
    QJsonObject body;
    groupToJson(group, body);
    return body;
}

} // namespace

bool createGroup(PointLocSetting& group)
{
    const Exchange exchange = Exchange::post(resourceUrl("groupSettings"), bodyOf(group));
    groupFromJson(exchange.object(), group);
    return exchange.isSuccessful();
}

bool updateGroup(const PointLocSetting& before, PointLocSetting& after)
{
    QJsonObject changed = bodyOf(after);
    RKPub::removeCommonJsonValue(bodyOf(before), changed);
    if (changed.isEmpty()) {
        after = before;
        return true;
    }
    const Exchange exchange = Exchange::put(resourceUrl("groupSettings/%1").arg(after.id), changed);
    groupFromJson(exchange.object(), after);
    return exchange.isSuccessful();
}

bool deleteGroup(const QString& id, QString& cellId)
{
    const Exchange exchange = Exchange::deleteResource(resourceUrl("groupSettings/%1").arg(id));
    cellId = exchange.object().value(jsonKey("cellId")).toString();
    return exchange.isSuccessful();
}

bool fetchGroupsOfCategory(const QString& category, QList<PointLocSetting>& groups)
{
    const QString where = whereEquals(jsonKey("category"), category);
    return appendRecords(projectUrl("projects/%1/groupSettings?where=%2").arg(where), groups, groupFromJson);
}

bool fetchGroupsOfCell(const QString& cellId, QList<PointLocSetting>& groups)
{
    return appendRecords(resourceUrl("cells/%1/groupSettings").arg(cellId), groups, groupFromJson);
}

} // namespace rk
