// How long the service takes to find monitorings by regular expressions, through HTTP on the loopback: pages
// of 100 and counts among 100 000 monitorings of one project. The store is made first, in a folder of its
// own, and is gone afterwards. Which monitorings a pattern has to find is computed from their numbers, not
// with the pattern.
//
//   bench_monitoring_reads [MONITORINGS]    100 000 when not given

#include "MeasuredReads.h"
#include "json/JsonText.h"

#include <simdjson.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>

using namespace monitorservice;
using namespace monitorservice::bench;

namespace {

constexpr int rounds = 15;
constexpr std::array<const char*, 5> kinds{"Retaining Wall", "Slope", "Tower", "Pit Bottom", "Bridge Pier"};
constexpr std::array<const char*, 4> sides{"North", "East", "South", "West"};

std::string nameOf(int number)
{
    const auto index = static_cast<std::size_t>(number);
    std::array<char, 80> name{};
    std::snprintf(name.data(), name.size(), "%s %s, Section %06d, Row %d", kinds[index % kinds.size()],
                  sides[index / kinds.size() % sides.size()], number, number % 7);
    return name.data();
}

std::vector<std::string> fill(Store& store, int count)
{
    const auto session = store.write();
    std::vector<std::string> identifiers;
    for (int i = 0; i < count; ++i) {
        identifiers.push_back(
            insertMonitoring(*session, nameOf(i), i % 2 == 0 ? "Settlement" : "Inclinometer"));
    }
    session->commit();
    return identifiers;
}

// A condition, and by number which monitorings meet it.
struct Search
{
    const char* name;
    const char* pattern;
    const char* options;
    std::function<bool(int number)> finds;
    int skip = 0;
};

std::vector<std::string> found(const Search& search, const std::vector<std::string>& identifiers)
{
    std::vector<std::string> all;
    for (std::size_t i = 0; i < identifiers.size(); ++i) {
        if (search.finds(static_cast<int>(i))) {
            all.push_back(identifiers[i]);
        }
    }
    return all;
}

bool isPage(const std::string& body, const std::vector<std::string>& all, std::size_t skip)
{
    simdjson::dom::parser parser;
    const simdjson::dom::array page = parser.parse(body);
    std::vector<std::string> identifiers;
    for (const simdjson::dom::element monitoring : page) {
        identifiers.emplace_back(monitoring["_id"].get_string().value());
    }
    const std::size_t begin = std::min(skip, all.size());
    const std::size_t end = std::min(begin + 100, all.size());
    return std::vector<std::string>(all.begin() + static_cast<std::ptrdiff_t>(begin),
                                    all.begin() + static_cast<std::ptrdiff_t>(end)) == identifiers;
}

void addReads(std::vector<Read>& reads, ServedStore& served, const Search& search,
              const std::vector<std::string>& identifiers)
{
    const std::vector<std::string> all = found(search, identifiers);
    const std::string where =
        JsonObjectWriter()
            .json("name",
                  JsonObjectWriter().text("$regex", search.pattern).text("$options", search.options).finish())
            .finish();
    const std::string page = "skip=" + std::to_string(search.skip) + "&limit=100&expand=true&";
    const std::string name = std::string(search.name) + " /" + search.pattern + "/" + search.options;
    reads.push_back({"page: " + name, &served, "cells", page, where,
                     [all, skip = static_cast<std::size_t>(search.skip)](const std::string& body) {
                         return isPage(body, all, skip);
                     }});
    reads.push_back({"count: " + name, &served, "cells", "only_count=true&", where,
                     [count = all.size()](const std::string& body) {
                         return body == R"({"count":)" + std::to_string(count) + "}";
                     }});
}

std::vector<Search> searches(int count)
{
    const auto isKind = [](int number, int kind) {
        return number % 5 == kind;
    };
    const auto sideOf = [](int number) {
        return number / 5 % 4;
    };
    return {
        {"nothing", "Quay", "i",
         [](int) {
             return false;
         }},
        {"nothing", "Row [89]$", "",
         [](int) {
             return false;
         }},
        {"the last", "section 0*99999,", "i",
         [](int number) {
             return number == 99'999;
         }},
        {"every fifth", "wall", "i",
         [isKind](int number) {
             return isKind(number, 0);
         }},
        {"far down", "wall", "i", [isKind](int number) { return isKind(number, 0); }, count / 10},
        {"far down", "Tower (North|South)", "",
         [isKind, sideOf](int number) { return isKind(number, 2) && sideOf(number) % 2 == 0; }, count / 20},
        {"anchored", "^slope w.*row 3$", "i",
         [isKind, sideOf](int number) {
             return isKind(number, 1) && sideOf(number) == 3 && number % 7 == 3;
         }},
        {"classes", "\\d{4}99, [a-z]+ \\d", "i",
         [](int number) {
             return number % 100 == 99;
         }},
        {"words", "[a-z]+ [a-z]+, section \\d+5, row [0-3]", "i",
         [](int number) { return number % 10 == 5 && number % 7 <= 3; }, count / 50},
        {"alternatives", "(tower|pier) (north|west)|slope east.*[13579], row 0", "i",
         [isKind, sideOf](int number) {
             const bool isNamed = (isKind(number, 2) || isKind(number, 4)) && sideOf(number) % 3 == 0;
             const bool isOdd = isKind(number, 1) && sideOf(number) == 1 && number % 2 == 1;
             return isNamed || (isOdd && number % 7 == 0);
         },
         count / 50},
        {"anything between", "no.*tion.*5$", "i",
         [sideOf](int number) { return sideOf(number) == 0 && number % 7 == 5; }, count / 50},
        {"everything", ".", "i", [](int) { return true; }, count - 100},
    };
}

void run(int count)
{
    ServedStore served;
    const std::vector<std::string> identifiers = fill(served.store(), count);
    std::vector<Read> reads;
    for (const Search& search : searches(count)) {
        addReads(reads, served, search, identifiers);
    }
    printReads("Among " + std::to_string(count) + " monitorings", reads, rounds);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        run(argc > 1 ? std::atoi(argv[1]) : 100'000);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_monitoring_reads: %s\n", error.what());
        return 1;
    }
}
