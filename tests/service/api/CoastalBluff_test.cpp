#include "ApiFixture.h"
#include "store/StoreContents.h"
#include "time/Timestamp.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace monitorservice::test {
namespace {

namespace fs = std::filesystem;

struct Row
{
    std::string name;
    std::string depth;
    std::string time;
    std::string count;
    std::string value;
};

// The files hold neither quotes nor blanks.
std::vector<Row> rowsOf(const fs::path& file)
{
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(line, "name,depth,time,count,value") << file;
    std::vector<Row> rows;
    while (std::getline(stream, line)) {
        std::istringstream fields(line);
        Row row;
        std::getline(fields, row.name, ',');
        std::getline(fields, row.depth, ',');
        std::getline(fields, row.time, ',');
        std::getline(fields, row.count, ',');
        std::getline(fields, row.value, ',');
        rows.push_back(row);
    }
    return rows;
}

std::vector<fs::path> files()
{
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(SAMPLES_FOLDER "/coastal-bluff")) {
        if (entry.path().extension() == ".csv") {
            found.push_back(entry.path());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

// Real deliveries: each station is a monitoring, each quantity a sub-category.
class CoastalBluff : public ApiFixture
{
protected:
    CoastalBluff()
    {
        write([](Session& session) {
            session.projects().insert({"bluff", "Coastal bluff", "America/Los_Angeles", 1});
            for (const char* const quantity : {"moisture", "rain", "air"}) {
                session.documents(DocumentKind::SubCategory)
                    .insert("bluff", quantity,
                            toDocument(SubCategory{quantity, "bluff", quantity, "Settlement", ""}));
            }
        });
        grant(editor, "bluff", std::nullopt, Rights(Right::Read) | Right::Create);
        for (const char* const station : {"VH", "LS-a", "LS-b", "M1", "M2"}) {
            const RawAnswer answer = call(editor, "POST", "cells",
                                          R"({"projectId":"bluff","name":")" + std::string(station) +
                                              R"(","category":"Settlement"})");
            stations[station] = member(answer.body, "_id");
        }
    }

    // A file "LS-a-rain-week1.csv" as a delivery, one element for each run of rows of a point.
    std::string deliveryOf(const fs::path& file) const
    {
        const std::string name = file.stem().string();
        const std::size_t week = name.rfind('-');
        const std::size_t quantity = name.rfind('-', week - 1);
        const std::string begin = R"({"projectId":"bluff","cellId":")" +
                                  stations.at(name.substr(0, quantity)) + R"(","subCategoryId":")" +
                                  name.substr(quantity + 1, week - quantity - 1) + R"(","fileId":")" + name +
                                  "\"";
        std::string body = "[";
        std::string open;
        for (const Row& row : rowsOf(file)) {
            const std::string key =
                R"(,"name":")" + row.name + R"(","depth":")" + row.depth + R"(","data":[)";
            if (key != open) {
                body += (open.empty() ? "" : "]},") + begin + key;
                open = key;
            } else {
                body += ",";
            }
            body += R"({"count":)" + row.count + R"(,"time":")" + row.time + R"(","value":)" + row.value +
                    R"(,"timeFlag":""})";
        }
        return body + "]}]";
    }

    std::vector<std::string> documents() const
    {
        std::vector<std::string> all;
        for (const DocumentKind kind :
             {DocumentKind::PointLocation, DocumentKind::DataManage, DocumentKind::History}) {
            for (const std::string& document : documentsOf(store, kind)) {
                all.push_back(document);
            }
        }
        return all;
    }

    std::map<std::string, std::string> stations;
};

TEST_F(CoastalBluff, EveryReadingIsHeldOnceWhateverIsRepeated)
{
    using Point = std::pair<std::string, std::string>;
    std::map<Point, std::vector<std::pair<std::int64_t, double>>> expected;
    for (const fs::path& file : files()) {
        for (const Row& row : rowsOf(file)) {
            expected[{row.name, row.depth}].emplace_back(parseTimestamp(row.time).value().milliseconds,
                                                         std::stod(row.value));
        }
        const RawAnswer answer = call(editor, "POST", "pointLocations", deliveryOf(file));
        ASSERT_EQ(answer.status, 200U) << file << answer.body;
    }
    ASSERT_EQ(files().size(), 22U);
    const std::vector<HeldPoint> points = pointsOf(store);
    EXPECT_EQ(samplesIn(points), 30912U);
    EXPECT_EQ(documentsOf(store, DocumentKind::History).size(), 22U);
    EXPECT_EQ(points.size(), expected.size());

    for (const HeldPoint& point : points) {
        const Point key(point.name, point.depth);
        auto& readings = expected.at(key);
        EXPECT_EQ(member(point.document, "insertCount"), std::to_string(readings.size()));
        // Not the sums alone: each reading, bit for bit.
        std::sort(readings.begin(), readings.end());
        std::vector<std::pair<std::int64_t, double>> held;
        double sum = 0;
        for (const Sample& sample : point.samples) {
            held.emplace_back(sample.time, sample.value);
            sum += sample.value;
        }
        std::sort(held.begin(), held.end());
        EXPECT_EQ(held, readings) << key.first;
        double expectedSum = 0;
        for (const auto& reading : readings) {
            expectedSum += reading.second;
        }
        EXPECT_NEAR(sum, expectedSum, 1e-9 * readings.size()) << key.first;
    }

    const std::vector<std::string> before = documents();
    now += 1000;
    for (const fs::path& file : files()) {
        EXPECT_EQ(call(editor, "POST", "pointLocations", deliveryOf(file)).status, 200U);
    }
    std::int64_t samplesOfDays = 0;
    const std::vector<HeldPoint> again = pointsOf(store);
    for (const HeldPoint& point : again) {
        for (const DaySummary& day : point.days) {
            samplesOfDays += day.samples;
        }
    }
    EXPECT_EQ(samplesIn(again), 30912U);
    EXPECT_EQ(samplesOfDays, 30912);
    EXPECT_EQ(documents(), before);
}

} // namespace
} // namespace monitorservice::test
