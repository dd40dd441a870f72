#include "query/WhereBuilder.h"

#include "frame/Companions.h"
#include "frame/JsonKey.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace rk {

namespace {

void restrictTime(QJsonObject& document, QLatin1String key, const RKTimePeriod& period)
{
    if (!period.isAllTime) {
        document.insert(key, timeRangeClause(period));
    }
}

void restrictToMatch(QJsonObject& document, QLatin1String key, const QString& pattern)
{
    if (!pattern.isEmpty()) {
        document.insert(key, textMatchClause(pattern));
    }
}

void restrictToText(QJsonObject& document, QLatin1String key, const QString& text)
{
    if (!text.isEmpty()) {
        document.insert(key, text);
    }
}

void restrictToMembers(QJsonObject& document, QLatin1String key, const QStringList& texts)
{
    if (!texts.isEmpty()) {
        document.insert(key, membershipClause(texts));
    }
}

} // namespace

QJsonObject timeRangeClause(const RKTimePeriod& period)
{
    // An end that is no time has no day after it, but Qt would make one up: of a null time a day of the year
    // -4714, of a local time that the clocks skip a day later, when it exists.
    const QDateTime end = period.endTime.isValid() ? period.endTime.addDays(1) : period.endTime;
    return {{jsonKey("$gte"), RKPub::getQStringByDateTime(period.startTime)},
            {jsonKey("$lt"), RKPub::getQStringByDateTime(end)}};
}

QJsonObject textMatchClause(const QString& text)
{
    return {{jsonKey("$regex"), text}, {jsonKey("$options"), jsonKey("i")}};
}

QJsonObject membershipClause(const QStringList& texts)
{
    return {{jsonKey("$in"), QJsonArray::fromStringList(texts)}};
}

QString whereText(const QJsonObject& document)
{
    return QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Compact));
}

QString whereEquals(QLatin1String key, const QString& value)
{
    return whereText({{key, value}});
}

QString buildWhere(const RKMonitoringCondition& condition)
{
    QJsonObject document;
    restrictTime(document, jsonKey("createdAt"), condition);
    restrictToMatch(document, jsonKey("name"), condition.name);
    // Replaces the pattern of the line above: an exact name wins over a partial one.
    restrictToText(document, jsonKey("name"), condition.exactName);
    restrictToText(document, jsonKey("links.rId"), condition.modelId);

    const QString where = whereText(document);
    // The service resolves a model link only when asked to expand; the request's template has no room of its
    // own for it, so the parameter rides on the document.
    return condition.modelId.isEmpty() ? where : where + QLatin1String("&expand=true");
}

QString buildWhere(const RKAlarmCondition& condition)
{
    QJsonObject document;
    restrictTime(document, jsonKey("createdAt"), condition);
    restrictToMatch(document, jsonKey("name"), condition.name);
    if (!condition.isAllCell) {
        restrictToMembers(document, jsonKey("cellId"), condition.cellIds);
    }
    if (!condition.isAllCategory) {
        restrictToMembers(document, jsonKey("category"), condition.categories);
        restrictToMembers(document, jsonKey("subCategory"), condition.subCategories);
    }
    return whereText(document);
}

QString buildWhere(const RKAlarmDetailCondition& condition)
{
    QJsonObject document;
    restrictTime(document, jsonKey("monitorTime"), condition);
    restrictToMatch(document, jsonKey("pointName"), condition.pointName);
    return whereText(document);
}

QString buildWhere(const RKDataManageCondition& condition)
{
    QJsonObject document;
    restrictTime(document, jsonKey("createdAt"), condition);
    restrictToMatch(document, jsonKey("category"), condition.category);
    restrictToText(document, jsonKey("cellId"), condition.cellId);
    return whereText(document);
}

QString buildWhere(const RKHistoryDataCondition& condition)
{
    constexpr qint32 timeOfLastChange = 2;
    QJsonObject document;
    restrictTime(document,
                 condition.timeType == timeOfLastChange ? jsonKey("updatedAt") : jsonKey("lastDate"),
                 condition);
    return whereText(document);
}

QString buildWhere(const RKPointLocationCondition& condition)
{
    QJsonObject document;
    restrictTime(document, jsonKey("time"), condition);
    restrictToText(document, jsonKey("cellId"), condition.cellId);
    restrictToMembers(document, jsonKey("name"), condition.names);
    if (condition.onlyTimeFlagA) {
        document.insert(jsonKey("data.timeFlag"), jsonKey("A"));
    }
    return whereText(document);
}

} // namespace rk
