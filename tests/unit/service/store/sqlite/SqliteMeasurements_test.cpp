#include "store/sqlite/SqliteStore.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;

SqliteStoreOptions creating()
{
    SqliteStoreOptions options;
    options.createIfMissing = true;
    return options;
}

std::string pointDocument(const std::string& id, const std::string& name, const std::string& depth,
                          const std::string& lastDate = "")
{
    return R"({"_id":")" + id + R"(","projectId":"p","cellId":"c","subCategoryId":"s","name":")" + name +
           R"(","depth":")" + depth + R"(","lastDate":")" + lastDate + R"("})";
}

// A project with one monitoring, one sub-category and one point.
class SqliteMeasurementsTest : public ::testing::Test
{
protected:
    SqliteMeasurementsTest() : store(folder.file("data.db"), creating()), session(store.write())
    {
        session->projects().insert({"p", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->documents(DocumentKind::Cell)
            .insert("p", "c",
                    R"({"_id":"c","projectId":"p","name":"North","category":"Settlement",)"
                    R"("createdAt":"2026-01-01T00:00:00.000Z","createdBy":"a",)"
                    R"("updatedAt":"2026-01-01T00:00:00.000Z","updatedBy":"a"})");
        session->documents(DocumentKind::SubCategory)
            .insert("p", "s",
                    R"({"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":"L"})");
        point = measurements().insertPoint("p", "w1", pointDocument("w1", "W1", ""));
    }

    Measurements& measurements() { return session->measurements(); }

    std::vector<double> values(Instant from, Instant before)
    {
        std::vector<double> found;
        measurements().visitSamples(point, from, before,
                                    [&](const Sample& sample) { found.push_back(sample.value); });
        return found;
    }

    DaySummary day(std::int64_t number)
    {
        DaySummary found;
        measurements().visitDays(point, number, number, [&](const DaySummary& one) { found = one; });
        return found;
    }

    test::TemporaryFolder folder;
    SqliteStore store;
    std::unique_ptr<Session> session;
    std::int64_t point = 0;
};

TEST_F(SqliteMeasurementsTest, SampleComesBackAsItWasWritten)
{
    ASSERT_TRUE(measurements().insertSample(point, {-5, -7, -480, 0.1, "A"}));
    ASSERT_TRUE(measurements().insertSample(point, {-5, -6, std::nullopt, 1e300, ""}));
    const auto first = measurements().findSample(point, -5, -7);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->offsetMinutes, -480);
    EXPECT_EQ(first->value, 0.1);
    EXPECT_EQ(first->timeFlag, "A");
    const auto second = measurements().findSample(point, -5, -6);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->offsetMinutes, std::nullopt);
    EXPECT_EQ(second->value, 1e300);
    EXPECT_FALSE(measurements().findSample(point, -4, -7));
}

TEST_F(SqliteMeasurementsTest, SampleOfTheSameTimeAndCountIsNotInsertedAgain)
{
    ASSERT_TRUE(measurements().insertSample(point, {10, 1, 0, 1.0, "A"}));
    EXPECT_FALSE(measurements().insertSample(point, {10, 1, 0, 2.0, "B"}));
    EXPECT_EQ(measurements().findSample(point, 10, 1)->value, 1.0);
    measurements().replaceSample(point, {10, 1, 60, 2.0, "B"});
    EXPECT_EQ(measurements().findSample(point, 10, 1)->value, 2.0);
    EXPECT_EQ(measurements().findSample(point, 10, 1)->timeFlag, "B");
}

TEST_F(SqliteMeasurementsTest, SamplesComeInTheOrderOfTimeAndCount)
{
    measurements().insertSample(point, {20, 1, 0, 4.0, ""});
    measurements().insertSample(point, {10, 9, 0, 3.0, ""});
    measurements().insertSample(point, {10, -2, 0, 2.0, ""});
    measurements().insertSample(point, {9, 1, 0, 1.0, ""});
    EXPECT_THAT(values(0, 100), ElementsAre(1.0, 2.0, 3.0, 4.0));
    EXPECT_THAT(values(10, 20), ElementsAre(2.0, 3.0));
}

TEST_F(SqliteMeasurementsTest, DayKeepsItsLastSampleAndCountsAll)
{
    measurements().addToDay(point, {7, 100, 1, 60, 1.0, 3});
    measurements().addToDay(point, {7, 90, 5, 0, 9.0, 2});
    EXPECT_EQ(day(7).value, 1.0);
    EXPECT_EQ(day(7).offsetMinutes, 60);
    EXPECT_EQ(day(7).samples, 5);
    measurements().addToDay(point, {7, 100, 2, std::nullopt, 2.0, 1});
    EXPECT_EQ(day(7).value, 2.0);
    EXPECT_EQ(day(7).count, 2);
    EXPECT_EQ(day(7).samples, 6);
}

TEST_F(SqliteMeasurementsTest, CorrectedLastSampleOfADayIsTakenOver)
{
    measurements().addToDay(point, {7, 100, 1, 60, 1.0, 3});
    measurements().addToDay(point, {7, 100, 1, 60, 8.0, 0});
    EXPECT_EQ(day(7).value, 8.0);
    EXPECT_EQ(day(7).samples, 3);
}

TEST_F(SqliteMeasurementsTest, LatestDayBeforeADayIsTheNearestThatHasSamples)
{
    for (const std::int64_t number : {-3, 5, 2}) {
        measurements().addToDay(point, {number, number, 1, 0, 1.0, 1});
    }
    EXPECT_EQ(measurements().latestDayBefore(point, 6).value().day, 5);
    EXPECT_EQ(measurements().latestDayBefore(point, 5).value().day, 2);
    EXPECT_EQ(measurements().latestDayBefore(point, 2).value().day, -3);
    EXPECT_FALSE(measurements().latestDayBefore(point, -3));
}

TEST_F(SqliteMeasurementsTest, PointIsFoundByMonitoringSubCategoryNameAndDepth)
{
    const std::int64_t deep = measurements().insertPoint("p", "w1deep", pointDocument("w1deep", "W1", "20"));
    ASSERT_TRUE(measurements().findPoint("c", "s", "W1", "20"));
    EXPECT_EQ(measurements().findPoint("c", "s", "W1", "20")->key, deep);
    EXPECT_EQ(measurements().findPoint("c", "s", "W1", "")->key, point);
    EXPECT_FALSE(measurements().findPoint("c", "s", "w1", ""));
    std::vector<std::string> ids;
    measurements().visitPoints("c", "s", "W1", [&](const StoredPoint& one) { ids.push_back(one.id); });
    EXPECT_THAT(ids, ElementsAre("w1", "w1deep"));
    EXPECT_THROW(measurements().insertPoint("p", "again", pointDocument("again", "W1", "20")), StoreError);
}

TEST_F(SqliteMeasurementsTest, PointsOrderByTheirLatestTimeWhateverItsOffset)
{
    measurements().replacePoint(point, pointDocument("w1", "W1", "", "2015-12-20T20:00:00.500-08:00"),
                                Instant{1450670400500});
    measurements().insertPoint("p", "w2", pointDocument("w2", "W2", "", "2015-12-21T04:00:00.499Z"));
    measurements().insertPoint("p", "w3", pointDocument("w3", "W3", ""));
    DocumentQuery query;
    query.project = "p";
    query.order = "-data.time";
    query.limit = 10;
    std::vector<std::string> ids;
    session->documents(DocumentKind::PointLocation).visit(query, [&](std::string_view document) {
        ids.emplace_back(document.substr(8, 2));
    });
    EXPECT_THAT(ids, ElementsAre("w1", "w2", "w3"));
}

TEST_F(SqliteMeasurementsTest, CategoryOfAPointIsThatOfItsMonitoring)
{
    const Where where = Where::parse(R"({"category":"Settlement","name":{"$regex":"w","$options":"i"}})");
    DocumentQuery query;
    query.project = "p";
    query.where = &where;
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).count(query), 1U);
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).find("w1")->category, "Settlement");
    query.parent = "another";
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).count(query), 0U);
}

TEST_F(SqliteMeasurementsTest, RemovedPointsTakeTheirSamplesAlong)
{
    measurements().insertSample(point, {10, 1, 0, 1.0, ""});
    measurements().addToDay(point, {0, 10, 1, 0, 1.0, 1});
    measurements().removeDelivered("c", "s");
    EXPECT_FALSE(measurements().findPoint("c", "s", "W1", ""));
    EXPECT_TRUE(values(0, 100).empty());
    EXPECT_FALSE(measurements().latestDayBefore(point, 1));
}

TEST_F(SqliteMeasurementsTest, MonitoringWithPointsIsNotRemoved)
{
    EXPECT_THROW(session->documents(DocumentKind::Cell).remove("p", "c"), StoreError);
}

} // namespace
} // namespace monitorservice
