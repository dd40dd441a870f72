#include "access/Secret.h"
#include "api/Api.h"
#include "domain/Cell.h"
#include "domain/SubCategory.h"
#include "store/postgres/PostgresStore.h"
#include "support/PostgresDatabase.h"
#include "time/Instant.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace monitorservice::test {
namespace {

/// The service on a database of its own, asked without a network.
class RoundTrips : public ::testing::Test
{
protected:
    RoundTrips()
    {
        fill();
        // All statements are prepared once, by a delivery of each sort.
        for (const char* const value : {"1", "2"}) {
            waitsOf(2, 0, value);
            waitsOf(2, 1, value);
        }
        waitsOf(2, 2, "1", "");
    }

    std::uint64_t waitsOf(const std::string& method, const std::vector<std::string>& path,
                          const std::string& body = {})
    {
        store.takeWaits();
        HttpRequest request;
        request.method = method;
        request.path = {"monitor-service"};
        request.path.insert(request.path.end(), path.begin(), path.end());
        request.authorization = "Bearer secret";
        request.body = body;
        const HttpResponse answer = api.answer(request);
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return store.takeWaits();
    }

    /// Of a delivery of one reading of each of so many points.
    std::uint64_t waitsOf(int points, int hour, const std::string& value,
                          const std::string& project = R"("projectId":"p",)")
    {
        std::string body = "[";
        for (int i = 0; i < points; ++i) {
            body += (i > 0 ? R"(,{"cellId":"tower",)" : R"({"cellId":"tower",)") + project +
                    R"("subCategoryId":"level","name":"P)" + std::to_string(i) +
                    R"(","data":[{"count":1,"time":"2015-12-18T0)" + std::to_string(hour) +
                    R"(:00:00Z","value":)" + value + "}]}";
        }
        return waitsOf("POST", {"pointLocations"}, body + "]");
    }

    PostgresDatabase database;
    PostgresStore store{database.url(), creating()};
    Api api{store, std::make_shared<HttpCounters>()};

private:
    void fill()
    {
        const auto session = store.write();
        session->projects().insert({"p", "Pit", "Europe/Vienna", 1});
        session->categories().add("Settlement");
        session->tokens().insert({"t", "Ada", "", 1, std::nullopt, std::nullopt}, sha256("secret"));
        session->grants().add(
            {"g", "t", "p", std::nullopt, Rights(Right::Read) | Right::Create | Right::Edit, 1});
        SubCategory level;
        level.id = "level";
        level.project = "p";
        level.name = "Ground level";
        level.category = "Settlement";
        session->documents(DocumentKind::SubCategory).insert("p", level.id, toDocument(level));
        Cell tower;
        tower.id = "tower";
        tower.project = "p";
        tower.name = "Tower 1";
        tower.category = "Settlement";
        tower.stamp = Stamp::of({"Ada", isoText(1)});
        session->documents(DocumentKind::Cell).insert("p", tower.id, toDocument(tower));
        session->commit();
    }

    static StoreOptions creating()
    {
        StoreOptions options;
        options.createIfMissing = true;
        return options;
    }
};

TEST_F(RoundTrips, OfADeliveryAreFewHoweverManyPointsItBrings)
{
    for (const int points : {1, 2, 100, 1500}) {
        const auto changes = static_cast<std::uint64_t>(points); // a thousand go before they are waited for
        EXPECT_LE(waitsOf(points, 3, "1"), 6U + 2 * changes / 1000) << points << " points, some of them new";
        EXPECT_LE(waitsOf(points, 4, "1"), 5U + changes / 1000) << points << " points";
        EXPECT_LE(waitsOf(points, 4, "1"), 4U) << points << " points that are held already";
        EXPECT_LE(waitsOf(points, 5, "1", ""), 6U + changes / 1000) << points << " points of no project";
    }
}

TEST_F(RoundTrips, OfAReadingAreOneForTheBearerAndOneForWhatIsRead)
{
    const std::vector<std::string> cell{"cells", "tower"};
    waitsOf("GET", cell);
    EXPECT_LE(waitsOf("GET", cell), 2U);
}

} // namespace
} // namespace monitorservice::test
