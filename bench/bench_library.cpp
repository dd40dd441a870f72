// What the library does without the network: request bodies, condition documents, and the caches when they
// are large.

#include "Contest.h"
#include "PlainServer.h"
#include "frame/RequestFrame.h"
#include "pointlocation/PointLocationJson.h"
#include "query/WhereBuilder.h"

#include <NetworkManager.h>
#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

#include <cstdio>
#include <stdexcept>

namespace {

void check(bool isRight, const char* what)
{
    if (!isRight) {
        throw std::runtime_error(what);
    }
}

QList<RKPointLocation> delivery(int points, int samples)
{
    QList<RKPointLocation> list;
    for (int i = 0; i < points; ++i) {
        RKPointLocation point;
        point.cellId = QStringLiteral("01a1fa47dd90000000000000");
        point.subCategoryId = QStringLiteral("01a1fa47dd90000000000001");
        point.name = QStringLiteral("SP-%1").arg(i);
        for (int j = 0; j < samples; ++j) {
            RKPointLocationData sample;
            sample.count = j;
            sample.time = QDateTime::fromMSecsSinceEpoch(Q_INT64_C(1450425600000) + j * 60'000LL,
                                                         Qt::OffsetFromUTC, -8 * 3600);
            sample.value = (i * 37 + j * 11) % 1000 / 128.0;
            point.data.append(sample);
        }
        list.append(point);
    }
    return list;
}

// The same body as it is put together by hand: literal keys, Qt's own text of a time.
QByteArray bodyByHand(const QList<RKPointLocation>& points)
{
    QJsonArray body;
    for (const RKPointLocation& point : points) {
        QJsonArray samples;
        for (const RKPointLocationData& sample : point.data) {
            samples.append(QJsonObject{{QStringLiteral("count"), sample.count},
                                       {QStringLiteral("time"), sample.time.toString(Qt::ISODateWithMs)},
                                       {QStringLiteral("value"), sample.value},
                                       {QStringLiteral("timeFlag"), sample.timeFlag}});
        }
        body.append(QJsonObject{{QStringLiteral("projectId"), QStringLiteral("p7")},
                                {QStringLiteral("cellId"), point.cellId},
                                {QStringLiteral("name"), point.name},
                                {QStringLiteral("alias"), point.alias},
                                {QStringLiteral("subCategoryId"), point.subCategoryId},
                                {QStringLiteral("dataType"), point.dataType},
                                {QStringLiteral("initialValue"), point.initialValue},
                                {QStringLiteral("offsetDirection"), point.offsetDirection},
                                {QStringLiteral("depth"), point.depth},
                                {QStringLiteral("insertCount"), point.insertCount},
                                {QStringLiteral("lastCount"), point.lastCount},
                                {QStringLiteral("fileId"), QJsonValue::Null},
                                {QStringLiteral("lastDate"), QString()},
                                {QStringLiteral("links"), QJsonArray()},
                                {QStringLiteral("data"), samples}});
    }
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QByteArray bodyByLibrary(const QList<RKPointLocation>& points)
{
    QJsonArray body;
    for (const RKPointLocation& point : points) {
        QJsonObject object;
        rk::pointLocationToJson(point, object);
        body.append(object);
    }
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QByteArray listOf(int count, const QByteArray& more)
{
    QByteArray list = "[";
    for (int i = 0; i < count; ++i) {
        list += (i == 0 ? R"({"_id":"id)" : R"(,{"_id":"id)") + QByteArray::number(i) + R"(","name":"P)" +
                QByteArray::number(i % 20'000) + '"' + more + '}';
    }
    return list + "]";
}

void benchConditions(int rounds)
{
    RKMonitoringCondition condition;
    condition.isAllTime = false;
    condition.startTime = QDateTime::fromMSecsSinceEpoch(1450425600000, Qt::UTC);
    condition.endTime = condition.startTime.addDays(1);
    condition.name = QStringLiteral("Shaft");
    runContest("where document and URL of a paged query",
               {{"the library",
                 [&] {
                     const QString url = rk::projectUrl("projects/%1/cells?where=%2&skip=%3&limit=%4");
                     check(rk::pagedUrl(url.arg(rk::buildWhere(condition)), 20, 20).size() > 100, "URL");
                 }}},
               rounds, 20'000);
}

void benchLookUps(PlainServer& server, int rounds)
{
    RKMonitoringData& data = *RKMonitoringData::instance();
    for (const int keys : {1000, 10'000, 100'000}) {
        server.setBody(listOf(keys, {}));
        QList<RKMonitoring> monitorings;
        check(data.getMonitoringRangeData({}, 0, keys, monitorings) && monitorings.size() == keys, "range");
        int next = 0;
        const QString last = QStringLiteral("id%1").arg(keys - 1);
        runContest("cached look-up among " + std::to_string(keys) + " keys",
                   {{"getMonitoringName",
                     [&] {
                         check(!data.getMonitoringName(last).isEmpty(), "name");
                     }},
                    {"getMonitoringById, changing keys",
                     [&] {
                         RKMonitoring monitoring;
                         next = (next + 7919) % keys;
                         data.getMonitoringById(monitorings[next].id, monitoring, true);
                         check(!monitoring.name.isEmpty(), "monitoring");
                     }}},
                   rounds, 50'000);
        data.clear();
    }
}

void benchLargeCells(PlainServer& server, int rounds)
{
    RKMonitoringData& data = *RKMonitoringData::instance();
    constexpr int entries = 100'000;
    server.setBody(listOf(entries, R"(,"cellId":"c1")"));
    QList<RKPointLocation> points;
    RKPointLocationCondition everything;
    check(data.getPointLocation(everything, points, false) && points.size() == entries, "points");
    QList<PointLocSetting> groups;
    check(data.getGroupsByCellId(QStringLiteral("c1"), groups, false) && groups.size() == entries, "groups");

    RKPointLocationCondition chosen;
    chosen.cellId = QStringLiteral("c1");
    for (int i = 0; i < 10'000; ++i) {
        chosen.names.append(QStringLiteral("P%1").arg(2 * i));
    }
    const QMap<QString, QStringList> links{{QStringLiteral("model"), {QStringLiteral("m1")}}};
    server.setBody(R"({"cellId":"c1"})");
    int next = 0;
    runContest("a cell with 100000 cached entries, through the network",
               {{"updatePointLocation with 10000 names",
                 [&] {
                     check(data.updatePointLocation(chosen, links), "links");
                 }},
                {"deleteGroup",
                 [&] {
                     check(data.deleteGroup(QStringLiteral("id%1").arg(next++)), "group");
                 }}},
               rounds, 1);
    data.clear();
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
    PlainServer server("{}");
    RKBaseApi::GetInstance().setBaseApi(QString::fromLatin1(server.baseAddress()));
    NetworkManager::instance().setProxy(QStringLiteral("direct"));
    GetSoftCache()->setProjectId(QStringLiteral("p7"));

    const QList<RKPointLocation> points = delivery(10, 1000);
    check(bodyByHand(points) == bodyByLibrary(points), "the bodies differ");
    runContest("records to the bytes of a body, 10000 samples",
               {{"QJsonArray by hand and toJson",
                 [&] {
                     check(bodyByHand(points).size() > 100, "body");
                 }},
                {"the library",
                 [&] {
                     check(bodyByLibrary(points).size() > 100, "body");
                 }}},
               rounds, 1);
    benchConditions(rounds);
    benchLookUps(server, rounds);
    benchLargeCells(server, rounds);
    return EXIT_SUCCESS;
}
