// The paths of the client that run most often, each repeated alone under callgrind: no clock, no random seed,
// no time zone, and no network but the loopback where a path is an exchange. Only the repetitions are
// counted; set-up and one run that fills caches and resolves symbols are not. scripts/instruction-counts.sh
// runs this and compares.
//
//   hot_paths          the names of the paths
//   hot_paths NAME     repeats one and prints how often

#include "PlainServer.h"
#include "UrlEncoding.h"
#include "frame/RequestFrame.h"
#include "pointlocation/PointLocationJson.h"
#include "query/WhereBuilder.h"

#include <NetworkManager.h>
#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <QVector>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKPub.h>
#include <RKSoftCache.h>

#include <valgrind/callgrind.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

constexpr int pointCount = 100;
constexpr int samplesPerPoint = 20;
constexpr qint64 firstTime = 1450425600000; // 2015-12-18T00:00:00-08:00
constexpr int coast = -8 * 3600;

void check(bool isRight, const char* what)
{
    if (!isRight) {
        throw std::runtime_error(what);
    }
}

// Calls operation(0) to operation(count - 1) and counts their instructions.
template <typename Operation>
void repeat(int count, const Operation& operation)
{
    operation(0);
    CALLGRIND_START_INSTRUMENTATION;
    for (int i = 0; i < count; ++i) {
        operation(i);
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    std::printf("%d\n", count);
}

QDateTime timeOfSample(int number)
{
    return QDateTime::fromMSecsSinceEpoch(firstTime + number * 900'000LL, Qt::OffsetFromUTC, coast);
}

double valueOfSample(int point, int sample)
{
    return 12.0 + (point * 37 + sample * 11) % 1000 / 128.0;
}

// A page as the service answers it, keys and all.
QJsonArray replyOfPoints()
{
    QJsonArray reply;
    for (int i = 0; i < pointCount; ++i) {
        QJsonArray samples;
        for (int j = 0; j < samplesPerPoint; ++j) {
            samples.append(QJsonObject{{QStringLiteral("count"), j},
                                       {QStringLiteral("time"), timeOfSample(j).toString(Qt::ISODateWithMs)},
                                       {QStringLiteral("value"), valueOfSample(i, j)},
                                       {QStringLiteral("timeFlag"), QStringLiteral("A")}});
        }
        const QString created = QStringLiteral("2015-12-21T16:00:00.000Z");
        const QString engineer = QStringLiteral("A. Engineer");
        reply.append(QJsonObject{
            {QStringLiteral("_id"), QStringLiteral("01a1fa47dd9000000000%1").arg(i, 4, 10, QLatin1Char('0'))},
            {QStringLiteral("projectId"), QStringLiteral("01a1fa47d838000000000000")},
            {QStringLiteral("cellId"), QStringLiteral("01a1fa47dd90000000000000")},
            {QStringLiteral("subCategoryId"), QStringLiteral("01a1fa47dd90000000000001")},
            {QStringLiteral("category"), QStringLiteral("Settlement")},
            {QStringLiteral("name"), QStringLiteral("SP-%1").arg(i)},
            {QStringLiteral("alias"), QString()},
            {QStringLiteral("dataType"), 1},
            {QStringLiteral("initialValue"), 12},
            {QStringLiteral("offsetDirection"), QString()},
            {QStringLiteral("depth"), QString()},
            {QStringLiteral("insertCount"), samplesPerPoint},
            {QStringLiteral("lastCount"), samplesPerPoint - 1},
            {QStringLiteral("lastDate"), timeOfSample(samplesPerPoint - 1).toString(Qt::ISODateWithMs)},
            {QStringLiteral("fileId"), QJsonValue::Null},
            {QStringLiteral("entity"),
             QJsonArray{QJsonObject{{QStringLiteral("type"), QStringLiteral("model")},
                                    {QStringLiteral("rId"), QStringLiteral("m%1").arg(i)}}}},
            {QStringLiteral("createdAt"), created},
            {QStringLiteral("createdBy"), engineer},
            {QStringLiteral("updatedAt"), created},
            {QStringLiteral("updatedBy"), engineer},
            {QStringLiteral("data"), samples}});
    }
    // Read from text as a reply is: objects put together member by member lie in memory differently.
    return QJsonDocument::fromJson(QJsonDocument(reply).toJson(QJsonDocument::Compact)).array();
}

void readPoints()
{
    const QJsonArray reply = replyOfPoints();
    repeat(10, [&reply](int) {
        QList<RKPointLocation> points;
        points.reserve(reply.size());
        for (const QJsonValue& value : reply) {
            points.append(RKPointLocation());
            rk::pointLocationFromJson(value.toObject(), points.last());
        }
        check(points.size() == pointCount && points.last().data.size() == samplesPerPoint &&
                  points.last().data.last().time == timeOfSample(samplesPerPoint - 1),
              "points");
    });
}

void writePoints()
{
    QList<RKPointLocation> points;
    for (int i = 0; i < pointCount; ++i) {
        RKPointLocation point;
        point.cellId = QStringLiteral("01a1fa47dd90000000000000");
        point.subCategoryId = QStringLiteral("01a1fa47dd90000000000001");
        point.name = QStringLiteral("SP-%1").arg(i);
        point.links.insert(QStringLiteral("model"), {QStringLiteral("m%1").arg(i)});
        for (int j = 0; j < samplesPerPoint; ++j) {
            RKPointLocationData sample;
            sample.count = j;
            sample.time = timeOfSample(j);
            sample.value = valueOfSample(i, j);
            point.data.append(sample);
        }
        points.append(point);
    }
    repeat(10, [&points](int) {
        QJsonArray body;
        for (const RKPointLocation& point : points) {
            QJsonObject object;
            rk::pointLocationToJson(point, object);
            body.append(object);
        }
        check(QJsonDocument(body).toJson(QJsonDocument::Compact).size() > pointCount * samplesPerPoint * 70,
              "body");
    });
}

void composePagedQuery()
{
    RKMonitoringCondition condition;
    condition.isAllTime = false;
    condition.startTime = QDateTime::fromMSecsSinceEpoch(firstTime, Qt::UTC);
    condition.endTime = condition.startTime.addDays(1);
    condition.name = QStringLiteral("Shaft & \u00dcbergang");
    const QString base = RKBaseApi::GetInstance().getBaseApi();
    repeat(500, [&](int page) {
        const QString url = rk::projectUrl("projects/%1/cells?where=%2&skip=%3&limit=%4");
        const QByteArray wire =
            rk::encodedUrl(rk::pagedUrl(url.arg(rk::buildWhere(condition)), page * 20, 20), base);
        check(wire.endsWith("&limit=20") && wire.size() > 200, "URL");
    });
}

constexpr int timeCount = 1000;

QVector<QDateTime> someTimes()
{
    QVector<QDateTime> times;
    for (int i = 0; i < timeCount; ++i) {
        const qint64 milliseconds = firstTime + i * Q_INT64_C(7'919'773'331) % Q_INT64_C(400'000'000'000);
        times.append(i % 2 == 0 ? QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC)
                                : QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, coast));
    }
    return times;
}

void readTimes()
{
    const QVector<QDateTime> times = someTimes();
    QStringList texts;
    for (const QDateTime& time : times) {
        texts.append(time.toString(Qt::ISODateWithMs));
    }
    repeat(20 * timeCount,
           [&](int i) { check(RKPub::getDateTimeByQString(texts.at(i % timeCount)).isValid(), "time"); });
    for (int i = 0; i < timeCount; ++i) {
        check(RKPub::getDateTimeByQString(texts.at(i)) == times.at(i), "time read");
    }
}

void writeTimes()
{
    const QVector<QDateTime> times = someTimes();
    repeat(20 * timeCount, [&times](int i) {
        check(RKPub::getQStringByDateTime(times.at(i % timeCount)).size() >= 24, "text of a time");
    });
}

constexpr int cachedMonitorings = 10'000;

// Identifiers of monitorings that are cached afterwards. Empty records: asking the cache for an unknown one
// leaves one.
QStringList cacheMonitorings()
{
    QStringList ids;
    for (int i = 0; i < cachedMonitorings; ++i) {
        ids.append(QStringLiteral("01a1fa47dd9000000%1").arg(i, 7, 16, QLatin1Char('0')));
        RKMonitoring monitoring;
        RKMonitoringData::instance()->getMonitoringById(ids.last(), monitoring, true);
    }
    return ids;
}

void lookUpNames()
{
    const QStringList ids = cacheMonitorings();
    RKMonitoringData& data = *RKMonitoringData::instance();
    repeat(10'000, [&](int i) {
        check(data.getMonitoringName(ids.at(i * 7919 % cachedMonitorings)).isEmpty(), "name");
    });
}

void lookUpMonitorings()
{
    const QStringList ids = cacheMonitorings();
    RKMonitoringData& data = *RKMonitoringData::instance();
    repeat(10'000, [&](int i) {
        RKMonitoring monitoring;
        check(data.getMonitoringById(ids.at(i * 7919 % cachedMonitorings), monitoring, true), "monitoring");
    });
}

// A service that answers with a monitoring of 2 KB, as late as one that has something to look up: the answer
// is never there before the client waits for it, however slow callgrind makes the client, so that every run
// takes the same way.
class Service
{
public:
    Service()
        : m_server(QByteArray(R"({"_id":"01a1fa47dd90000000000000","category":"pit","name":")") +
                   QByteArray(1984, 'x') + R"("})")
    {
        m_server.setDelay(std::chrono::milliseconds(5));
        RKBaseApi::GetInstance().setBaseApi(QString::fromLatin1(m_server.baseAddress()));
        NetworkManager::instance().setProxy(QStringLiteral("direct"));
        NetworkManager::instance().setBearerToken(QStringLiteral("0123456789abcdef0123456789abcdef"));
        NetworkManager::instance().setObserver({});
    }

private:
    PlainServer m_server;
};

void exchangeGet()
{
    const Service service;
    const QString id = QStringLiteral("01a1fa47dd90000000000000");
    repeat(200, [&id](int) {
        RKMonitoring monitoring;
        check(RKMonitoringData::instance()->getMonitoringById(id, monitoring, false) &&
                  !monitoring.name.isEmpty(),
              "GET");
    });
}

void exchangePost()
{
    const Service service;
    repeat(200, [](int) {
        RKMonitoring monitoring;
        monitoring.name = QStringLiteral("Harbour tunnel, shaft 2");
        monitoring.category = QStringLiteral("pit");
        check(RKMonitoringData::instance()->createMonitoring(monitoring) && !monitoring.id.isEmpty(), "POST");
    });
}

struct Path
{
    const char* name;
    void (*run)();
};

constexpr Path paths[] = {
    {"points-read", readPoints},
    {"points-written", writePoints},
    {"paged-query-url", composePagedQuery},
    {"time-read", readTimes},
    {"time-written", writeTimes},
    {"cached-name", lookUpNames},
    {"cached-monitoring", lookUpMonitorings},
    {"exchange-get", exchangeGet},
    {"exchange-post", exchangePost},
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    NetworkManager::instance().setObserver([](const NetworkExchange&) {
        std::fputs("hot_paths: a request was sent\n", stderr);
        std::abort();
    });
    RKBaseApi::GetInstance().setBaseApi(QStringLiteral("http://127.0.0.1:1/"));
    GetSoftCache()->setProjectId(QStringLiteral("01a1fa47d838000000000000"));
    for (const Path& path : paths) {
        if (argc == 1) {
            std::puts(path.name);
        } else if (std::strcmp(argv[1], path.name) == 0) {
            path.run();
            return EXIT_SUCCESS;
        }
    }
    return argc == 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
