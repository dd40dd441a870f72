// The same requests to two services as they are shipped, one on a file and one on a PostgreSQL database:
// deliveries small and large, by one client and by several, and reads out of what was delivered. Services,
// database and clients share the machine, and take turns in rounds.
//
//   bench_stores URL [HOURS [ROUNDS]]    URL: an empty database; HOURS: how long 100 points are measured
//   before the reads, hourly, a year when not given; ROUNDS: 5 when not given

#include "LoadGenerator.h"
#include "ServedSite.h"
#include "service/http/RawClient.h"
#include "time/Instant.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace monitorservice;
using namespace monitorservice::test;
using Clock = std::chrono::steady_clock;

constexpr Instant hour = 3600 * 1000;
constexpr Instant begin = 1420066800000; // 2015-01-01T00:00:00+01:00
constexpr int pointsOfAPage = 100;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// A service, and how far in time the points of each client have come.
class Site
{
public:
    Site(const char* name, std::unique_ptr<ServedSite> served) : m_name(name), m_served(std::move(served))
    {
        for (std::size_t i = 0; i < mostClients; ++i) {
            m_targets.push_back(m_served->targetIn(m_served->newCell("Tower " + std::to_string(i))));
        }
        m_measured = m_served->targetIn(m_served->newCell("Measured"));
    }

    static constexpr std::size_t mostClients = 16;

    const char* name() const { return m_name; }
    const ServedSite& served() const { return *m_served; }
    const DeliveryTarget& target(std::size_t client) const { return m_targets.at(client); }
    const DeliveryTarget& measured() const { return m_measured; }
    // Of readings nobody has delivered yet.
    int nextHour() { return m_hour++; }

private:
    const char* m_name;
    std::unique_ptr<ServedSite> m_served;
    std::vector<DeliveryTarget> m_targets;
    DeliveryTarget m_measured;
    int m_hour = 0;
};

// Readings of so many points in each of the hours from one on.
std::string delivery(const ServedSite& served, const DeliveryTarget& target, const std::string& names,
                     int points, int first, int hours)
{
    std::string body = "[";
    for (int point = 0; point < points; ++point) {
        body += point > 0 ? "," : "";
        body += R"({"projectId":")" + target.project + R"(","cellId":")" + target.cell +
                R"(","subCategoryId":")" + target.subCategory + R"(","name":")" + names +
                std::to_string(point) + R"(","initialValue":1,"data":[)";
        for (int number = first; number < first + hours; ++number) {
            body += number > first ? "," : "";
            body += R"({"count":)" + std::to_string(number) + R"(,"time":")" +
                    isoText(begin + number * hour) + R"(","value":)" +
                    std::to_string(1 + 0.001 * (number % 977)) + R"(,"timeFlag":""})";
        }
        body += "]}";
    }
    return served.requestText("POST", "/monitor-service/pointLocations", body + "]");
}

// The time of each request, in milliseconds.
using Times = std::vector<double>;

Times timesOf(const ServedSite& served, const std::vector<std::string>& requests)
{
    RawClient client(served.port());
    Times times;
    times.reserve(requests.size());
    for (const std::string& request : requests) {
        const Clock::time_point start = Clock::now();
        ServedSite::call(client, request);
        times.push_back(millisecondsSince(start));
    }
    return times;
}

struct Done
{
    Times times;
    double seconds = 0;
};

// Deliveries of so many points each, by so many clients at once: to monitorings of their own, or all to one.
Done deliver(Site& site, std::size_t clients, bool isToOne, int points, int deliveriesOfEach)
{
    std::vector<std::vector<std::string>> requests(clients);
    for (std::size_t client = 0; client < clients; ++client) {
        const std::string names = (isToOne ? "C" + std::to_string(client) + "-" : "P");
        for (int i = 0; i < deliveriesOfEach; ++i) {
            requests[client].push_back(delivery(site.served(), site.target(isToOne ? 0 : client), names,
                                                points, site.nextHour(), 1));
        }
    }
    std::vector<Times> times(clients);
    std::vector<std::thread> threads;
    const Clock::time_point start = Clock::now();
    for (std::size_t client = 0; client < clients; ++client) {
        threads.emplace_back(
            [&site, &requests, &times, client] { times[client] = timesOf(site.served(), requests[client]); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Done done;
    done.seconds = millisecondsSince(start) / 1000;
    for (const Times& ofClient : times) {
        done.times.insert(done.times.end(), ofClient.begin(), ofClient.end());
    }
    return done;
}

std::string read(const Site& site, const std::string& list, const std::string& parameters, Instant from,
                 Instant before)
{
    std::string where = R"({"cellId":")" + site.measured().cell + R"(","time":{"$gte":")" + isoText(from) +
                        R"(","$lt":")" + isoText(before) + R"("}})";
    std::string encoded;
    for (const char character : where) {
        constexpr const char* digits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(character);
        encoded += {'%', digits[byte >> 4U], digits[byte & 0x0fU]};
    }
    return site.served().requestText("GET", "/monitor-service/projects/" + site.measured().project + "/" +
                                                list + "?" + parameters + "where=" + encoded);
}

// A thing to do, and what it took in each round on each of the stores.
struct Task
{
    std::string name;
    std::function<Done(Site&)> run;
    std::vector<std::vector<double>> perRequest = {}; // milliseconds, by store and round: the median
    std::vector<std::vector<double>> slowest = {};    // the 99th percentile
    std::vector<std::vector<double>> speed = {};      // requests a second
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

Task deliveries(const std::string& name, std::size_t clients, bool isToOne, int points, int each)
{
    return {name, [=](Site& site) {
                return deliver(site, clients, isToOne, points, each);
            }};
}

Task reads(const std::string& name, const std::string& list, const std::string& parameters, Instant from,
           Instant before)
{
    return {name, [=](Site& site) {
                constexpr int times = 5;
                const Clock::time_point start = Clock::now();
                Done done;
                done.times =
                    timesOf(site.served(),
                            std::vector<std::string>(times, read(site, list, parameters, from, before)));
                done.seconds = millisecondsSince(start) / 1000;
                return done;
            }};
}

void runRound(std::vector<Task>& tasks, std::vector<Site>& sites, bool counts)
{
    for (Task& task : tasks) {
        task.perRequest.resize(sites.size());
        task.slowest.resize(sites.size());
        task.speed.resize(sites.size());
        for (std::size_t store = 0; store < sites.size(); ++store) {
            Done done = task.run(sites[store]);
            if (counts) {
                std::sort(done.times.begin(), done.times.end());
                task.perRequest[store].push_back(percentile(done.times, 0.5));
                task.slowest[store].push_back(percentile(done.times, 0.99));
                task.speed[store].push_back(static_cast<double>(done.times.size()) / done.seconds);
            }
        }
    }
}

void print(const Task& task, const std::vector<Site>& sites)
{
    std::printf("%s\n", task.name.c_str());
    for (std::size_t store = 0; store < sites.size(); ++store) {
        std::vector<double> ratios;
        for (std::size_t round = 0; round < task.speed[store].size(); ++round) {
            ratios.push_back(task.speed[store][round] / task.speed[0][round]);
        }
        std::printf("  %-9s median %8.2f ms  p99 %8.2f ms  %8.1f a second  ratio %.2f\n", sites[store].name(),
                    median(task.perRequest[store]), median(task.slowest[store]), median(task.speed[store]),
                    median(ratios));
    }
}

// So many hourly readings of a hundred points, in deliveries of ten thousand.
void fill(const Site& site, int hours)
{
    std::vector<std::string> requests;
    for (int first = 0; first < hours; first += 100) {
        requests.push_back(delivery(site.served(), site.measured(), "S", pointsOfAPage, first,
                                    std::min(100, hours - first)));
    }
    const Clock::time_point start = Clock::now();
    timesOf(site.served(), requests);
    const double samples = static_cast<double>(hours) * pointsOfAPage;
    std::printf("%-9s %.0f samples of %d points, 10000 a delivery: %.0f samples/s\n", site.name(), samples,
                pointsOfAPage, samples * 1000 / millisecondsSince(start));
}

void measure(const std::string& url, int hours, int rounds)
{
    std::vector<Site> sites;
    sites.emplace_back("file", std::make_unique<ServedSite>());
    sites.emplace_back("database", std::make_unique<ServedSite>(url));
    for (const Site& site : sites) {
        fill(site, hours);
    }
    constexpr Instant day = 24 * hour;
    const Instant middle = begin + hours / 2 * hour;
    std::vector<Task> tasks{
        deliveries("deliveries of 1 point, one client", 1, false, 1, 100),
        deliveries("deliveries of 1 point, 4 clients with monitorings of their own", 4, false, 1, 50),
        deliveries("deliveries of 1 point, 16 clients with monitorings of their own", 16, false, 1, 25),
        deliveries("deliveries of 1 point, 16 clients, all to one monitoring", 16, true, 1, 25),
        deliveries("deliveries of 100 points, one client", 1, false, 100, 20),
        deliveries("deliveries of 100 points, 4 clients with monitorings of their own", 4, false, 100, 10),
        deliveries("deliveries of 10000 points, one client", 1, false, 10'000, 1),
        reads("page of 100 points with 100 samples each", "pointLocations", "limit=100&expand=true&", middle,
              middle + 100 * hour),
        reads("daily statistics of 100 points, 30 days", "normal_statistics", "expand=true&", middle,
              middle + 30 * day),
        reads("daily statistics of 100 points, all of it", "normal_statistics", "expand=true&", begin,
              begin + hours * hour),
    };
    runRound(tasks, sites, false);
    for (int round = 0; round < rounds; ++round) {
        runRound(tasks, sites, true);
    }
    std::printf("Medians of %d rounds; the ratio is that of requests a second to the file's\n", rounds);
    for (const Task& task : tasks) {
        print(task, sites);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_stores URL [HOURS [ROUNDS]]\n");
        return 2;
    }
    try {
        const int hours = argc > 2 ? std::atoi(argv[2]) : 365 * 24;
        const int rounds = argc > 3 ? std::atoi(argv[3]) : 5;
        measure(argv[1], hours, rounds);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_stores: %s\n", error.what());
        return 1;
    }
}
