// What rkmon takes at a terminal: an import of a large file, with the service that holds it then, a dry run
// of the same, and the start of a command that needs nothing.
//
// The service runs in a process of its own. The peer of the dry run is a script of Python's csv module that
// turns the same cells into numbers and times and keeps them, as an engineer would write it.
//
//   bench_rkmon [ROWS [ROUNDS]]    1000000 and 3 when not given

#include "ServedSite.h"
#include "support/ChildProcess.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace monitorservice::test;
using Clock = std::chrono::steady_clock;

constexpr int pointCount = 200;

// Readings of points every hour, as a logger writes them.
void writeReadings(const std::string& path, long rows)
{
    std::ofstream file(path);
    file << "name,depth,time,count,value\n";
    char line[100];
    for (long row = 0; row < rows; ++row) {
        const long hour = row / pointCount;
        const int point = static_cast<int>(row % pointCount);
        const std::time_t time = 1'704'067'200 + hour * 3600; // from 1 January 2024 on
        std::tm parts{};
        gmtime_r(&time, &parts);
        char text[32];
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
        std::snprintf(line, sizeof line, "P%03d,,%s,%ld,%.3f\n", point, text, hour + 1,
                      10 * std::sin(static_cast<double>(hour) / 300 + point));
        file << line;
    }
}

// Runs a program to its end and gives the seconds it took; throws when it fails.
double secondsOf(const std::vector<std::string>& command)
{
    const Clock::time_point begin = Clock::now();
    ChildProcess process(command);
    const std::string output = process.readOutput();
    const std::string errors = process.readErrors();
    if (process.wait() != 0) {
        throw std::runtime_error(command.front() + " failed: " + errors);
    }
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// The same until the first bytes that it writes.
double secondsToFirstLine(const std::vector<std::string>& command)
{
    const Clock::time_point begin = Clock::now();
    ChildProcess process(command);
    process.readLine();
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    process.readOutput();
    process.wait();
    return seconds;
}

struct Figures
{
    const char* name;
    std::vector<double> seconds = {};

    double median()
    {
        std::sort(seconds.begin(), seconds.end());
        return seconds[seconds.size() / 2];
    }
    void print(double scale, const char* unit)
    {
        const double middle = median();
        std::printf("  %-34s %8.2f %s  (%.2f to %.2f)\n", name, middle * scale, unit, seconds.front() * scale,
                    seconds.back() * scale);
    }
};

// The most that a process has held, in MB: "VmHWM" of proc(5).
double mostMemory(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) {
            return std::strtod(line.c_str() + 6, nullptr) / 1024;
        }
    }
    return 0;
}

// The most that any program has held that was run to its end, in MB.
double mostMemoryOfPrograms()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void configure(const ServedSite& site)
{
    const std::string tokenFile = site.folder().file("token");
    std::ofstream(tokenFile) << site.token() << '\n';
    std::filesystem::permissions(tokenFile, std::filesystem::perms::owner_read);
    setenv("RKMON_BASE_API", ("http://127.0.0.1:" + std::to_string(site.port()) + "/").c_str(), 1);
    setenv("RKMON_PROJECT", site.project().c_str(), 1);
    setenv("RKMON_TOKEN_FILE", tokenFile.c_str(), 1);
    setenv("XDG_CONFIG_HOME", site.folder().path().c_str(), 1);
}

const char* const script = R"(
import csv, datetime, sys
points = {}
with open(sys.argv[1], newline='') as file:
    for row in csv.DictReader(file):
        time = datetime.datetime.fromisoformat(row['time'])
        points.setdefault((row['name'], row['depth']), []).append((time, int(row['count']), float(row['value'])))
for readings in points.values():
    readings.sort()
)";

void measureImport(long rows, int rounds)
{
    const ServedSite site;
    configure(site);
    const std::string file = site.folder().file("readings.csv");
    writeReadings(file, rows);
    Figures imported{"import, with the service"};
    Figures repeated{"the same again"};
    Figures rehearsed{"--dry-run of points that are new"};
    Figures read{"Python's csv module, reading alone"};
    for (int round = 0; round < rounds; ++round) {
        const std::string cell = "Pit " + std::to_string(round);
        site.newCell(cell);
        const std::vector<std::string> import{RKMON_EXECUTABLE, "point",        "import", "--cell", cell,
                                              "--sub-category", "Ground level", file};
        std::vector<std::string> rehearsal = import;
        rehearsal.emplace_back("--dry-run");
        rehearsed.seconds.push_back(secondsOf(rehearsal));
        imported.seconds.push_back(secondsOf(import));
        repeated.seconds.push_back(secondsOf(import));
        if (round == 0) { // what the peer holds is not rkmon's
            std::printf("%ld rows; at most %.0f MB in rkmon, %.0f MB in the service\n", rows,
                        mostMemoryOfPrograms(), mostMemory(site.processId()));
        }
        read.seconds.push_back(secondsOf({PYTHON_EXECUTABLE, "-c", script, file}));
    }
    for (Figures* figures : {&imported, &repeated, &rehearsed, &read}) {
        figures->print(1, "s");
    }
    std::printf("  ratio of the dry run to Python      %8.2f\n", rehearsed.median() / read.median());
}

void measureStart()
{
    constexpr int rounds = 41;
    Figures help{"rkmon --help, to its first line"};
    Figures version{"rkmon --version, to its end"};
    Figures python{"python3 -c pass"};
    for (int round = 0; round < rounds; ++round) {
        help.seconds.push_back(secondsToFirstLine({RKMON_EXECUTABLE, "--help"}));
        version.seconds.push_back(secondsOf({RKMON_EXECUTABLE, "--version"}));
        python.seconds.push_back(secondsOf({PYTHON_EXECUTABLE, "-c", "pass"}));
    }
    std::printf("start, %d times\n", rounds);
    for (Figures* figures : {&help, &version, &python}) {
        figures->print(1000, "ms");
    }
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const long rows = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1'000'000;
        const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
        measureImport(rows, rounds);
        measureStart();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_rkmon: %s\n", error.what());
        return 1;
    }
}
