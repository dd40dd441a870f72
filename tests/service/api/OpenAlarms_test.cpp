#include "MeasuredFixture.h"
#include "support/Chance.h"

#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice {
namespace {

using test::Chance;
using test::membersOf;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr Instant day = 24LL * 3600 * 1000;

// Points that are 0 at first, with a total limit of 10. Each delivery is a day after the one before, so that
// each finds readings for an alarm of its own.
class OpenAlarms : public test::MeasuredFixture
{
protected:
    OpenAlarms()
    {
        limit(tower, "ground");
        limit(wall, "casing");
    }

    void limit(const std::string& cell, const std::string& subCategory) const
    {
        const RawAnswer answer =
            call(editor, "POST", "groupSettings",
                 R"({"projectId":"p1","cellId":")" + cell + R"(","subCategoryId":")" + subCategory +
                     R"(","groupName":"G","groupPoint":["S1","S2","S3"],"totalVar":10})");
        EXPECT_EQ(answer.status, 201U) << answer.body;
    }

    // A reading of December 2015.
    static std::string reading(const std::string& dayOfMonth, int value, int count = 1)
    {
        return R"({"count":)" + std::to_string(count) + R"(,"time":"2015-12-)" + dayOfMonth +
               R"(T06:00:00Z","value":)" + std::to_string(value) + "}";
    }

    std::string pointText(const std::string& name, const std::string& readings,
                          const std::string& depth = {}) const
    {
        return R"({"cellId":")" + tower + R"(","subCategoryId":"ground","name":")" + name + R"(","depth":")" +
               depth + R"(","data":[)" + readings + "]}";
    }

    // Gives the identifier of the delivery.
    std::string deliver(const std::string& points)
    {
        now += day;
        const RawAnswer answer = call(editor, "POST", "pointLocations", "[" + points + "]");
        EXPECT_EQ(answer.status, 200U) << answer.body;
        const std::vector<std::string> deliveries = membersOf(answer.body, "deliveryId");
        return deliveries.empty() ? std::string() : deliveries.front();
    }

    // The days of those that are open, newest first.
    std::vector<std::string> openDays(const std::string& more = {})
    {
        return members(get(alarms + "?open=true" + more), "alarmDay");
    }

    std::string pointId(const std::string& name)
    {
        return members(where("projects/p1/pointLocations", R"({"name":")" + name + "\"}"), "_id").at(0);
    }

    const std::string alarms = "projects/p1/alarmManages";
};

TEST_F(OpenAlarms, AreThoseThatTheLatestReadingStandsIn)
{
    deliver(pointText("S1", reading("01", 0)));
    EXPECT_THAT(openDays(), IsEmpty());
    deliver(pointText("S1", reading("02", 50)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-23"));
    deliver(pointText("S1", reading("03", 5)));
    EXPECT_THAT(openDays(), IsEmpty());
    EXPECT_THAT(members(get(alarms + "?open=false"), "alarmDay"), ElementsAre("2015-12-23"));
    EXPECT_THAT(members(get(alarms), "alarmDay"), ElementsAre("2015-12-23"));
    deliver(pointText("S1", reading("04", 60)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-25"));
}

TEST_F(OpenAlarms, StayOpenWhileAnyPointIsBeyond)
{
    deliver(pointText("S1", reading("01", 0)) + "," + pointText("S2", reading("01", 0)));
    deliver(pointText("S1", reading("02", 50)) + "," + pointText("S2", reading("02", 50)));
    deliver(pointText("S1", reading("03", 5)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-23"));
    deliver(pointText("S2", reading("03", 5)));
    EXPECT_THAT(openDays(), IsEmpty());
}

TEST_F(OpenAlarms, DependOnNoEarlierReadingThatComesLater)
{
    deliver(pointText("S1", reading("01", 0)));
    deliver(pointText("S1", reading("10", 50)));
    deliver(pointText("S1", reading("05", 5)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-23"));
    deliver(pointText("S1", reading("12", 5)));
    deliver(pointText("S1", reading("06", 40)));
    EXPECT_THAT(openDays(), IsEmpty());
    EXPECT_EQ(get(alarms + "?only_count=true").body, R"({"count":2})");
}

TEST_F(OpenAlarms, AreOpenAgainWithoutTheLaterReading)
{
    deliver(pointText("S1", reading("01", 0)));
    deliver(pointText("S1", reading("02", 50)));
    const std::string later = deliver(pointText("S1", reading("03", 5)));
    EXPECT_THAT(openDays(), IsEmpty());
    EXPECT_EQ(call(editor, "DELETE", "historyDatas/" + later).status, 200U);
    EXPECT_THAT(openDays(), ElementsAre("2015-12-23"));
    deliver(pointText("S1", reading("03", 5, 2)));
    EXPECT_THAT(openDays(), IsEmpty());
    EXPECT_EQ(
        call(editor, "DELETE",
             "pointLocations/" + pointId("S1") + "/samples?where=" + test::percentEncoded(R"({"count":2})"))
            .status,
        200U);
    EXPECT_THAT(openDays(), ElementsAre("2015-12-23"));
}

TEST_F(OpenAlarms, AreNotOpenOnceTheLatestReadingIsCorrected)
{
    deliver(pointText("S1", reading("01", 0)));
    deliver(pointText("S1", reading("02", 50)));
    deliver(pointText("S1", reading("03", 60)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-24"));
    deliver(pointText("S1", reading("03", 6)));
    EXPECT_THAT(openDays(), IsEmpty());
    EXPECT_EQ(get(alarms + "?only_count=true").body, R"({"count":1})");
}

TEST_F(OpenAlarms, LookAtEveryDepth)
{
    const auto bothDepths = [this](const std::string& dayOfMonth, int upper, int lower) {
        return pointText("S1", reading(dayOfMonth, upper), "2") + "," +
               pointText("S1", reading(dayOfMonth, lower), "10.5");
    };
    deliver(bothDepths("01", 0, 0));
    deliver(bothDepths("02", 20, 50));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-23"));
    deliver(bothDepths("03", 20, 5));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-24"));
    deliver(pointText("S1", reading("04", 5), "2"));
    EXPECT_THAT(openDays(), IsEmpty());
}

TEST_F(OpenAlarms, GoByTheGreatestCountOfTheLatestTime)
{
    deliver(pointText("S1", reading("01", 0)));
    deliver(pointText("S1", reading("02", 50, 1)));
    deliver(pointText("S1", reading("02", 5, 2)));
    EXPECT_THAT(openDays(), IsEmpty());
    deliver(pointText("S1", reading("02", 50, 3)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-25"));
}

TEST_F(OpenAlarms, ArePagedCountedOrderedAndSearched)
{
    for (const std::string name : {"S1", "S2", "S3"}) {
        deliver(pointText(name, reading("01", 0) + "," + reading("02", 50)));
    }
    deliver(pointText("S2", reading("03", 0)));
    EXPECT_THAT(openDays(), ElementsAre("2015-12-24", "2015-12-22"));
    EXPECT_THAT(openDays("&skip=1&limit=1"), ElementsAre("2015-12-22"));
    EXPECT_THAT(openDays("&order=_id&limit=1"), ElementsAre("2015-12-22"));
    EXPECT_EQ(get(alarms + "?open=true&only_count=true&limit=1").body, R"({"count":2})");
    EXPECT_EQ(get(alarms + "?only_count=true").body, R"({"count":3})");
    EXPECT_THAT(openDays("&where=" + test::percentEncoded(R"({"createdAt":{"$lt":"2015-12-24T00:00:00Z"}})")),
                ElementsAre("2015-12-22"));
    EXPECT_THAT(openDays("&where=" + test::percentEncoded(R"({"category":"Inclinometer"})")), IsEmpty());
}

TEST_F(OpenAlarms, AreShownToThoseWhoMayReadThem)
{
    deliver(pointText("S1", reading("01", 0) + "," + reading("02", 50)));
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_EQ(call(reader, "GET", alarms + "?open=true").body, "[]");
    EXPECT_EQ(call(reader, "GET", alarms + "?open=true&only_count=true").body, R"({"count":0})");
    EXPECT_EQ(call(newTokenFor("Settlement", Right::Read), "GET", alarms + "?open=true&only_count=true").body,
              R"({"count":1})");
    EXPECT_EQ(call(reader, "GET", "projects/p2/alarmManages?open=true").status, 404U);
    EXPECT_THAT(members(get("projects/vienna/alarmManages?open=true"), "_id"), IsEmpty());
}

TEST_F(OpenAlarms, AreAskedForByTrueOrFalse)
{
    for (const char* const value : {"", "1", "yes", "True"}) {
        EXPECT_EQ(get(alarms + "?open=" + value).status, 400U) << value;
    }
    EXPECT_EQ(get(alarms + "?open=true&open=true").status, 400U);
    EXPECT_EQ(get("projects/p1/dataManages?open=true").status, 400U);
}

// Random deliveries, corrections and deletions, and on which day each reading was found to be beyond the
// limit.
class RandomOpenAlarms : public OpenAlarms, public ::testing::WithParamInterface<unsigned>
{
protected:
    struct Place
    {
        std::string name;
        std::string depth;
        std::string id = {};
        // By day of the month and count; the day is empty when the reading is within.
        std::map<std::pair<std::size_t, std::size_t>, std::string> foundOn = {};
    };

    RandomOpenAlarms()
    {
        std::string points;
        for (Place& place : places) {
            points += (points.empty() ? "" : ",") + pointText(place.name, reading("01", 0), place.depth);
        }
        deliver(points);
        for (Place& place : places) {
            const std::string condition =
                R"({"name":")" + place.name + R"(","depth":")" + place.depth + "\"}";
            place.id = members(where("projects/p1/pointLocations", condition), "_id").at(0);
        }
    }

    void deliverOne()
    {
        Place& place = places[chance.below(places.size())];
        const std::size_t dayOfMonth = 10 + chance.below(9);
        const std::size_t count = 1 + chance.below(3);
        const int value = static_cast<int>(chance.below(41)) - 20;
        deliver(pointText(place.name, reading(std::to_string(dayOfMonth), value, static_cast<int>(count)),
                          place.depth));
        std::string& found = place.foundOn[{dayOfMonth, count}];
        if (value >= -10 && value <= 10) {
            found.clear();
        } else if (found.empty()) {
            found = isoText(now).substr(0, 10);
        }
    }

    void deleteLatestOfOne()
    {
        Place& place = places[chance.below(places.size())];
        if (place.foundOn.empty()) {
            return;
        }
        const auto latest = std::prev(place.foundOn.end());
        const auto [dayOfMonth, count] = latest->first;
        const std::string condition = R"({"time":"2015-12-)" + std::to_string(dayOfMonth) +
                                      R"(T06:00:00Z","count":)" + std::to_string(count) + "}";
        const RawAnswer answer =
            call(editor, "DELETE",
                 "pointLocations/" + place.id + "/samples?where=" + test::percentEncoded(condition));
        ASSERT_EQ(test::member(answer.body, "removed"), "1") << answer.body;
        place.foundOn.erase(latest);
    }

    std::set<std::string> expectedDays() const
    {
        std::set<std::string> days;
        for (const Place& place : places) {
            if (!place.foundOn.empty() && !place.foundOn.rbegin()->second.empty()) {
                days.insert(place.foundOn.rbegin()->second);
            }
        }
        return days;
    }

    Chance chance{GetParam()};
    std::vector<Place> places{{"S1", ""}, {"S1", "2"}, {"S2", ""}, {"S3", "0.5"}, {"S3", "10"}};
};

TEST_P(RandomOpenAlarms, AreThoseOfTheLatestReadings)
{
    std::size_t open = 0;
    for (int step = 0; step < 60; ++step) {
        if (chance.once(3)) {
            deleteLatestOfOne();
        } else {
            deliverOne();
        }
        const std::vector<std::string> days = openDays("&order=_id");
        ASSERT_THAT(days, ElementsAreArray(expectedDays())) << "step " << step;
        open += days.size();
    }
    EXPECT_GT(open, 0U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomOpenAlarms, ::testing::Range(1U, 9U));

} // namespace
} // namespace monitorservice
