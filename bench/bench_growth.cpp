// Whether reads by key stay as fast while the store grows, through HTTP on the loopback: stores of 10^5, 10^6
// and 10^7 samples hold the same points to be read, beside ever more monitorings, or with ever longer series.
// The stores are made first, in folders of their own, and are gone afterwards.
//
//   bench_growth [SAMPLES]    of a point in the smallest store, which has 100 points; 1000 when not given

#include "MeasuredReads.h"
#include "Series.h"
#include "json/JsonText.h"
#include "time/Instant.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>

using namespace monitorservice;
using namespace monitorservice::bench;

namespace {

constexpr int rounds = 41;
constexpr int pointsOfACell = 100;
constexpr Instant minute = 60 * 1000;
constexpr int readSamples = 100;

struct Size
{
    int cells;
    int samplesOfAPoint;

    Series series() const { return {minute, samplesOfAPoint}; }
    double samples() const { return 1.0 * cells * pointsOfACell * samplesOfAPoint; }
};

// A store of a size, whose middle monitoring is read.
class GrownStore
{
public:
    explicit GrownStore(const Size& size) : m_size(size)
    {
        const auto session = served.store().write();
        for (int number = 0; number < size.cells; ++number) {
            // One monitoring has a sub-category of its own, as all others share one.
            const bool isRead = number == size.cells / 2;
            const std::string id = insertMonitoring(*session, "Cell", isRead ? "Inclinometer" : "Settlement");
            const std::string prefix = "C" + std::to_string(number) + "-S";
            for (int point = 0; point < pointsOfACell; ++point) {
                insertPoint(*session, id, isRead ? "i" : "s", prefix + std::to_string(point), size.series());
            }
            if (isRead) {
                cell = id;
                names = namesFrom(prefix);
            }
        }
        session->commit();
    }

    Series series() const { return m_size.series(); }
    double samples() const { return m_size.samples(); }

    ServedStore served;
    std::string cell;
    std::string names; // of its points, a JSON list

private:
    static std::string namesFrom(const std::string& prefix)
    {
        JsonArrayWriter list;
        for (int point = 0; point < pointsOfACell; ++point) {
            list.text(prefix + std::to_string(point));
        }
        return list.finish();
    }

    Size m_size;
};

// A condition by key, of which every store has its own.
struct Key
{
    const char* name;
    std::string (*where)(const GrownStore& store);
};

std::string byCell(const GrownStore& store)
{
    return R"("cellId":")" + store.cell + '"';
}

std::string byNames(const GrownStore& store)
{
    return R"("name":{"$in":)" + store.names + '}';
}

std::string byCellAndNames(const GrownStore& store)
{
    return byCell(store) + ',' + byNames(store);
}

std::string bySubCategory(const GrownStore& /*store*/)
{
    return R"("subCategoryId":"i")";
}

std::string byAll(const GrownStore& store)
{
    return byCellAndNames(store) + ',' + bySubCategory(store);
}

// The middle hundred samples that the shortest series has.
std::string period(const Series& shortest)
{
    const int first = (shortest.count - readSamples) / 2;
    return periodText(isoText(shortest.at(first).time), isoText(shortest.at(first + readSamples).time));
}

bool isPage(const std::string& body, std::size_t points, const Series& shortest)
{
    simdjson::dom::parser parser;
    const simdjson::dom::array page = parser.parse(body);
    bool isRight = page.size() == points;
    for (const simdjson::dom::element point : page) {
        isRight =
            isRight && holdsSamples(point["data"], shortest, (shortest.count - readSamples) / 2, readSamples);
    }
    return isRight;
}

// What is asked of each of the stores.
struct Question
{
    std::string name;
    std::string parameters;
    std::function<std::string(const GrownStore& store)> where;
    std::function<bool(const std::string& body)> isRight;
};

void measure(const Question& question, const std::vector<GrownStore*>& stores)
{
    std::vector<Read> reads;
    for (GrownStore* const store : stores) {
        reads.push_back({question.name, &store->served, "pointLocations", question.parameters,
                         '{' + question.where(*store) + '}', question.isRight});
    }
    std::printf("  %-58s", question.name.c_str());
    double least = std::numeric_limits<double>::max();
    double most = 0;
    for (const Timing& timing : timeReads(reads, rounds)) {
        std::printf(" %7.3f ms", timing.median);
        least = std::min(least, timing.median);
        most = std::max(most, timing.median);
    }
    std::printf("  ratio %.2f\n", most / least);
    std::fflush(stdout);
}

std::vector<Question> questions(const Key& key, const Series& shortest)
{
    const auto isCount = [](const std::string& body) {
        return body == R"({"count":)" + std::to_string(pointsOfACell) + "}";
    };
    const auto within = [key, days = ',' + period(shortest)](const GrownStore& store) {
        return key.where(store) + days;
    };
    const std::string by = std::string(" by ") + key.name;
    return {{"100 points" + by, "limit=100&expand=true&", within,
             [shortest](const std::string& body) {
                 return isPage(body, pointsOfACell, shortest);
             }},
            {"the latest" + by, "expand=true&order=-data.time&limit=1&skip=0&", within,
             [shortest](const std::string& body) {
                 return isPage(body, 1, shortest);
             }},
            {"count" + by, "only_count=true&", key.where, isCount},
            {"count within a period" + by, "only_count=true&", within, isCount}};
}

void measureGrowth(const char* title, const std::vector<GrownStore*>& stores)
{
    std::printf("%s, stores of", title);
    for (const GrownStore* const store : stores) {
        std::printf(" %.0e", store->samples());
    }
    std::printf(" samples, median of %d rounds, ratio of the slowest to the fastest\n", rounds);
    for (const Key& key :
         {Key{"monitoring", byCell}, Key{"names", byNames}, Key{"sub-category", bySubCategory},
          Key{"monitoring and names", byCellAndNames}, Key{"monitoring, sub-category and names", byAll}}) {
        for (const Question& question : questions(key, stores.front()->series())) {
            measure(question, stores);
        }
    }
}

void run(int samples)
{
    GrownStore smallest({1, samples});
    GrownStore moreCells({10, samples});
    GrownStore manyCells({100, samples});
    measureGrowth("More monitorings", {&smallest, &moreCells, &manyCells});
    GrownStore longer({1, 10 * samples});
    GrownStore longest({1, 100 * samples});
    measureGrowth("Longer series", {&smallest, &longer, &longest});
}

} // namespace

int main(int argc, char** argv)
{
    try {
        run(argc > 1 ? std::atoi(argv[1]) : 1'000);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_growth: %s\n", error.what());
        return 1;
    }
}
