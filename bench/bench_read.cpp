// A large read: the bytes of a reply of 5 000 points with 100 samples each become records. What a program
// would use instead does the same work on the same bytes over the same loopback; parsing alone is the
// measure.

#include "Contest.h"
#include "Cores.h"
#include "PlainServer.h"
#include "peers/BlockingCurl.h"
#include "peers/QtWay.h"
#include "peers/StandardRecords.h"
#include "pointlocation/PointLocationJson.h"

#include <NetworkManager.h>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace {

// A point as the service writes it.
QByteArray pointText(int i, int samples)
{
    const QByteArray number = QByteArray::number(i);
    QByteArray text =
        R"({"_id":"0151c3)" + number.rightJustified(18, '0') +
        R"(","projectId":"01a1fa47d838000000000000","cellId":"01a1fa47dd90000000000000",)"
        R"("subCategoryId":"01a1fa47dd90000000000001","category":"Settlement","name":"SP-)" +
        number +
        R"(","alias":"","dataType":1,"initialValue":12,"offsetDirection":"","depth":"",)"
        R"("insertCount":100,"lastCount":99,"lastDate":"2015-12-21T08:00:00.000-08:00","fileId":null,)"
        R"("entity":[{"type":"model","rId":"m)" +
        number +
        R"("}],"createdAt":"2015-12-21T16:00:00.000Z","createdBy":"A. Engineer",)"
        R"("updatedAt":"2015-12-21T16:00:00.000Z","updatedBy":"A. Engineer","data":[)";
    for (int j = 0; j < samples; ++j) {
        const QByteArray hour = QByteArray::number(j % 24).rightJustified(2, '0');
        const QByteArray day = QByteArray::number(1 + j / 24 % 28).rightJustified(2, '0');
        text += (j == 0 ? R"({"count":)" : R"(,{"count":)") + QByteArray::number(j) + R"(,"time":"2015-12-)" +
                day + "T" + hour + R"(:30:00.000-08:00","value":)" +
                QByteArray::number(12.0 + (i * 37 + j * 11) % 1000 / 128.0, 'g', 17) + R"(,"timeFlag":""})";
    }
    return text + "]}";
}

QByteArray replyOf(int points, int samplesPerPoint)
{
    QByteArray body = "[";
    for (int i = 0; i < points; ++i) {
        body += (i == 0 ? "" : ",") + pointText(i, samplesPerPoint);
    }
    return body + "]";
}

void check(bool isRight, const char* who)
{
    if (!isRight) {
        throw std::runtime_error(std::string(who) + " read something else");
    }
}

class Reads
{
public:
    Reads(int points, int samplesPerPoint)
        : m_points(points), m_samples(samplesPerPoint), m_body(replyOf(points, samplesPerPoint)),
          m_server(m_body), m_standardUrl((m_server.baseAddress() + "monitor-service/x").toStdString()),
          m_url(QString::fromStdString(m_standardUrl))
    {
        RKBaseApi::GetInstance().setBaseApi(QString::fromLatin1(m_server.baseAddress()));
        NetworkManager::instance().setProxy(QStringLiteral("direct"));
        NetworkManager::instance().setMaximumReplySize(Q_INT64_C(1) << 30);
    }

    int bytes() const { return m_body.size(); }

    std::vector<Contestant> wholeReads()
    {
        return {{"QJsonDocument::fromJson alone, without HTTP",
                 [this] {
                     parse();
                 }},
                {"getPointLocation",
                 [this] {
                     byLibrary();
                 }},
                {"getPointLocation, its threads on one core",
                 [this] {
                     const std::vector<int> cores = usableCores();
                     stayOn(cores.empty() ? cores : std::vector<int>{cores.front()});
                     byLibrary();
                     stayOn(cores);
                 }},
                {"QNetworkAccessManager and QJsonDocument",
                 [this] {
                     byQt();
                 }},
                {"libcurl and nlohmann/json",
                 [this] {
                     byNlohmann();
                 }},
                {"libcurl and simdjson",
                 [this] {
                     bySimdjson();
                 }},
                {"libcurl, nothing read", [this] {
                     byCurl();
                 }}};
    }

    // Objects to records alone.
    std::vector<Contestant> mappings()
    {
        m_array = QJsonDocument::fromJson(m_body).array();
        return {{"the way of QNetworkAccessManager's users",
                 [this] {
                     check(QtWay::points(m_array).last().data.size() == m_samples, "Qt's way");
                 }},
                {"the library", [this] {
                     QList<RKPointLocation> points;
                     points.reserve(m_array.size());
                     for (const QJsonValue& value : m_array) {
                         points.append(RKPointLocation());
                         rk::pointLocationFromJson(value.toObject(), points.last());
                     }
                     check(points.last().data.size() == m_samples, "the library");
                 }}};
    }

    void parse() { check(QJsonDocument::fromJson(m_body).array().size() == m_points, "QJsonDocument"); }
    // The records alone: of the text and of what is parsed there is never more than one point.
    void recordsOnly()
    {
        QList<RKPointLocation> points;
        for (int i = 0; i < m_points; ++i) {
            points.append(RKPointLocation());
            rk::pointLocationFromJson(QJsonDocument::fromJson(pointText(i, m_samples)).object(),
                                      points.last());
        }
        check(points.last().data.size() == m_samples, "the library");
    }
    void byLibrary()
    {
        QList<RKPointLocation> points;
        RKPointLocationCondition condition;
        const bool isRead = m_data.getPointLocation(condition, points, false);
        check(isRead && points.size() == m_points && points.last().data.size() == m_samples, "the library");
        m_data.clear();
    }
    void byQt()
    {
        const auto points = QtWay::points(QJsonDocument::fromJson(m_qt.get(m_url)).array());
        check(points.size() == m_points && points.last().data.size() == m_samples, "Qt");
    }
    void byNlohmann()
    {
        const StandardPoints points = pointsByNlohmann(m_curl.get(m_standardUrl));
        check(points.size() == std::size_t(m_points) && points.back().data.size() == std::size_t(m_samples),
              "nlohmann/json");
    }
    void bySimdjson()
    {
        const StandardPoints points = pointsBySimdjson(m_curl.get(m_standardUrl));
        check(points.size() == std::size_t(m_points) && points.back().data.size() == std::size_t(m_samples),
              "simdjson");
    }
    void byCurl() { check(m_curl.get(m_standardUrl).size() == std::size_t(m_body.size()), "libcurl"); }

private:
    int m_points;
    int m_samples;
    QByteArray m_body;
    PlainServer m_server;
    std::string m_standardUrl;
    QString m_url;
    BlockingCurl m_curl;
    QtWay m_qt;
    QJsonArray m_array;
    RKMonitoringData& m_data = *RKMonitoringData::instance();
};

// What this process holds (VmRSS) or held at most (VmHWM), in MB (proc(5)); 0 where the system does not say.
double megabytesHeld(const QByteArray& which)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(which + ':')) {
            return line.mid(which.size() + 1).trimmed().split(' ').first().toDouble() * 1024 / 1e6;
        }
    }
    return 0;
}

// Lets VmHWM begin anew: what was put together for the reply was larger than the reply.
void forgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        file.write("5");
    }
}

// Runs one read in a process of its own; prints and returns what it held at most beyond the reply that is
// served, in MB.
double printPeak(const char* what, const char* name, int points, int samples)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--peak"), QString::fromLatin1(name), QString::number(points),
                   QString::number(samples)});
    process.waitForFinished(-1);
    const double megabytes = process.readAllStandardOutput().trimmed().toDouble();
    std::printf("  %-44s %8.1f MB\n", what, megabytes);
    return megabytes;
}

void printPeaks(int points, int samples)
{
    std::printf("Memory at most beyond the served reply\n");
    const double document =
        printPeak("QJsonDocument::fromJson alone, without HTTP", "parse", points, samples);
    const double records = printPeak("the records alone", "records", points, samples);
    const double library = printPeak("getPointLocation", "library", points, samples);
    std::printf("  %-44s %8.3f\n", "its ratio to the document and the records",
                library / (document + records));
    printPeak("QNetworkAccessManager and QJsonDocument", "qt", points, samples);
    printPeak("libcurl and nlohmann/json", "nlohmann", points, samples);
    printPeak("libcurl and simdjson", "simdjson", points, samples);
}

int measurePeak(const QStringList& arguments)
{
    Reads reads(arguments[3].toInt(), arguments[4].toInt());
    forgetPeak();
    const double before = megabytesHeld("VmRSS");
    const QString reader = arguments[2];
    if (reader == QLatin1String("parse")) {
        reads.parse();
    } else if (reader == QLatin1String("records")) {
        reads.recordsOnly();
    } else if (reader == QLatin1String("library")) {
        reads.byLibrary();
    } else if (reader == QLatin1String("qt")) {
        reads.byQt();
    } else if (reader == QLatin1String("nlohmann")) {
        reads.byNlohmann();
    } else if (reader == QLatin1String("simdjson")) {
        reads.bySimdjson();
    }
    std::printf("%f\n", megabytesHeld("VmHWM") - before);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 5 && arguments[1] == QLatin1String("--peak")) {
        return measurePeak(arguments);
    }
    const int rounds = arguments.size() > 1 ? arguments[1].toInt() : 7;
    const int largest = arguments.size() > 2 ? arguments[2].toInt() : 500'000;
    constexpr int points = 5000;
    constexpr int samples = 100;
    {
        Reads reads(points, samples);
        const std::string size = std::to_string(points) + " points with " + std::to_string(samples) +
                                 " samples, " + std::to_string(reads.bytes() / 1'000'000) + " MB";
        runContest("Reply to records: " + size, reads.wholeReads(), rounds, 1);
        runContest("Objects to records: " + size, reads.mappings(), rounds, 1);
    }
    printPeaks(points, samples);

    std::printf("Growth: getPointLocation of points with one sample\n");
    for (const int count : {100, 1000, 10'000, 100'000, 500'000}) {
        if (count > largest) {
            break;
        }
        Reads reads(count, 1);
        runContest(std::to_string(count) + " points",
                   {{"getPointLocation",
                     [&reads] {
                         reads.byLibrary();
                     }}},
                   5, count >= 100'000 ? 1 : 100'000 / count);
        printPeak("memory", "library", count, 1);
    }
    return EXIT_SUCCESS;
}
