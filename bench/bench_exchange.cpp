// Small exchanges on a kept loopback connection: reading one monitoring of 2 KB and creating one, through an operation of
// the library and as other programs do it.

#include "Contest.h"
#include "PlainServer.h"
#include "peers/BareSocket.h"
#include "peers/BlockingCurl.h"
#include "peers/QtWay.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

/// A monitoring with a name that fills it up to 2 KB.
QByteArray twoKilobytes()
{
    QByteArray body = R"({"_id":"01a1fa47dd90000000000000","category":"pit","name":")";
    body += QByteArray(2048 - body.size() - 2, 'x');
    return body + R"("})";
}

void check(bool isRight, const char* who)
{
    if (!isRight)
        throw std::runtime_error(std::string(who) + " failed");
}

bool isMonitoring(const QByteArray& body)
{
    return !QJsonDocument::fromJson(body).object().isEmpty();
}

QByteArray viewOf(const std::string& text)
{
    return QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
}

/// The longest of so many operations, in milliseconds.
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

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
    const int operations = argc > 2 ? std::atoi(argv[2]) : 3000;

    const QByteArray body = twoKilobytes();
    const PlainServer server(body);
    const QString base = QString::fromLatin1(server.baseAddress());
    RKBaseApi::GetInstance().setBaseApi(base);
    NetworkManager::instance().setProxy(QStringLiteral("direct"));
    RKMonitoringData& data = *RKMonitoringData::instance();
    BlockingCurl curl;
    QtWay qt;
    BareSocket socket(static_cast<std::uint16_t>(QUrl(base).port()));

    const QString url = base + QStringLiteral("monitor-service/cells/1");
    const std::string plainUrl = url.toStdString();
    const std::string getText = "GET /monitor-service/cells/1 HTTP/1.1\r\nHost: localhost\r\n\r\n";
    const QString id = QStringLiteral("1");
    const std::vector<Contestant> gets{
        {"blocking libcurl, QJsonDocument",
         [&] {
             check(isMonitoring(viewOf(curl.get(plainUrl))), "libcurl");
         }},
        {"getMonitoringById",
         [&] {
             RKMonitoring monitoring;
             check(data.getMonitoringById(id, monitoring, false) && !monitoring.name.isEmpty(),
                   "getMonitoringById");
         }},
        {"NetworkManager and NetworkEventLoop alone",
         [&] {
             NetworkEventLoop wait(NetworkManager::instance().get(url), nullptr);
             wait.exec(QEventLoop::AllEvents);
             check(wait.isSuccessful() && !wait.object().isEmpty(), "NetworkManager");
         }},
        {"QNetworkAccessManager, QJsonDocument",
         [&] {
             check(isMonitoring(qt.get(url)), "QNetworkAccessManager");
         }},
        {"bare socket, nothing parsed",
         [&] {
             check(socket.exchange(getText) == static_cast<std::size_t>(body.size()), "the socket");
         }},
    };
    runContest("GET of " + std::to_string(body.size()) + " bytes of JSON", gets, rounds, operations);

    const QString postUrl = base + QStringLiteral("monitor-service/cells");
    const std::string plainPostUrl = postUrl.toStdString();
    RKMonitoring written;
    written.name = QStringLiteral("Harbour tunnel, shaft 2");
    written.category = QStringLiteral("pit");
    const QJsonObject object{{QStringLiteral("projectId"), QStringLiteral("p7")},
                             {QStringLiteral("name"), written.name},
                             {QStringLiteral("category"), written.category}};
    const auto bodyText = [&object] {
        return QJsonDocument(object).toJson(QJsonDocument::Compact);
    };
    const QByteArray sent = bodyText();
    const std::string postText = "POST /monitor-service/cells HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                                 "application/json\r\nContent-Length: " +
                                 std::to_string(sent.size()) + "\r\n\r\n" + sent.toStdString();
    const std::vector<Contestant> posts{
        {"blocking libcurl, QJsonDocument",
         [&] {
             check(isMonitoring(viewOf(curl.post(plainPostUrl, bodyText().toStdString()))), "libcurl");
         }},
        {"createMonitoring",
         [&] {
             RKMonitoring monitoring = written;
             check(data.createMonitoring(monitoring) && !monitoring.id.isEmpty(), "createMonitoring");
         }},
        {"QNetworkAccessManager, QJsonDocument",
         [&] { check(isMonitoring(qt.post(postUrl, bodyText())), "QNetworkAccessManager"); },
         50}, // 40 ms each
        {"bare socket, nothing parsed",
         [&] {
             check(socket.exchange(postText) == static_cast<std::size_t>(body.size()), "the socket");
         }},
    };
    runContest("POST of a monitoring, answered with " + std::to_string(body.size()) + " bytes", posts, rounds,
               operations);
    std::printf("longest of 10000 POSTs through createMonitoring: %.2f ms\n",
                longest(posts[1].operation, 10'000));
    return EXIT_SUCCESS;
}
