// How long the service takes to answer with measured data, through HTTP on the loopback: a page of 100 points with 100
// samples each, and the daily statistics of one monitoring over 30 days, out of ten million samples. The store is made
// first, in a folder of its own, and is gone afterwards. Prints the median and the longest of many requests.
//
//   bench_measured_reads [CELLS]    a million samples in each; 10 when not given

#include "admin/Secret.h"
#include "analysis/LocalDays.h"
#include "analysis/PointLocation.h"
#include "api/Api.h"
#include "store/SqliteStore.h"
#include "json/JsonText.h"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using namespace monitorservice;

namespace {

constexpr int pointsOfACell = 100;
constexpr int samplesOfAPoint = 10'000; // one each hour, more than a year
constexpr int requestCount = 41;
constexpr Instant hour = 3600 * 1000;
constexpr Instant begin = 1420070400000; // 2015-01-01T00:00:00Z
constexpr const char* token = "rkm_bench";

class TemporaryStore
{
public:
    TemporaryStore()
        : m_folder(std::filesystem::temp_directory_path() /
                   ("bench-measured-reads-" + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directories(m_folder);
        SqliteStoreOptions options;
        options.createIfMissing = true;
        m_store = std::make_unique<SqliteStore>(m_folder / "data.db", options);
    }
    ~TemporaryStore()
    {
        m_store.reset();
        std::error_code error;
        std::filesystem::remove_all(m_folder, error);
    }
    TemporaryStore(const TemporaryStore&) = delete;
    TemporaryStore& operator=(const TemporaryStore&) = delete;

    SqliteStore& store() { return *m_store; }

private:
    std::filesystem::path m_folder;
    std::unique_ptr<SqliteStore> m_store;
};

void insertAccess(Session& session)
{
    session.projects().insert({"p", "Pit", "Europe/Vienna", 1});
    session.categories().add("Settlement");
    session.tokens().insert({"t", "Bench", "", 1, std::nullopt, std::nullopt}, sha256(token));
    session.grants().add({session.newIdentifier(), "t", "p", std::nullopt, Right::Read, 0});
    session.subCategories().insert(
        "p", "s", R"({"_id":"s","projectId":"p","name":"Ground","category":"Settlement","alias":""})");
}

std::string insertCell(Session& session)
{
    const std::string id = session.newIdentifier();
    const std::string now = isoText(session.now());
    session.cells().insert("p", id,
                           JsonObjectWriter()
                               .text("_id", id)
                               .text("projectId", "p")
                               .text("name", "Cell")
                               .text("category", "Settlement")
                               .json("alarmTo", "[]")
                               .json("links", "[]")
                               .text("createdAt", now)
                               .text("createdBy", "Bench")
                               .text("updatedAt", now)
                               .text("updatedBy", "Bench")
                               .finish());
    return id;
}

void insertPoint(Session& session, const std::string& cell, const std::string& name, LocalDays& days)
{
    PointLocation point;
    point.id = session.newIdentifier();
    point.project = "p";
    point.cell = cell;
    point.subCategory = "s";
    point.name = name;
    point.links = R"([{"type":"model","rId":"m1"}])";
    point.insertCount = samplesOfAPoint;
    point.lastDate = isoText(begin + (samplesOfAPoint - 1) * hour);
    const std::int64_t key = session.measurements().insertPoint("p", point.id, toDocument(point));
    for (int i = 0; i < samplesOfAPoint; ++i) {
        const Sample sample{begin + i * hour, i, std::nullopt, std::sin(i * 0.01) * 12.5,
                            i % 2 == 0 ? "A" : "B"};
        session.measurements().insertSample(key, sample);
        session.measurements().addToDay(
            key, {days.dayOf(sample.time), sample.time, sample.count, sample.offsetMinutes, sample.value, 1});
    }
}

std::vector<std::string> fill(SqliteStore& store, int cellCount)
{
    const auto session = store.write();
    insertAccess(*session);
    LocalDays days("Europe/Vienna");
    std::vector<std::string> cells;
    for (int cell = 0; cell < cellCount; ++cell) {
        cells.push_back(insertCell(*session));
        for (int point = 0; point < pointsOfACell; ++point) {
            insertPoint(*session, cells.back(), "S" + std::to_string(point), days);
        }
    }
    session->commit();
    return cells;
}

std::size_t append(char* data, std::size_t size, std::size_t count, void* out)
{
    static_cast<std::string*>(out)->append(data, size * count);
    return size * count;
}

class Client
{
public:
    Client() : m_curl(curl_easy_init(), &curl_easy_cleanup)
    {
        m_headers = {curl_slist_append(nullptr, (std::string("Authorization: Bearer ") + token).c_str()),
                     &curl_slist_free_all};
        curl_easy_setopt(m_curl.get(), CURLOPT_HTTPHEADER, m_headers.get());
        curl_easy_setopt(m_curl.get(), CURLOPT_WRITEFUNCTION, append);
    }

    std::string get(const std::string& address, const std::string& where)
    {
        const std::unique_ptr<char, void (*)(void*)> encoded(
            curl_easy_escape(m_curl.get(), where.c_str(), static_cast<int>(where.size())), &curl_free);
        const std::string url = address + "where=" + encoded.get();
        std::string body;
        long status = 0;
        curl_easy_setopt(m_curl.get(), CURLOPT_URL, url.c_str());
        curl_easy_setopt(m_curl.get(), CURLOPT_WRITEDATA, &body);
        const CURLcode result = curl_easy_perform(m_curl.get());
        curl_easy_getinfo(m_curl.get(), CURLINFO_RESPONSE_CODE, &status);
        if (result != CURLE_OK || status != 200) {
            throw std::runtime_error("the request failed: " + body);
        }
        return body;
    }

private:
    std::unique_ptr<CURL, void (*)(CURL*)> m_curl;
    std::unique_ptr<curl_slist, void (*)(curl_slist*)> m_headers{nullptr, &curl_slist_free_all};
};

std::size_t occurrences(const std::string& text, const std::string& piece)
{
    std::size_t count = 0;
    for (std::size_t place = text.find(piece); place != std::string::npos;
         place = text.find(piece, place + 1)) {
        ++count;
    }
    return count;
}

/// `piece` is what every value of the answer has once.
void measure(const char* what, Client& client, const std::string& address, const std::string& where,
             const std::string& piece)
{
    std::vector<double> milliseconds;
    std::string body;
    for (int i = 0; i < requestCount; ++i) {
        const auto start = std::chrono::steady_clock::now();
        body = client.get(address, where);
        milliseconds.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("%-44s %7zu values %8zu bytes %8.2f ms median %8.2f ms longest\n", what,
                occurrences(body, piece), body.size(), milliseconds[requestCount / 2], milliseconds.back());
}

std::string period(const std::string& cell, const std::string& from, const std::string& before)
{
    return R"({"cellId":")" + cell + R"(","time":{"$gte":")" + from + R"(","$lt":")" + before + "\"}}";
}

} // namespace

int main(int argc, char** argv)
{
    const int cellCount = argc > 1 ? std::atoi(argv[1]) : 10;
    if (cellCount < 1) {
        std::fprintf(stderr, "bench_measured_reads: no number of cells: %s\n", argv[1]);
        return 2;
    }
    TemporaryStore temporary;
    const auto start = std::chrono::steady_clock::now();
    const std::vector<std::string> cells = fill(temporary.store(), cellCount);
    std::printf("%d samples of %d points written in %.1f s\n", cellCount * pointsOfACell * samplesOfAPoint,
                cellCount * pointsOfACell,
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());

    const auto counters = std::make_shared<HttpCounters>();
    const Api api(temporary.store(), counters);
    HttpServer server(
        ListenAddress(), HttpLimits(), [&api](HttpRequest&& request) { return api.answer(request); },
        counters);
    const std::string project =
        "http://127.0.0.1:" + std::to_string(server.port()) + "/monitor-service/projects/p/";
    Client client;
    const std::string& cell = cells[cells.size() / 2];
    const std::string hundredHours = period(cell, "2015-06-01T00:00:00.000Z", "2015-06-05T04:00:00.000Z");
    const std::string thirtyDays =
        period(cell, "2015-06-01T00:00:00.000+02:00", "2015-07-01T00:00:00.000+02:00");
    std::string flagged = thirtyDays;
    flagged.insert(1, R"("data.timeFlag":"A",)");
    std::string unaligned = period(cell, "2015-06-01T09:30:00.000+02:00", "2015-07-01T09:30:00.000+02:00");
    measure("page of 100 points with 100 samples", client, project + "pointLocations?limit=100&",
            hundredHours, "\"timeFlag\"");
    measure("newest measured point of a monitoring", client,
            project + "pointLocations?order=-data.time&limit=1&skip=0&", hundredHours, "\"timeFlag\"");
    measure("daily statistics, 30 days", client, project + "normal_statistics?", thirtyDays, "\"value\"");
    measure("the same, period within days", client, project + "normal_statistics?", unaligned, "\"value\"");
    measure("the same, samples flagged A", client, project + "normal_statistics?", flagged, "\"value\"");
    return 0;
}
