// How many samples a second the service takes in through HTTP, and how much memory a delivery of 64 MB needs.
//
// The service runs in a process of its own on a file in the folder for temporary files; deliveries of 10 000
// samples are made beforehand and sent over connections that stay open. Linux: the memory is read from /proc.

#include "DeliveryText.h"
#include "access/Secret.h"
#include "api/Api.h"
#include "domain/Group.h"
#include "domain/SubCategory.h"
#include "http/HttpServer.h"
#include "service/http/RawClient.h"
#include "store/OpenStore.h"
#include "support/TemporaryFolder.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace monitorservice;

constexpr std::size_t samplesPerDelivery = 10'000;
constexpr int roundCount = 5;

void fill(Store& store)
{
    const auto session = store.write();
    session->projects().insert({"p", "Pit", "Europe/Vienna", 1});
    session->categories().add("Settlement");
    const std::string audit = R"("createdAt":"2015-12-01T00:00:00.000Z","createdBy":"Ada",)"
                              R"("updatedAt":"2015-12-01T00:00:00.000Z","updatedBy":"Ada"})";
    for (int i = 0; i < 10; ++i) {
        const std::string id = "c" + std::to_string(i);
        std::string document = R"({"_id":")";
        document += id;
        document += R"(","projectId":"p","name":"Cell","category":"Settlement","alarmTo":[],"links":[],)";
        document += audit;
        session->documents(DocumentKind::Cell).insert("p", id, document);
    }
    session->documents(DocumentKind::SubCategory)
        .insert("p", "s", toDocument(SubCategory{"s", "p", "Level", "Settlement", ""}));
    Group group;
    group.id = "g";
    group.project = "p";
    group.cell = "c0";
    group.subCategory = "s";
    group.name = "G";
    group.points = {"W0", "W1"};
    group.dayVariation = 5;
    group.totalVariation = 1000;
    session->documents(DocumentKind::Group).insert("p", "g", toDocument(group));
    session->tokens().insert({"t", "Ada", "", 1, std::nullopt, std::nullopt}, sha256("rkm_bench"));
    session->grants().add({"g", "t", "p", std::nullopt, Rights::ofBits(15), 1});
    session->commit();
}

// The service in a process of its own.
class ServiceProcess
{
public:
    ServiceProcess()
    {
        std::array<int, 2> pipes{};
        if (pipe(pipes.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        m_process = fork();
        if (m_process == 0) {
            ::close(pipes[0]);
            run(pipes[1]);
            std::_Exit(0);
        }
        ::close(pipes[1]);
        if (::read(pipes[0], &m_port, sizeof m_port) != sizeof m_port) {
            throw std::runtime_error("the service does not start");
        }
        ::close(pipes[0]);
    }
    ~ServiceProcess()
    {
        ::kill(m_process, SIGTERM);
        ::waitpid(m_process, nullptr, 0);
    }
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    std::uint16_t port() const { return m_port; }

    // The most that has been resident so far, in MB.
    double peakMegabytes() const
    {
        std::ifstream status("/proc/" + std::to_string(m_process) + "/status");
        std::string line;
        while (std::getline(status, line)) {
            if (line.rfind("VmHWM:", 0) == 0) {
                return std::strtod(line.c_str() + 6, nullptr) * 1024 / 1e6;
            }
        }
        return 0;
    }

private:
    static void run(int portPipe)
    {
        const test::TemporaryFolder folder;
        StoreOptions options;
        options.createIfMissing = true;
        const std::unique_ptr<Store> store = openStore(folder.file("data.db").string(), options);
        fill(*store);
        const auto counters = std::make_shared<HttpCounters>();
        const Api api(*store, counters);
        HttpServer server(
            ListenAddress(), HttpLimits(), [&api](HttpRequest&& request) { return api.answer(request); },
            counters);
        const std::uint16_t port = server.port();
        if (::write(portPipe, &port, sizeof port) != sizeof port) {
            throw std::runtime_error("nobody waits for the service");
        }
        server.runUntilSignal();
    }

    pid_t m_process = 0;
    std::uint16_t m_port = 0;
};

std::string requestText(const std::string& body)
{
    return "POST /monitor-service/pointLocations HTTP/1.1\r\nHost: localhost\r\nAuthorization: Bearer "
           "rkm_bench\r\nContent-Type: application/json\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

void send(test::RawClient& client, const std::string& request)
{
    client.send(request);
    const test::RawAnswer answer = client.readAnswer();
    if (answer.status != 200) {
        throw std::runtime_error("refused: " + answer.body.substr(0, 500));
    }
}

// Samples a second over so many connections, each of which delivers into a monitoring of its own.
double samplesPerSecond(std::size_t points, std::size_t deliveries, std::size_t connections)
{
    const ServiceProcess service;
    const std::size_t samplesPerPoint = samplesPerDelivery / points;
    std::vector<std::vector<std::string>> requests(connections);
    for (std::size_t i = 0; i < deliveries; ++i) {
        const std::size_t connection = i % connections;
        requests[connection].push_back(
            requestText(deliveryText({"p", "c" + std::to_string(connection), "s"}, points, samplesPerPoint,
                                     (i / connections) * samplesPerPoint)));
    }
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    threads.reserve(connections);
    for (const auto& ofConnection : requests) {
        threads.emplace_back([&service, &ofConnection] {
            test::RawClient client(service.port());
            for (const std::string& request : ofConnection) {
                send(client, request);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    return static_cast<double>(deliveries * samplesPerDelivery) / taken.count();
}

void measureMemory(const ServiceProcess& service, const char* what, const std::string& body)
{
    const double before = service.peakMegabytes();
    const auto begin = std::chrono::steady_clock::now();
    test::RawClient client(service.port());
    send(client, requestText(body));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::printf("%-42s %6.1f MB sent  %6.1f MB at most (%.1f before)  %5.1f s\n", what,
                static_cast<double>(body.size()) / 1e6, service.peakMegabytes(), before, taken.count());
}

// As many points with as long descriptions as one delivery may have, and samples for the rest of the body.
std::string deliveryOfManyPoints()
{
    constexpr std::size_t largest = 64 * 1024 * 1024;
    std::string body = "[";
    for (int i = 0; i < 49'999; ++i) {
        body += R"({"cellId":"c0","subCategoryId":"s","name":"W)" + std::to_string(i) + R"(","alias":")" +
                std::string(270, 'x') + R"("},)";
    }
    body += R"({"cellId":"c1","subCategoryId":"s","name":"W","data":[)";
    for (std::size_t sample = 0; body.size() < largest - 200; ++sample) {
        body += (sample == 0 ? "" : ",") + sampleText(sample);
    }
    return body + "]}]";
}

void measureMemory()
{
    const ServiceProcess one;
    const ServiceProcess other;
    measureMemory(one, "one point, as many samples as fit", largestDelivery({"p", "c0", "s"}));
    measureMemory(other, "50 000 points, then as many samples as fit", deliveryOfManyPoints());
}

struct Intake
{
    std::size_t points;
    std::size_t connections;
    std::vector<double> samplesPerSecond;
};

void print(Intake& intake)
{
    std::vector<double>& speeds = intake.samplesPerSecond;
    std::sort(speeds.begin(), speeds.end());
    std::printf("%5zu points a delivery, %zu connections  %9.0f samples/s  (%.0f to %.0f)\n", intake.points,
                intake.connections, speeds[speeds.size() / 2], speeds.front(), speeds.back());
}

// So many deliveries of each of these numbers of points, in rounds: what else the machine does meets all of
// them alike.
void measureSpeed(std::size_t deliveries, const std::vector<std::size_t>& pointsOfDelivery)
{
    std::vector<Intake> intakes;
    for (const std::size_t connections : {1, 2}) {
        for (const std::size_t points : pointsOfDelivery) {
            intakes.push_back({points, connections, {}});
        }
    }
    for (int round = 0; round < roundCount; ++round) {
        for (Intake& intake : intakes) {
            intake.samplesPerSecond.push_back(
                samplesPerSecond(intake.points, deliveries, intake.connections));
        }
    }
    std::printf("%zu deliveries of %zu samples, median of %d rounds\n", deliveries, samplesPerDelivery,
                roundCount);
    for (Intake& intake : intakes) {
        print(intake);
    }
}

// Without arguments everything; otherwise the number of deliveries, and of the points in each of them.
void measure(const std::vector<std::size_t>& numbers)
{
    const std::size_t deliveries = numbers.empty() ? 20 : numbers.front();
    if (numbers.size() > 1) {
        measureSpeed(deliveries, {numbers.begin() + 1, numbers.end()});
        return;
    }
    // First of all, and before any body is made: a process inherits the memory of the one it comes from.
    measureMemory();
    measureSpeed(deliveries, {1, 10, 100, 1'000, 10'000});
}

} // namespace

int main(int argc, char** argv)
{
    try {
        std::vector<std::size_t> numbers;
        for (int i = 1; i < argc; ++i) {
            numbers.push_back(std::strtoul(argv[i], nullptr, 10));
        }
        measure(numbers);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_deliveries: %s\n", error.what());
        return 1;
    }
}
