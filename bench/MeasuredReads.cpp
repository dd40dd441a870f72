#include "MeasuredReads.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <stdexcept>

namespace monitorservice::bench {

namespace {

struct Measured
{
    std::string body;
    std::vector<double> milliseconds;
};

std::string bodyOf(const Read& read)
{
    return read.served->get(read.list, read.parameters, read.where);
}

void measureOnce(const Read& read, Measured& measured)
{
    const auto begin = std::chrono::steady_clock::now();
    const std::string body = bodyOf(read);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
    measured.milliseconds.push_back(taken.count());
    if (body != measured.body) {
        throw std::runtime_error(read.name + ": the answer has changed");
    }
}

Timing timingOf(Measured& measured)
{
    std::vector<double>& times = measured.milliseconds;
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.front(), times.back(), measured.body.size()};
}

} // namespace

std::vector<Timing> timeReads(const std::vector<Read>& reads, int rounds)
{
    std::vector<Measured> results;
    for (const Read& read : reads) {
        results.push_back({bodyOf(read), {}});
        if (!read.isRight(results.back().body)) {
            throw std::runtime_error(read.name + ": a wrong answer: " + results.back().body.substr(0, 500));
        }
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < reads.size(); ++i) {
            measureOnce(reads[i], results[i]);
        }
    }
    std::vector<Timing> timings;
    std::transform(results.begin(), results.end(), std::back_inserter(timings), timingOf);
    return timings;
}

void printReads(const std::string& title, const std::vector<Read>& reads, int rounds)
{
    const std::vector<Timing> timings = timeReads(reads, rounds);
    std::printf("%s, median of %d rounds\n", title.c_str(), rounds);
    for (std::size_t i = 0; i < reads.size(); ++i) {
        const Timing& timing = timings[i];
        std::printf("  %-76s %8.2f ms  (%.2f to %.2f)  %9zu bytes\n", reads[i].name.c_str(), timing.median,
                    timing.least, timing.most, timing.bytes);
    }
    std::fflush(stdout);
}

} // namespace monitorservice::bench
