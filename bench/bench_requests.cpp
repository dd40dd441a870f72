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
#include "ServedSite.h"
#include "peers/BareServer.h"
#include "service/http/RawClient.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace monitorservice::test;
using Clock = std::chrono::steady_clock;

constexpr std::size_t connectionCount = 16;
constexpr int roundCount = 7;

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
    const ServedSite site;
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
    SmallRequests(const ServedSite& site, std::function<std::string(int)> requestText)
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
            ServedSite::call(m_client, request);
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
void measureWaits(const ServedSite& site, const char* title,
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
                ServedSite::call(client, delivery);
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

std::string deliveryRequest(const ServedSite& site, const std::string& body)
{
    return site.requestText("POST", "/monitor-service/pointLocations", body);
}

void measureBesideLargestDelivery()
{
    const ServedSite site;
    const std::string delivery =
        deliveryRequest(site, largestDelivery(site.targetIn(site.newCell("Tower 2"))));
    measureWaits(site, "beside a delivery of 64 MB", {{delivery}});
}

void measureBesideDeliveries(std::size_t clients, std::size_t deliveriesOfClient)
{
    constexpr std::size_t points = 100;
    constexpr std::size_t samplesPerPoint = 100;
    const ServedSite site;
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
