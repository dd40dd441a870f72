#pragma once

#include "RKDataManage.h"

#include <QJsonObject>

namespace rk {

/// Fills `record` from a service object; category and alias come from its "subCategory" object.
void dataManageFromJson(const QJsonObject& object, RKDataManage& record);

/// Fills `record` from a service object, except `id`, which no history entry is given.
void historyFromJson(const QJsonObject& object, HistoryData& record);

} // namespace rk
