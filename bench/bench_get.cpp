// A GET of 2 KB of JSON on a kept loopback connection: a blocking libcurl call against the manager and its wait, and
// against an operation of the library.

#include "Contest.h"
#include "PlainServer.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <curl/curl.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

struct FreeEasy
{
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};

QByteArray twoKilobytes()
{
    QByteArray body = R"({"name":")";
    body += QByteArray(2048 - body.size() - 2, 'x');
    return body + R"("})";
}

size_t append(char* data, size_t size, size_t count, void* body)
{
    static_cast<QByteArray*>(body)->append(data, static_cast<int>(size * count));
    return size * count;
}

[[noreturn]] void giveUp(const char* what)
{
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(EXIT_FAILURE);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
    const int operations = argc > 2 ? std::atoi(argv[2]) : 3000;

    const QByteArray body = twoKilobytes();
    const PlainServer server(body);
    const QByteArray address = server.baseAddress() + "monitor-service/cells/1";

    const std::unique_ptr<CURL, FreeEasy> easy(curl_easy_init());
    const auto blocking = [&] {
        QByteArray received;
        curl_easy_setopt(easy.get(), CURLOPT_URL, address.constData());
        curl_easy_setopt(easy.get(), CURLOPT_NOPROXY, "*");
        curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, &append);
        curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &received);
        if (curl_easy_perform(easy.get()) != CURLE_OK || QJsonDocument::fromJson(received).object().isEmpty())
            giveUp("the blocking call");
    };

    RKBaseApi::GetInstance().setBaseApi(QString::fromLatin1(server.baseAddress()));
    NetworkManager::instance().setProxy(QStringLiteral("direct"));
    const QString url = QString::fromLatin1(address);
    const auto waiting = [&] {
        NetworkEventLoop wait(NetworkManager::instance().get(url), nullptr);
        wait.exec(QEventLoop::AllEvents);
        if (!wait.isSuccessful() || wait.object().isEmpty())
            giveUp("the manager");
    };
    const QString id = QStringLiteral("1");
    const auto operation = [&] {
        RKMonitoring monitoring;
        if (!RKMonitoringData::instance()->getMonitoringById(id, monitoring, false) ||
            monitoring.name.isEmpty())
            giveUp("the operation");
    };

    runContest("GET of " + std::to_string(body.size()) + " bytes of JSON, parsed",
               {{"blocking libcurl", blocking},
                {"NetworkManager and NetworkEventLoop", waiting},
                {"getMonitoringById", operation}},
               rounds, operations);
    return EXIT_SUCCESS;
}
