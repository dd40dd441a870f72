// How many small reads a second the service answers, and how long small requests wait while deliveries are
// taken in.
//
// The real service runs in a process of its own on a file in the folder for temporary files, and is asked
// with a token that it made. Beside it, in turn: a request of the same service that needs neither token nor
// store, and a server that does nothing but send the same bytes.
//
//   bench_requests [REQUESTS [DELIVERIES]]    of a round, and of each client that delivers; 20000 and 20 when
//   not given

#include "DeliveryText.h"
#include "LoadGenerator.h"
#include "peers/BareServer.h"
#include "service/admin/ServiceProcess.h"
#include "service/http/RawClient.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace monitorservice::test;
using Clock = std::chrono::steady_clock;

constexpr std::size_t connectionCount = 16;
constexpr int roundCount = 7;

std::string jsonMember(const std::string& json, const std::string& name)
{
    const std::string begin = "\"" + name + "\":\"";
    const std::size_t found = json.find(begin);
    if (found == std::string::npos) {
        throw std::runtime_error("no " + name + " in " + json);
    }
    const std::size_t value = found + begin.size();
    return json.substr(value, json.find('"', value) - value);
}

// A service with one project and a token that may do everything in it.
class Site
{
public:
    Site() : m_file(m_folder.file("data.db"))
    {
        m_project =
            admin({"project", "create", "--name", "Harbour tunnel", "--time-zone", "Europe/Vienna"}).line();
        admin({"category", "add", "Settlement"});
        m_subCategory = admin({"subcategory", "create", "--project", m_project, "--category", "Settlement",
                               "--name", "Ground level"})
                            .line();
        const std::string token = admin({"token", "create", "--owner", "A. Engineer", "--json"}).out;
        m_token = jsonMember(token, "token");
        admin({"grant", "--token", jsonMember(token, "_id"), "--project", m_project, "--role", "editor"});

        m_service = std::make_unique<ServiceProcess>(
            std::vector<std::string>{"serve", "--data", m_file, "--listen", "127.0.0.1:0"});
        const std::string line = m_service->readLine();
        m_port = static_cast<std::uint16_t>(
            std::strtoul(line.substr(std::min(line.rfind(':'), line.size() - 1) + 1).c_str(), nullptr, 10));
    }

    std::uint16_t port() const { return m_port; }

    std::string requestText(const std::string& method, const std::string& path,
                            const std::string& body = {}) const
    {
        std::string text = method + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(m_port) +
                           "\r\nAccept: application/json\r\nAuthorization: Bearer " + m_token + "\r\n";
        if (!body.empty()) {
            text +=
                "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
        }
        return text + "\r\n" + body;
    }

    // The body of the answer; throws when the service refuses.
    std::string call(const std::string& request) const
    {
        RawClient client(m_port);
        return call(client, request);
    }

    static std::string call(RawClient& client, const std::string& request)
    {
        client.send(request);
        RawAnswer answer = client.readAnswer();
        if (answer.status >= 300) {
            throw std::runtime_error("refused: " + answer.statusLine + " " + answer.body.substr(0, 500));
        }
        return std::move(answer.body);
    }

    // The document of a new monitoring.
    std::string newCell(const std::string& name) const
    {
        return call(requestText("POST", "/monitor-service/cells",
                                R"({"projectId":")" + m_project + R"(","name":")" + name +
                                    R"(","category":"Settlement","alarmTo":["site@example.org"],)"
                                    R"("links":[{"type":"model","rId":"m1"}]})"));
    }

    DeliveryTarget targetIn(const std::string& cell) const
    {
        return {m_project, jsonMember(cell, "_id"), m_subCategory};
    }

private:
    CommandResult admin(const std::vector<std::string>& arguments) const
    {
        CommandResult result = runAdmin(m_file, arguments);
        if (result.exitCode != 0) {
            throw std::runtime_error("monitor-service admin: " + result.error);
        }
        return result;
    }

    TemporaryFolder m_folder;
    std::string m_file;
    std::string m_project;
    std::string m_subCategory;
    std::string m_token;
    std::unique_ptr<ServiceProcess> m_service;
    std::uint16_t m_port = 0;
};

std::string cellPath(const std::string& cell)
{
    return "/monitor-service/cells/" + jsonMember(cell, "_id");
}

struct Contestant
{
    const char* name;
    std::unique_ptr<LoadGenerator> generator;
    std::vector<Load> loads = {}; // of each round
};

double perSecond(const Load& load)
{
    return static_cast<double>(load.milliseconds.size()) / load.seconds;
}

// The median over the rounds of what is measured in each.
double overRounds(const std::vector<Load>& loads, const std::function<double(const Load&)>& measure)
{
    std::vector<double> values;
    values.reserve(loads.size());
    for (const Load& load : loads) {
        values.push_back(measure(load));
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void print(const Contestant& contestant, double first)
{
    const std::vector<Load>& loads = contestant.loads;
    const auto [least, most] = std::minmax_element(
        loads.begin(), loads.end(), [](const Load& a, const Load& b) { return perSecond(a) < perSecond(b); });
    const double speed = overRounds(loads, perSecond);
    std::printf("  %-28s %7.0f requests/s  (%.0f to %.0f)  ratio %.3f  median %.2f ms  p99 %.2f ms  longest "
                "%.1f ms\n",
                contestant.name, speed, perSecond(*least), perSecond(*most), first / speed,
                overRounds(loads, [](const Load& load) { return percentile(load.milliseconds, 0.5); }),
                overRounds(loads, [](const Load& load) { return percentile(load.milliseconds, 0.99); }),
                overRounds(loads, [](const Load& load) { return load.milliseconds.back(); }));
}

std::unique_ptr<LoadGenerator> generator(std::uint16_t port, std::string request, std::string body)
{
    return std::make_unique<LoadGenerator>(port, std::move(request), std::move(body), connectionCount);
}

void measureReads(std::size_t requests)
{
    const Site site;
    const std::string cell = site.newCell("Tower 1");
    const std::string get = site.requestText("GET", cellPath(cell));
    const BareServer bare("HTTP/1.1 200 OK\r\nDate: Fri, 20 Nov 2026 18:46:16 GMT\r\n"
                          "Content-Type: application/json; charset=utf-8\r\nContent-Length: " +
                          std::to_string(cell.size()) + "\r\n\r\n" + cell);
    std::vector<Contestant> contestants;
    contestants.push_back({"GET cells/{id}", generator(site.port(), get, cell)});
    contestants.push_back(
        {"GET healthz", generator(site.port(), site.requestText("GET", "/healthz"), R"({"status":"ok"})")});
    contestants.push_back({"bare server, the same bytes", generator(bare.port(), get, cell)});

    for (Contestant& contestant : contestants) {
        contestant.generator->run(requests / 10 + 1);
    }
    for (int round = 0; round < roundCount; ++round) {
        for (Contestant& contestant : contestants) {
            contestant.loads.push_back(contestant.generator->run(requests));
        }
    }
    std::printf("%zu connections, median of %d rounds of %zu\n", connectionCount, roundCount, requests);
    const double first = overRounds(contestants.front().loads, perSecond);
    for (const Contestant& contestant : contestants) {
        print(contestant, first);
    }
}

// Sends requests one after the other over one connection, in a thread of its own, and measures how long each
// takes.
class SmallRequests
{
public:
    SmallRequests(const Site& site, std::function<std::string(int)> requestText)
        : m_client(site.port()), m_requestText(std::move(requestText)), m_thread([this] { run(); })
    {
    }

    // What the requests took that were begun so far, in milliseconds, rising.
    std::vector<double> finish()
    {
        m_isOver = true;
        m_thread.join();
        std::sort(m_milliseconds.begin(), m_milliseconds.end());
        return std::move(m_milliseconds);
    }

private:
    void run()
    {
        for (int number = 0; !m_isOver; ++number) {
            const std::string request = m_requestText(number);
            const Clock::time_point begin = Clock::now();
            Site::call(m_client, request);
            m_milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        }
    }

    RawClient m_client;
    std::function<std::string(int)> m_requestText;
    std::vector<double> m_milliseconds;
    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

void print(const char* what, const std::vector<double>& milliseconds)
{
    std::printf("  %-28s %7zu requests  median %.2f ms  p99 %.1f ms  longest %.1f ms\n", what,
                milliseconds.size(), percentile(milliseconds, 0.5), percentile(milliseconds, 0.99),
                milliseconds.back());
}

// How long a small write and a small read take while clients deliver, each its own deliveries.
void measureWaits(const Site& site, const char* title,
                  const std::vector<std::vector<std::string>>& deliveries)
{
    const std::string cell = site.newCell("Tower 1");
    const std::string get = site.requestText("GET", cellPath(cell));
    SmallRequests reads(site, [&get](int /*number*/) { return get; });
    SmallRequests writes(site, [&](int number) {
        return site.requestText("PUT", cellPath(cell),
                                R"({"name":"Tower )" + std::to_string(number) + R"("})");
    });
    std::vector<std::thread> clients;
    clients.reserve(deliveries.size());
    for (const std::vector<std::string>& ofClient : deliveries) {
        clients.emplace_back([&site, &ofClient] {
            RawClient client(site.port());
            for (const std::string& delivery : ofClient) {
                Site::call(client, delivery);
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    const std::vector<double> ofWrites = writes.finish();
    const std::vector<double> ofReads = reads.finish();
    std::printf("%s\n", title);
    print("PUT cells/{id}", ofWrites);
    print("GET cells/{id}", ofReads);
}

std::string deliveryRequest(const Site& site, const std::string& body)
{
    return site.requestText("POST", "/monitor-service/pointLocations", body);
}

void measureBesideLargestDelivery()
{
    const Site site;
    const std::string delivery =
        deliveryRequest(site, largestDelivery(site.targetIn(site.newCell("Tower 2"))));
    measureWaits(site, "beside a delivery of 64 MB", {{delivery}});
}

void measureBesideDeliveries(std::size_t clients, std::size_t deliveriesOfClient)
{
    constexpr std::size_t points = 100;
    constexpr std::size_t samplesPerPoint = 100;
    const Site site;
    std::vector<std::vector<std::string>> deliveries(clients);
    for (std::vector<std::string>& ofClient : deliveries) {
        const DeliveryTarget target = site.targetIn(site.newCell("Tower 2"));
        for (std::size_t i = 0; i < deliveriesOfClient; ++i) {
            ofClient.push_back(
                deliveryRequest(site, deliveryText(target, points, samplesPerPoint, i * samplesPerPoint)));
        }
    }
    const std::string title =
        "beside " + std::to_string(clients) + " clients that deliver 10000 samples at a time";
    measureWaits(site, title.c_str(), deliveries);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::size_t requests = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 20'000;
        const std::size_t deliveries = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 20;
        measureReads(requests);
        measureBesideLargestDelivery();
        measureBesideDeliveries(3, deliveries);
        measureBesideDeliveries(12, deliveries);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_requests: %s\n", error.what());
        return 1;
    }
}
