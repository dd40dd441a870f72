#pragma once

#include "RKConditions.h"
#include "RKDataManage.h"

#include <QList>
#include <QString>

// One request each; the result is the request's success. Outputs are filled from the reply either way.

namespace rk {

/// GET projects/{p}/dataManages?where=…&only_count=true.
bool countDataManages(const RKDataManageCondition& condition, int& count);

/// GET projects/{p}/dataManages?where=…&skip=…&limit=…&expand=true; appends.
bool fetchDataManages(const RKDataManageCondition& condition, int skip, int limit,
                      QList<RKDataManage>& dataManages);

/// DELETE dataManages/{id}?cascade=true: the data manage with everything that depends on it.
bool deleteDataManage(const QString& id);

/// GET dataManages/{id}/historyDatas?where=…&only_count=true.
bool countHistory(const RKHistoryDataCondition& condition, int& count);

/// GET dataManages/{id}/historyDatas?where=…&skip=…&limit=…; appends.
bool fetchHistory(const RKHistoryDataCondition& condition, int skip, int limit, QList<HistoryData>& history);

} // namespace rk
