#include "pointlocation/StatisticsExchanges.h"

#include "frame/JsonKey.h"
#include "frame/RequestFrame.h"
#include "pointlocation/PointLocationJson.h"
#include "query/WhereBuilder.h"

namespace rk {

namespace {

QList<RKPointLocationChartData> chartEntries(const QJsonArray& elements)
{
    QList<RKPointLocationChartData> entries;
    entries.reserve(elements.size());
    for (const QJsonValue& element : elements) {
        entries.append(chartEntryFromJson(element.toObject()));
    }
    return entries;
}

bool fetchStatistics(const char* pathTemplate, const RKPointLocationCondition& condition,
                     DailyChartData& chartData)
{
    return forEachObject(projectUrl(pathTemplate).arg(buildWhere(condition)), [&](const QJsonObject& day) {
        // The day as written, in whatever offset: the service has already cut days in the project's time
        // zone.
        const QDate date = RKPub::getDateTimeByQString(day.value(jsonKey("time")).toString()).date();
        chartData.insert(date, chartEntries(day.value(jsonKey("data")).toArray()));
    });
}

} // namespace

bool fetchNormalStatistics(const RKPointLocationCondition& condition, DailyChartData& chartData)
{
    return fetchStatistics("projects/%1/normal_statistics?where=%2&expand=true", condition, chartData);
}

bool fetchDepthStatistics(const RKPointLocationCondition& condition, DailyChartData& chartData)
{
    return fetchStatistics("projects/%1/depth_statistics?where=%2&type=depth&expand=true", condition,
                           chartData);
}

} // namespace rk
