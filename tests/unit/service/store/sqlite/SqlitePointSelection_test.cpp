#include "json/JsonText.h"
#include "query/QueryError.h"
#include "store/sqlite/SqliteStore.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Instant day = 24LL * 3600 * 1000;

class SqlitePointSelection : public ::testing::Test
{
protected:
    SqlitePointSelection() : store(folder.file("data.db"), options())
    {
        const auto session = store.write();
        session->projects().insert({"p", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->documents(DocumentKind::SubCategory)
            .insert("p", "s",
                    R"({"_id":"s","projectId":"p","name":"Ground","category":"Settlement","alias":""})");
        session->documents(DocumentKind::Cell)
            .insert("p", "c",
                    R"({"_id":"c","projectId":"p","name":"Tower","category":"Settlement",)"
                    R"("alarmTo":[],"links":[],"createdAt":"2015-12-21T00:00:00.000Z",)"
                    R"("createdBy":"","updatedAt":"2015-12-21T00:00:00.000Z","updatedBy":""})");
        for (const char* const name : {"S1", "S2"}) {
            const std::string document = JsonObjectWriter()
                                             .text("_id", name)
                                             .text("cellId", "c")
                                             .text("subCategoryId", "s")
                                             .text("name", name)
                                             .text("depth", "")
                                             .text("lastDate", "")
                                             .json("links", R"([{"type":"model","rId":"m1"}])")
                                             .text("updatedAt", "2015-12-21T00:00:00.000Z")
                                             .finish();
            keys.push_back(session->measurements().insertPoint("p", name, document));
        }
        // Two samples a day on days 0 to 3, the second flagged B.
        for (Instant time = day / 4; time < 4 * day; time += day / 2) {
            const bool isSecond = time % day > day / 2;
            const Sample sample{time, 1, std::nullopt, static_cast<double>(time), isSecond ? "B" : "A"};
            session->measurements().insertSample(keys[0], sample);
            session->measurements().addToDay(keys[0], {time / day, time, 1, std::nullopt, sample.value, 1});
        }
        session->commit();
    }

    static SqliteStoreOptions options()
    {
        SqliteStoreOptions options;
        options.createIfMissing = true;
        return options;
    }

    // The days that a condition leaves, as day:time in quarters of a day.
    std::vector<std::string> days(const std::string& json)
    {
        const auto session = store.read();
        const Where where = Where::parse(json);
        const auto selection = session->measurements().select(query(where));
        std::vector<std::string> days;
        selection->visit([&](const FoundPoint& point) {
            selection->visitDays(point.key, [&days](const DayValue& value) {
                days.push_back(std::to_string(value.day) + ":" + std::to_string(4 * value.time / day));
            });
        });
        return days;
    }

    static DocumentQuery query(const Where& where)
    {
        DocumentQuery query;
        query.project = "p";
        query.where = &where;
        query.limit = 100;
        return query;
    }

    test::TemporaryFolder folder;
    SqliteStore store;
    std::vector<std::int64_t> keys;
};

TEST_F(SqlitePointSelection, DaysOfAPeriodEndWithItsLastSample)
{
    EXPECT_THAT(days("{}"), ElementsAre("0:3", "1:7", "2:11", "3:15"));
    EXPECT_THAT(days(R"({"time":{"$gte":"1970-01-02T18:00:00Z","$lt":"1970-01-03T18:00:00Z"}})"),
                ElementsAre("1:7", "2:9"));
    EXPECT_THAT(days(R"({"time":{"$gte":"1970-01-02T18:00:00.001Z","$lt":"1970-01-03T06:00:00Z"}})"),
                IsEmpty());
}

TEST_F(SqlitePointSelection, DaysOfOtherConditionsAreThoseOfTheirSamples)
{
    EXPECT_THAT(days(R"({"data.timeFlag":"A"})"), ElementsAre("0:1", "1:5", "2:9", "3:13"));
    EXPECT_THAT(
        days(R"({"data.timeFlag":{"$regex":"a","$options":"i"},"time":{"$gt":"1970-01-03T00:00:00Z"}})"),
        ElementsAre("2:9", "3:13"));
}

TEST_F(SqlitePointSelection, WhatAConditionThrowsArrivesAndLeavesTheSessionUsable)
{
    {
        const auto session = store.write();
        const Sample sample{5 * day, 1, std::nullopt, 1, std::string(40, 'a') + "!"};
        session->measurements().insertSample(keys[1], sample);
        session->commit();
    }
    const auto session = store.read();
    {
        const Where slow = Where::parse(R"({"data.timeFlag":{"$regex":"^(a+)+$"}})");
        const auto selection = session->measurements().select(query(slow));
        EXPECT_THROW(selection->count(), QueryError);
    }
    const Where uuid =
        Where::parse(R"({"uuid":"m1","data.timeFlag":{"$regex":"!$"},"data.value":{"$gte":1}})");
    const auto selection = session->measurements().select(query(uuid));
    EXPECT_EQ(selection->count(), 1U);
}

TEST_F(SqlitePointSelection, LinksAreReplacedOnce)
{
    const auto session = store.write();
    const std::string links = R"([{"type":"model","rId":"m2"}])";
    EXPECT_TRUE(session->measurements().replaceLinks(keys[0], links, 1500000000000, "Ada"));
    EXPECT_FALSE(session->measurements().replaceLinks(keys[0], links, 1600000000000, "Bob"));
    const Where where = Where::parse(R"({"uuid":"m2"})");
    const auto selection = session->measurements().select(query(where));
    std::string document;
    selection->visit([&document](const FoundPoint& point) { document = point.document; });
    EXPECT_THAT(document,
                ::testing::HasSubstr(R"("updatedAt":"2017-07-14T02:40:00.000Z","updatedBy":"Ada")"));
}

} // namespace
} // namespace monitorservice
