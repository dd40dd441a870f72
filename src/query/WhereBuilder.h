#pragma once

#include "RKConditions.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

// Conditions as where documents: compact JSON text in the service's query language, keys sorted, not escaped
// for a URL. Pure functions: any input gives a document, a condition that asks for nothing gives "{}".

namespace rk {

/// {"$gte": startTime, "$lt": endTime plus one calendar day}. An invalid time, also one that the local clocks
/// skip, stands as the date function renders it; no day is added to it.
QJsonObject timeRangeClause(const RKTimePeriod& period);
/// {"$options": "i", "$regex": text}: values that contain the pattern, whatever their case.
QJsonObject textMatchClause(const QString& text);
/// {"$in": [texts]}, in their order.
QJsonObject membershipClause(const QStringList& texts);

/// The document's compact JSON text.
QString whereText(const QJsonObject& document);
/// The document that asks for one value: {key: value}.
QString whereEquals(QLatin1String key, const QString& value);

/// May carry a rider for the URL: "&expand=true" follows the document when `modelId` is set.
QString buildWhere(const RKMonitoringCondition& condition);
QString buildWhere(const RKAlarmCondition& condition);
QString buildWhere(const RKAlarmDetailCondition& condition);
QString buildWhere(const RKDataManageCondition& condition);
QString buildWhere(const RKHistoryDataCondition& condition);
QString buildWhere(const RKPointLocationCondition& condition);

} // namespace rk
