// Fifty clients at once: readers of everything and writers of deliveries. It prints what it measured; what it
// asserts is that no answer is wrong and that nothing delivered is lost.

#include "Process.h"
#include "ServiceTest.h"
#include "Text.h"
#include "service/http/RawClient.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using monitorservice::test::RawAnswer;
using monitorservice::test::RawClient;
using Clock = std::chrono::steady_clock;

constexpr int readers = 46;
constexpr int writers = 4;
constexpr int pointsPerCell = 10;
constexpr int samplesPerPoint = 50; // of one delivery

// One client's connection, and what it measured.
class Client
{
public:
    Client(quint16 port, const QString& token)
        : m_connection(port),
          m_head(" HTTP/1.1\r\nHost: localhost\r\nAuthorization: Bearer " + token.toStdString() + "\r\n")
    {
    }

    RawAnswer request(const std::string& method, const QString& target, const QByteArray& body = {})
    {
        const std::string encoded = QUrl(target).toEncoded().toStdString();
        std::string text = method + " /monitor-service/" + encoded + m_head;
        if (!body.isEmpty()) {
            text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
        }
        text += "\r\n" + body.toStdString();
        const Clock::time_point begin = Clock::now();
        m_connection.send(text);
        RawAnswer answer = m_connection.readAnswer();
        microseconds.push_back(
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin).count());
        judge(target, answer);
        return answer;
    }

    std::vector<qint64> microseconds; // of each request
    int toldToRetry = 0;
    std::vector<std::string> wrong; // answers that no client should get

private:
    void judge(const QString& target, const RawAnswer& answer)
    {
        const bool isRetry = answer.status == 503 && answer.fields.count("retry-after") == 1;
        toldToRetry += isRetry ? 1 : 0;
        if ((answer.status >= 300 && !isRetry) || answer.body.find("locked") != std::string::npos) {
            wrong.push_back(target.toStdString() + ": " + answer.statusLine + ' ' +
                            answer.body.substr(0, 300));
        }
    }

    RawClient m_connection;
    std::string m_head;
};

qint64 percentile(std::vector<qint64> values, double part)
{
    const auto at =
        values.begin() + static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

void print(const char* what, const std::vector<qint64>& microseconds, double seconds)
{
    std::cout << what << ": " << microseconds.size() << " requests, "
              << static_cast<qint64>(static_cast<double>(microseconds.size()) / seconds)
              << " a second, median " << static_cast<double>(percentile(microseconds, 0.5)) / 1000
              << " ms, 99th percentile " << static_cast<double>(percentile(microseconds, 0.99)) / 1000
              << " ms\n";
}

QJsonObject objectOf(const RawAnswer& answer)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(answer.body)).object();
}

class Load : public ServiceTest
{
protected:
    quint16 port() const { return static_cast<quint16>(QUrl(service().baseAddress()).port()); }

    QString createCell(Client& client, int number)
    {
        const QJsonObject cell{
            {"projectId"_q, project}, {"name"_q, "Cell %1"_q.arg(number)}, {"category"_q, "Pit"_q}};
        return objectOf(client.request("POST", "cells"_q, QJsonDocument(cell).toJson()))
            .value("_id"_q)
            .toString();
    }

    // Delivery `number` of a cell: each of its points goes on from where the one before ended.
    QByteArray delivery(const QString& cell, const QString& subCategory, int number) const
    {
        QJsonArray points;
        for (int point = 0; point < pointsPerCell; ++point) {
            QJsonArray samples;
            for (int i = 0; i < samplesPerPoint; ++i) {
                const int count = number * samplesPerPoint + i;
                const QDateTime time =
                    QDateTime::fromMSecsSinceEpoch(Q_INT64_C(1450425600000) + count * 600'000LL, Qt::UTC);
                samples.append(QJsonObject{{"count"_q, count},
                                           {"time"_q, time.toString(Qt::ISODateWithMs)},
                                           {"value"_q, std::sin(count / 50.0) * 10},
                                           {"timeFlag"_q, QString()}});
            }
            points.append(QJsonObject{{"projectId"_q, project},
                                      {"cellId"_q, cell},
                                      {"subCategoryId"_q, subCategory},
                                      {"name"_q, "P%1"_q.arg(point)},
                                      {"data"_q, samples}});
        }
        return QJsonDocument(points).toJson(QJsonDocument::Compact);
    }

    // The reads of an engineer's day, in turn.
    std::vector<QString> reads(const std::vector<QString>& cells) const
    {
        std::vector<QString> targets{
            R"(projects/%1/cells?where={"name":{"$regex":"1$"}}&skip=0&limit=20)"_q.arg(project),
            R"(projects/%1/cells?where={}&only_count=true)"_q.arg(project),
            R"(projects/%1/dataManages?where={}&skip=0&limit=20&expand=true)"_q.arg(project),
            R"(projects/%1/alarmManages?where={}&skip=0&limit=20)"_q.arg(project), "categories"_q};
        for (const QString& cell : cells) {
            const QString where = R"({"cellId":"%1"})"_q.arg(cell);
            targets.push_back("cells/"_q + cell);
            targets.push_back(
                "projects/%1/pointLocations?where=%2&expand=true&order=-data.time&limit=1&skip=0"_q.arg(
                    project, where));
            targets.push_back("projects/%1/normal_statistics?where=%2&expand=true"_q.arg(project, where));
            targets.push_back(
                R"(projects/%1/pointLocations?where={"cellId":"%2","name":"P1"}&expand=true)"_q.arg(project,
                                                                                                    cell));
        }
        return targets;
    }
};

TEST_F(Load, FiftyClients)
{
    const bool isLong = qEnvironmentVariableIsSet("RK_TEST_LONG");
    const std::chrono::seconds duration(isLong ? 60 : 8);
    const QString subCategory = service().admin({"subcategory"_q, "create"_q, "--project"_q, project,
                                                 "--category"_q, "Pit"_q, "--name"_q, "Level"_q});
    Client first(port(), editor.text);
    std::vector<QString> cells;
    for (int i = 0; i < 20; ++i) {
        cells.push_back(createCell(first, i));
        first.request("POST", "pointLocations"_q, delivery(cells.back(), subCategory, 0));
    }
    const QJsonObject group{{"projectId"_q, project},
                            {"cellId"_q, cells.front()},
                            {"subCategoryId"_q, subCategory},
                            {"groupName"_q, "Limits"_q},
                            {"groupPoint"_q, QJsonArray{"P1"_q, "P2"_q}},
                            {"dayVarType"_q, 0},
                            {"dayVarValue"_q, 1},
                            {"totalVar"_q, 5}};
    first.request("POST", "groupSettings"_q, QJsonDocument(group).toJson());
    ASSERT_THAT(first.wrong, testing::IsEmpty());
    const qint64 memoryBefore = residentMemory(service().processId());

    std::vector<int> delivered(writers, 1);
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < readers + writers; ++i) {
        clients.push_back(std::make_unique<Client>(port(), i < writers ? editor.text : reader.text));
    }
    const Clock::time_point begin = Clock::now();
    const Clock::time_point end = begin + duration;
    std::vector<std::thread> threads;
    for (int i = 0; i < readers + writers; ++i) {
        threads.emplace_back([&, i] {
            Client& client = *clients[static_cast<std::size_t>(i)];
            if (i < writers) {
                int& number = delivered[static_cast<std::size_t>(i)];
                const QString& cell = cells[static_cast<std::size_t>(i)];
                while (Clock::now() < end) {
                    const RawAnswer answer =
                        client.request("POST", "pointLocations"_q, delivery(cell, subCategory, number));
                    if (answer.status == 200) {
                        ++number;
                    } else {
                        std::this_thread::sleep_for(std::chrono::milliseconds(100));
                    }
                }
            } else {
                const std::vector<QString> targets = reads(cells);
                for (std::size_t at = static_cast<std::size_t>(i) * 7; Clock::now() < end; ++at) {
                    client.request("GET", targets[at % targets.size()]);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    const qint64 memoryAfter = residentMemory(service().processId());

    std::vector<qint64> ofReads;
    std::vector<qint64> ofWrites;
    int toldToRetry = 0;
    for (std::size_t i = 0; i < clients.size(); ++i) {
        const Client& client = *clients[i];
        std::vector<qint64>& times = i < writers ? ofWrites : ofReads;
        times.insert(times.end(), client.microseconds.begin(), client.microseconds.end());
        toldToRetry += client.toldToRetry;
        EXPECT_THAT(client.wrong, testing::IsEmpty());
    }
    print("reads", ofReads, seconds);
    print("deliveries of 500 samples", ofWrites, seconds);
    std::cout << "told to retry: " << toldToRetry << "; memory " << memoryBefore / 1024 << " -> "
              << memoryAfter / 1024 << " KiB\n";

    for (std::size_t i = 0; i < writers; ++i) {
        const RawAnswer answer = first.request(
            "GET",
            R"(projects/%1/pointLocations?where={"cellId":"%2"}&expand=true)"_q.arg(project, cells[i]));
        const QJsonArray points = QJsonDocument::fromJson(QByteArray::fromStdString(answer.body)).array();
        ASSERT_EQ(points.size(), pointsPerCell);
        for (const QJsonValue& point : points) {
            EXPECT_EQ(point.toObject().value("data"_q).toArray().size(), delivered[i] * samplesPerPoint);
        }
    }
    EXPECT_THAT(first.wrong, testing::IsEmpty());
}

} // namespace
