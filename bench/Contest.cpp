#include "Contest.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

double microsecondsPerOperation(const std::function<void()>& operation, int count)
{
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        operation();
    }
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - begin;
    return time.count() / count;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// What so many rounds took in proportion to the same rounds of another: what slows a round slows both.
double medianRatio(const std::vector<double>& times, const std::vector<double>& others)
{
    std::vector<double> ratios;
    for (std::size_t round = 0; round < times.size(); ++round) {
        ratios.push_back(times[round] / others[round]);
    }
    return median(ratios);
}

} // namespace

void runContest(const std::string& title, const std::vector<Contestant>& contestants, int rounds,
                int operationsPerRound)
{
    std::vector<std::vector<double>> times(contestants.size());
    for (const Contestant& contestant : contestants) {
        microsecondsPerOperation(contestant.operation,
                                 operationsPerRound / contestant.oneIn / 10 + 1); // connects and warms up
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            times[i].push_back(microsecondsPerOperation(
                contestants[i].operation, std::max(operationsPerRound / contestants[i].oneIn, 1)));
        }
    }

    std::printf("%s, median of %d rounds of %d\n", title.c_str(), rounds, operationsPerRound);
    for (std::size_t i = 0; i < contestants.size(); ++i) {
        const auto [least, most] = std::minmax_element(times[i].begin(), times[i].end());
        std::printf("  %-40s %8.1f us  (%.1f to %.1f)  ratio %.3f\n", contestants[i].name.c_str(),
                    median(times[i]), *least, *most, medianRatio(times[i], times.front()));
    }
    std::fflush(stdout);
}
