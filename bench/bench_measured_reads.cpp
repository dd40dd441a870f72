// How long the service takes to answer with measured data, through HTTP on the loopback and out of ten
// million samples: a page of 100 points with 100 samples each, and daily statistics of a monitoring and of
// the whole project; and, of another project, a list of all its points with their latest samples or none. The
// stores are made first, in folders of their own, and are gone afterwards.
//
//   bench_measured_reads [CELLS]    a million samples in each, and 1000 points in each of the other; 10 when
//                                   not given

#include "MeasuredReads.h"
#include "Series.h"
#include "time/Instant.h"
#include "time/LocalDays.h"
#include "time/Timestamp.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <set>
#include <utility>

using namespace monitorservice;
using namespace monitorservice::bench;

namespace {

constexpr int rounds = 21;
constexpr int pointsOfACell = 100;
constexpr Instant hour = 3600 * 1000;
constexpr Series series{hour, 10'000}; // more than a year
constexpr int manyPointsOfACell = 1000;
constexpr Series dailySeries{24 * hour, 100};

std::vector<std::string> fill(Store& store, int cellCount, int pointCount, const Series& ofAPoint)
{
    const auto session = store.write();
    std::vector<std::string> cells;
    for (int cell = 0; cell < cellCount; ++cell) {
        cells.push_back(insertMonitoring(*session, "Cell", "Settlement"));
        for (int point = 0; point < pointCount; ++point) {
            insertPoint(*session, cells.back(), "s", "S" + std::to_string(point), ofAPoint);
        }
    }
    session->commit();
    return cells;
}

// From one instant to before another.
struct Period
{
    Instant from;
    Instant before;

    std::string text() const { return periodText(isoText(from), isoText(before)); }
};

// Days of Vienna's calendar, and whether samples flagged "B" are left out.
struct Days
{
    Period period;
    int points;
    bool onlyFlagA = false;
};

bool isPage(const std::string& body, const Period& period)
{
    simdjson::dom::parser parser;
    const simdjson::dom::array points = parser.parse(body);
    const int first = series.lastBefore(period.from) + 1;
    bool isRight = points.size() == pointsOfACell;
    for (const simdjson::dom::element point : points) {
        isRight = isRight &&
                  holdsSamples(point["data"], series, first, series.lastBefore(period.before) + 1 - first);
    }
    return isRight;
}

bool isNewest(const std::string& body, const Period& period)
{
    simdjson::dom::parser parser;
    const simdjson::dom::array points = parser.parse(body);
    const int first = series.lastBefore(period.from) + 1;
    return points.size() == 1 &&
           holdsSamples(points.at(0)["data"], series, first, series.lastBefore(period.before) + 1 - first);
}

// The last sample of the day that the period holds.
Sample lastOf(const Days& days, std::int64_t day)
{
    const LocalDays calendar("Europe/Vienna");
    int number = series.lastBefore(std::min(calendar.beginOf(day + 1), days.period.before));
    number -= days.onlyFlagA ? number % 2 : 0;
    return series.at(number);
}

bool isDay(simdjson::dom::array values, const Sample& sample, int points)
{
    const std::string time = isoText(sample.time);
    std::set<std::pair<std::string_view, std::string_view>> seen;
    for (const simdjson::dom::element value : values) {
        const auto place =
            std::make_pair(value["name"].get_string().value(), value["_id"].get_string().value());
        const bool rises = seen.empty() || *seen.rbegin() < place;
        if (!rises || value["time"].get_string().value() != time ||
            value["value"].get_double().value() != sample.value) {
            return false;
        }
        seen.insert(place);
    }
    return static_cast<int>(seen.size()) == points;
}

bool areStatistics(const std::string& body, const Days& days)
{
    LocalDays calendar("Europe/Vienna");
    simdjson::dom::parser parser;
    const simdjson::dom::array array = parser.parse(body);
    std::int64_t day = calendar.dayOf(days.period.from);
    for (const simdjson::dom::element element : array) {
        const Instant begin = calendar.beginOf(day);
        if (element["time"].get_string().value() != isoText(begin, calendar.offsetMinutesAt(begin)) ||
            !isDay(element["data"], lastOf(days, day), days.points)) {
            return false;
        }
        ++day;
    }
    return calendar.dayOf(days.period.before - 1) == day - 1;
}

Period periodOf(const char* from, const char* before)
{
    return {parseTimestamp(from)->milliseconds, parseTimestamp(before)->milliseconds};
}

std::string ofCell(const std::string& cell, const std::string& more)
{
    return R"({"cellId":")" + cell + "\"," + more + '}';
}

Read statistics(const char* name, ServedStore& served, const std::string& where, const Days& days)
{
    return {name, &served, "normal_statistics", "expand=true&", where, [days](const std::string& body) {
                return areStatistics(body, days);
            }};
}

std::vector<Read> reads(ServedStore& served, const std::string& cell, int points)
{
    const Period hours = periodOf("2015-06-01T00:00:00Z", "2015-06-05T04:00:00Z");
    const Period days = periodOf("2015-06-01T00:00:00+02:00", "2015-07-01T00:00:00+02:00");
    const Period unaligned = periodOf("2015-06-01T09:30:00+02:00", "2015-07-01T09:30:00+02:00");
    const Period year = periodOf("2015-02-01T00:00:00+01:00", "2016-02-01T00:00:00+01:00");
    return {
        {"page of 100 points with 100 samples", &served, "pointLocations", "limit=100&expand=true&",
         ofCell(cell, hours.text()),
         [hours](const std::string& body) {
             return isPage(body, hours);
         }},
        {"newest measured point of a monitoring", &served, "pointLocations",
         "expand=true&order=-data.time&limit=1&skip=0&", ofCell(cell, hours.text()),
         [hours](const std::string& body) {
             return isNewest(body, hours);
         }},
        statistics("daily statistics, 30 days", served, ofCell(cell, days.text()), {days, pointsOfACell}),
        statistics("the same, period within days", served, ofCell(cell, unaligned.text()),
                   {unaligned, pointsOfACell}),
        statistics("the same, samples flagged A", served,
                   ofCell(cell, days.text() + R"(,"data.timeFlag":"A")"), {days, pointsOfACell, true}),
        statistics("daily statistics, 100 points in 365 days", served, ofCell(cell, year.text()),
                   {year, pointsOfACell}),
        statistics("the whole project in 365 days", served, '{' + year.text() + '}', {year, points}),
    };
}

// Whether each point has its earliest value as reference, and so many of its latest samples.
bool areDigests(const std::string& body, int points, int samples)
{
    simdjson::dom::parser parser;
    const simdjson::dom::array array = parser.parse(body);
    int number = 0;
    for (const simdjson::dom::element point : array) {
        if (point["reference"].get_double().value() != dailySeries.at(0).value ||
            !holdsSamples(point["data"], dailySeries, dailySeries.count - samples, samples)) {
            return false;
        }
        ++number;
    }
    return number == points;
}

Read digests(const std::string& name, ServedStore& served, const char* parameters, int points, int samples)
{
    return {std::to_string(points) + name,
            &served,
            "pointLocations",
            parameters,
            "{}",
            [=](const std::string& body) {
                return areDigests(body, points, samples);
            }};
}

void runDigests(int cellCount)
{
    ServedStore served;
    fill(served.store(), cellCount, manyPointsOfACell, dailySeries);
    const int points = cellCount * manyPointsOfACell;
    printReads("Lists of points with 100 samples each",
               {digests(" points with their latest sample", served, "samples=latest&", points, 1),
                digests(" points without samples", served, "samples=none&", points, 0),
                digests(" points with their latest sample and the extremes of 100 days", served,
                        "samples=latest&rollup=true&", points, 1)},
               rounds);
}

void run(int cellCount)
{
    ServedStore served;
    const auto start = std::chrono::steady_clock::now();
    const std::vector<std::string> cells = fill(served.store(), cellCount, pointsOfACell, series);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    const int points = cellCount * pointsOfACell;
    std::printf("%d samples of %d points written in %.1f s\n", points * series.count, points, taken.count());
    printReads("Reads of measured data", reads(served, cells[cells.size() / 2], points), rounds);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const int cellCount = argc > 1 ? std::atoi(argv[1]) : 10;
        run(cellCount);
        runDigests(cellCount);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_measured_reads: %s\n", error.what());
        return 1;
    }
}
