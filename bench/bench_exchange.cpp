// Small exchanges on a kept loopback connection: reading one monitoring of 2 KB and creating one, through an
// operation of the library and as other programs do it.
//
//   bench_exchange [ROUNDS [OPERATIONS [NAME]]]    NAME: only the contestants of this name, to count what
//   they do

#include "Contest.h"
#include "Cores.h"
#include "PlainServer.h"
#include "peers/BareSocket.h"
#include "peers/BlockingCurl.h"
#include "peers/QtWay.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// A monitoring with a name that fills it up to 2 KB.
QByteArray twoKilobytes()
{
    QByteArray body = R"({"_id":"01a1fa47dd90000000000000","category":"pit","name":")";
    body += QByteArray(2048 - body.size() - 2, 'x');
    return body + R"("})";
}

void check(bool isRight, const char* who)
{
    if (!isRight) {
        throw std::runtime_error(std::string(who) + " failed");
    }
}

bool isMonitoring(const QByteArray& body)
{
    return !QJsonDocument::fromJson(body).object().isEmpty();
}

QByteArray viewOf(const std::string& text)
{
    return QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
}

// The longest of so many operations, in milliseconds.
double longest(const std::function<void()>& operation, int count)
{
    double most = 0;
    for (int i = 0; i < count; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        operation();
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
        most = std::max(most, time.count());
    }
    return most;
}

// Where client and server run. They take turns, so it decides what an exchange costs whether the one wakes
// another core or follows the other on the same, and a scheduler that is left to itself changes its mind from
// round to round.
struct Placement
{
    std::string name;
    std::vector<int> server;
    std::vector<int> client;
};

std::vector<Placement> placements()
{
    const std::vector<int> cores = usableCores();
    if (cores.size() < 2) {
        return {{"client and server where they can run", cores, cores}};
    }
    return {{"server on a core of its own", {cores[1]}, {cores[0]}},
            {"client and server on one core", {cores[0]}, {cores[0]}}};
}

// The server, and everybody with a connection to it.
class Exchanges
{
public:
    explicit Exchanges(const Placement& placement)
        : m_body(twoKilobytes()), m_server(serverOn(placement.server)),
          m_base(QString::fromLatin1(m_server->baseAddress())),
          m_socket(static_cast<std::uint16_t>(QUrl(m_base).port()))
    {
        RKBaseApi::GetInstance().setBaseApi(m_base);
        // Its first request starts QNetworkAccessManager's own thread, which is free to run on any core: the
        // other contestants have no thread that could be in their way.
        stayOn(usableCores());
        m_qt.get(m_url);
        stayOn(placement.client);
    }

    std::vector<Contestant> gets()
    {
        const std::string plainUrl = m_url.toStdString();
        const std::string text = "GET /monitor-service/cells/1 HTTP/1.1\r\nHost: localhost\r\n\r\n";
        return {
            {"blocking libcurl, QJsonDocument",
             [this, plainUrl] {
                 check(isMonitoring(viewOf(m_curl.get(plainUrl))), "libcurl");
             }},
            {"getMonitoringById",
             [this] {
                 RKMonitoring monitoring;
                 check(m_data.getMonitoringById(m_id, monitoring, false) && !monitoring.name.isEmpty(),
                       "getMonitoringById");
             }},
            {"NetworkManager and NetworkEventLoop alone",
             [this] {
                 NetworkEventLoop wait(NetworkManager::instance().get(m_url), nullptr);
                 wait.exec(QEventLoop::AllEvents);
                 check(wait.isSuccessful() && !wait.object().isEmpty(), "NetworkManager");
             }},
            {"QNetworkAccessManager, QJsonDocument",
             [this] {
                 check(isMonitoring(m_qt.get(m_url)), "QNetworkAccessManager");
             }},
            {"bare socket, nothing parsed",
             [this, text] {
                 check(m_socket.exchange(text) == static_cast<std::size_t>(m_body.size()), "the socket");
             }},
        };
    }

    std::vector<Contestant> posts()
    {
        const QString url = m_base + QStringLiteral("monitor-service/cells");
        const std::string plainUrl = url.toStdString();
        RKMonitoring written;
        written.name = QStringLiteral("Harbour tunnel, shaft 2");
        written.category = QStringLiteral("pit");
        const auto bodyText = [written] {
            const QJsonObject object{{QStringLiteral("projectId"), QStringLiteral("p7")},
                                     {QStringLiteral("name"), written.name},
                                     {QStringLiteral("category"), written.category},
                                     {QStringLiteral("alarmTo"), QJsonArray()}};
            return QJsonDocument(object).toJson(QJsonDocument::Compact);
        };
        const QByteArray sent = bodyText();
        const std::string text = "POST /monitor-service/cells HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                                 "application/json\r\nContent-Length: " +
                                 std::to_string(sent.size()) + "\r\n\r\n" + sent.toStdString();
        return {
            {"blocking libcurl, QJsonDocument",
             [this, plainUrl, bodyText] {
                 check(isMonitoring(viewOf(m_curl.post(plainUrl, bodyText().toStdString()))), "libcurl");
             }},
            {"createMonitoring",
             [this, written] {
                 RKMonitoring monitoring = written;
                 check(m_data.createMonitoring(monitoring) && !monitoring.id.isEmpty(), "createMonitoring");
             }},
            {"bare socket, nothing parsed",
             [this, text] {
                 check(m_socket.exchange(text) == static_cast<std::size_t>(m_body.size()), "the socket");
             }},
            // The last of a round: the cores fall asleep during its 40 ms each.
            {"QNetworkAccessManager, QJsonDocument",
             [this, url, bodyText] {
                 check(isMonitoring(m_qt.post(url, bodyText())), "QNetworkAccessManager");
             },
             125},
        };
    }

private:
    std::unique_ptr<PlainServer> serverOn(const std::vector<int>& cores)
    {
        stayOn(cores); // for the threads that the server starts
        return std::make_unique<PlainServer>(m_body);
    }

    QByteArray m_body;
    std::unique_ptr<PlainServer> m_server;
    QString m_base;
    QString m_url = m_base + QStringLiteral("monitor-service/cells/1");
    QString m_id = QStringLiteral("1");
    RKMonitoringData& m_data = *RKMonitoringData::instance();
    BlockingCurl m_curl;
    QtWay m_qt;
    BareSocket m_socket;
};

std::vector<Contestant> named(const std::vector<Contestant>& all, const std::string& name)
{
    std::vector<Contestant> some;
    std::copy_if(all.begin(), all.end(), std::back_inserter(some),
                 [&name](const Contestant& contestant) { return name.empty() || contestant.name == name; });
    return some;
}

void compare(const std::string& title, const std::vector<Contestant>& contestants, int rounds, int operations)
{
    if (!contestants.empty()) {
        runContest(title, contestants, rounds, operations);
    }
}

} // namespace

int main(int argc, char** argv)
try {
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 50;
    const int operations = argc > 2 ? std::atoi(argv[2]) : 250;
    const std::string only = argc > 3 ? argv[3] : "";

    NetworkManager::instance().setProxy(QStringLiteral("direct"));
    for (const Placement& placement : placements()) {
        Exchanges exchanges(placement);
        compare("GET of 2 KB of JSON, " + placement.name, named(exchanges.gets(), only), rounds, operations);
        const std::vector<Contestant> posts = named(exchanges.posts(), only);
        compare("POST of a monitoring, answered with 2 KB, " + placement.name, posts, rounds, operations);
        if (only.empty()) {
            std::printf("longest of 10000 POSTs through createMonitoring: %.2f ms\n",
                        longest(posts[1].operation, 10'000));
        }
    }
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_exchange: %s\n", error.what());
    return EXIT_FAILURE;
}
