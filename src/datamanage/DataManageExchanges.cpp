#include "datamanage/DataManageExchanges.h"

#include "datamanage/DataManageJson.h"
#include "frame/RequestFrame.h"
#include "query/WhereBuilder.h"

namespace rk {

bool countDataManages(const RKDataManageCondition& condition, int& count)
{
    const QString url = projectUrl("projects/%1/dataManages?where=%2&only_count=true");
    return readCount(url.arg(buildWhere(condition)), count);
}

bool fetchDataManages(const RKDataManageCondition& condition, int skip, int limit,
                      QList<RKDataManage>& dataManages)
{
    const QString url = projectUrl("projects/%1/dataManages?where=%2&skip=%3&limit=%4&expand=true");
    return appendRecords(pagedUrl(url.arg(buildWhere(condition)), skip, limit), dataManages,
                         dataManageFromJson);
}

bool deleteDataManage(const QString& id)
{
    return Exchange::deleteResource(resourceUrl("dataManages/%1?cascade=true").arg(id)).isSuccessful();
}

bool countHistory(const RKHistoryDataCondition& condition, int& count)
{
    const QString url = resourceUrl("dataManages/%1/historyDatas?where=%2&only_count=true");
    return readCount(url.arg(condition.dataManageId).arg(buildWhere(condition)), count);
}

bool fetchHistory(const RKHistoryDataCondition& condition, int skip, int limit, QList<HistoryData>& history)
{
    const QString url = resourceUrl("dataManages/%1/historyDatas?where=%2&skip=%3&limit=%4")
                            .arg(condition.dataManageId)
                            .arg(buildWhere(condition));
    return appendRecords(pagedUrl(url, skip, limit), history, historyFromJson);
}

} // namespace rk
