#include "MeasuredFixture.h"

namespace monitorservice {
namespace {

using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class StatisticsResource : public test::MeasuredFixture
{
protected:
    using Days = std::vector<std::string>;

    // A line for each day: its time, and of each value the name, the depth and the value.
    static Days days(const RawAnswer& answer)
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        Days lines;
        simdjson::dom::parser parser;
        const simdjson::dom::array entries = parser.parse(answer.body);
        for (const simdjson::dom::element entry : entries) {
            std::string line(entry["time"].get_string().value());
            const simdjson::dom::array values = entry["data"];
            for (const simdjson::dom::element value : values) {
                line += " " + std::string(value["name"].get_string().value());
                line += "/" + std::string(value["depth"].get_string().value());
                line += "=" + simdjson::minify(value["value"].value());
            }
            lines.push_back(line);
        }
        return lines;
    }

    Days normal(const std::string& json = "{}") const
    {
        return days(where(statistics, json, "&expand=true"));
    }

    const std::string statistics = "projects/p1/normal_statistics";
    const std::string ofDepths = "projects/p1/depth_statistics";
    const std::string inVienna = "projects/vienna/normal_statistics";
};

TEST_F(StatisticsResource, NothingMeasuredIsAnEmptyArray)
{
    newPoint({tower, "ground", "S1"});
    EXPECT_EQ(get(statistics).body, "[]");
    EXPECT_EQ(get(ofDepths).body, "[]");
}

TEST_F(StatisticsResource, AValueIsTheLastOfItsDay)
{
    const std::string id = newPoint({tower,
                                     "ground",
                                     "S1",
                                     "",
                                     {{"2015-12-20T06:00:00Z", 1, "A", 4},
                                      {"2015-12-20T23:59:59.999Z", 2.5, "B", 5},
                                      {"2015-12-21T00:00:00Z", 3}},
                                     R"([{"type":"model","rId":"m1"}])"});
    EXPECT_EQ(get(statistics).body,
              R"([{"time":"2015-12-20T00:00:00.000+00:00","data":[{"_id":")" + id +
                  R"(","name":"S1","depth":"","count":5,"value":2.5,"time":"2015-12-20T23:59:59.999Z",)"
                  R"("entity":[{"type":"model","rId":"m1"}]}]},)"
                  R"({"time":"2015-12-21T00:00:00.000+00:00","data":[{"_id":")" +
                  id +
                  R"(","name":"S1","depth":"","count":1,"value":3,"time":"2015-12-21T00:00:00.000Z",)"
                  R"("entity":[{"type":"model","rId":"m1"}]}]}])");
}

TEST_F(StatisticsResource, OfTwoSamplesAtOneTimeTheHigherCountIsTheLast)
{
    newPoint({tower,
              "ground",
              "S1",
              "",
              {{"2015-12-20T06:00:00Z", 2, "A", 2}, {"2015-12-20T06:00:00Z", 1, "A", 1}}});
    EXPECT_THAT(normal(), ElementsAre("2015-12-20T00:00:00.000+00:00 S1/=2"));
    EXPECT_THAT(normal(R"({"data.timeFlag":"A"})"), ElementsAre("2015-12-20T00:00:00.000+00:00 S1/=2"));
}

TEST_F(StatisticsResource, DaysRiseAndPointsGoByName)
{
    newPoint({tower, "ground", "S2", "", {{"2015-12-21T06:00:00Z", 21}, {"2015-12-19T06:00:00Z", 19}}});
    newPoint({wall, "casing", "S10", "1", {{"2015-12-21T06:00:00Z", 10}}});
    newPoint({tower, "ground", "S1", "", {{"2015-12-20T06:00:00Z", 20}, {"2015-12-21T05:00:00Z", 11}}});
    EXPECT_THAT(normal(),
                ElementsAre("2015-12-19T00:00:00.000+00:00 S2/=19", "2015-12-20T00:00:00.000+00:00 S1/=20",
                            "2015-12-21T00:00:00.000+00:00 S1/=11 S10/1=10 S2/=21"));
}

TEST_F(StatisticsResource, DepthsRiseAsNumbersAndOnlyPointsWithADepthAreThere)
{
    newPoint({tower, "ground", "I1", "", {{"2015-12-21T06:00:00Z", 9}}});
    for (const char* const depth : {"10", "2.5", "0.5", "bottom", "10.0"}) {
        newPoint({wall, "casing", "I1", depth, {{"2015-12-21T06:00:00Z", 1}}});
    }
    newPoint({wall, "casing", "I0", "20", {{"2015-12-21T06:00:00Z", 2}}});
    const std::string day =
        "2015-12-21T00:00:00.000+00:00 I0/20=2 I1/0.5=1 I1/2.5=1 I1/10=1 I1/10.0=1 I1/bottom=1";
    EXPECT_THAT(days(get(ofDepths + "?type=depth&expand=true")), ElementsAre(day));
    EXPECT_THAT(days(get(ofDepths)), ElementsAre(day));
    EXPECT_THAT(refusal(get(ofDepths + "?type=normal")), StartsWith("400 parameter \"type\" must be depth"));
    EXPECT_THAT(refusal(get(statistics + "?type=depth")),
                StartsWith("400 parameter \"type\" is not known here"));
}

TEST_F(StatisticsResource, DaysAreThoseOfTheProjectsTimeZone)
{
    newPoint({tunnel,
              "tube",
              "T1",
              "",
              {{"2015-10-24T21:59:59.999Z", 1},  // the last of the 24th
               {"2015-10-24T22:00:00Z", 2},      // midnight
               {"2015-10-25T22:59:59.999Z", 3},  // the 25th has 25 hours
               {"2015-10-25T18:00:00-05:00", 4}, // midnight again, written elsewhere
               {"2016-03-26T23:00:00Z", 5},      // midnight
               {"2016-03-27T21:59:59.999Z", 6},  // this day has 23 hours
               {"2016-03-27T22:00:00Z", 7}}});
    EXPECT_THAT(days(get(inVienna)),
                ElementsAre("2015-10-24T00:00:00.000+02:00 T1/=1", "2015-10-25T00:00:00.000+02:00 T1/=3",
                            "2015-10-26T00:00:00.000+01:00 T1/=4", "2016-03-27T00:00:00.000+01:00 T1/=6",
                            "2016-03-28T00:00:00.000+02:00 T1/=7"));
}

TEST_F(StatisticsResource, APeriodMayBeginAndEndWithinADay)
{
    newPoint({tunnel,
              "tube",
              "T1",
              "",
              {{"2015-12-20T06:00:00Z", 1},
               {"2015-12-20T18:00:00Z", 2},
               {"2015-12-21T06:00:00Z", 3},
               {"2015-12-21T18:00:00Z", 4},
               {"2015-12-23T06:00:00Z", 5}}});
    const auto period = [this](const std::string& from, const std::string& before) {
        return days(where(inVienna, R"({"time":{"$gte":")" + from + R"(","$lt":")" + before + "\"}}"));
    };
    EXPECT_THAT(period("2015-12-20T12:00:00.000Z", "2015-12-21T12:00:00.000Z"),
                ElementsAre("2015-12-20T00:00:00.000+01:00 T1/=2", "2015-12-21T00:00:00.000+01:00 T1/=3"));
    EXPECT_THAT(period("2015-12-21T00:00:00.000+01:00", "2015-12-22T00:00:00.000+01:00"),
                ElementsAre("2015-12-21T00:00:00.000+01:00 T1/=4"));
    EXPECT_THAT(period("2015-12-20T07:00:00.000Z", "2015-12-20T08:00:00.000Z"), ElementsAre());
    EXPECT_THAT(period("2015-12-20T06:00:00.000Z", "2015-12-20T18:00:00.000Z"),
                ElementsAre("2015-12-20T00:00:00.000+01:00 T1/=1"));
    EXPECT_THAT(period("2015-12-22T00:00:00.000Z", "2015-12-23T06:00:00.000Z"), ElementsAre());
    EXPECT_THAT(period("2015-12-23T06:00:00.000Z", "2015-12-20T06:00:00.000Z"), ElementsAre());
    EXPECT_THAT(period("2015-12-01T00:00:00.000Z", "2016-01-01T00:00:00.000Z").size(), 3U);
}

// The days of these zones are one ahead of UTC's or one behind when the period ends or begins.
TEST_F(StatisticsResource, APeriodMayEndAndBeginOnAnotherDayThanItsOwnOffsetSays)
{
    struct Place
    {
        std::string project;
        std::string zone;
    };
    for (const Place& place : {Place{"ahead", "Pacific/Kiritimati"}, Place{"behind", "Pacific/Pago_Pago"}}) {
        write([&place](Session& session) {
            session.projects().insert({place.project, "Reef", place.zone, 1});
        });
        grant(editor, place.project, std::nullopt, Rights(Right::Read) | Right::Create);
        newSubCategory({place.project, place.project, "Level", "Settlement", "L"});
        newPoint({newCellIn(place.project, "Pier"),
                  place.project,
                  "P1",
                  "",
                  {{"2015-12-20T11:00:00Z", 1},
                   {"2015-12-21T05:00:00Z", 2},
                   {"2015-12-21T10:30:00Z", 3},
                   {"2015-12-21T12:00:00Z", 4}}});
    }
    const auto period = [this](const std::string& project, const std::string& from,
                               const std::string& before) {
        return days(where("projects/" + project + "/normal_statistics",
                          R"({"time":{"$gte":")" + from + R"(","$lt":")" + before + "\"}}"));
    };
    EXPECT_THAT(period("ahead", "2015-12-20T05:30:00+05:30", "2015-12-20T17:30:00+05:30"),
                ElementsAre("2015-12-21T00:00:00.000+14:00 P1/=1"));
    EXPECT_THAT(period("ahead", "2015-12-20T12:00:00-08:00", "2015-12-21T02:29:00-08:00"),
                ElementsAre("2015-12-21T00:00:00.000+14:00 P1/=2"));
    EXPECT_THAT(period("behind", "2015-12-21T05:00:00+00:00", "2015-12-21T11:00:00+00:00"),
                ElementsAre("2015-12-20T00:00:00.000-11:00 P1/=3"));
    EXPECT_THAT(period("behind", "2015-12-21T10:30:00+05:30", "2015-12-22T00:00:00+05:30"),
                ElementsAre("2015-12-20T00:00:00.000-11:00 P1/=3", "2015-12-21T00:00:00.000-11:00 P1/=4"));
}

TEST_F(StatisticsResource, FlagChoosesTheSamplesOfWhichTheLastCounts)
{
    newPoint({tunnel,
              "tube",
              "T1",
              "",
              {{"2015-12-20T06:00:00Z", 1, "A"},
               {"2015-12-20T18:00:00Z", 2, "B"},
               {"2015-12-20T23:30:00Z", 3, "A"},
               {"2015-12-21T18:00:00Z", 4, "B"},
               {"2015-12-22T18:00:00Z", 5, "A"}}});
    newPoint({tunnel, "tube", "T2", "", {{"2015-12-22T06:00:00Z", 9, "B"}}});
    EXPECT_THAT(days(where(inVienna, R"({"data.timeFlag":"A"})")),
                ElementsAre("2015-12-20T00:00:00.000+01:00 T1/=1", "2015-12-21T00:00:00.000+01:00 T1/=3",
                            "2015-12-22T00:00:00.000+01:00 T1/=5"));
    EXPECT_THAT(days(where(inVienna, R"({"data.timeFlag":"B","time":{"$gte":"2015-12-21T00:00:00+01:00"}})")),
                ElementsAre("2015-12-21T00:00:00.000+01:00 T1/=4", "2015-12-22T00:00:00.000+01:00 T2/=9"));
}

TEST_F(StatisticsResource, ChosenByMonitoringNameAndRelation)
{
    newPoint({tower, "ground", "S1", "", {{"2015-12-21T06:00:00Z", 1}}, R"([{"type":"model","rId":"m1"}])"});
    newPoint({tower, "ground", "S2", "", {{"2015-12-21T06:00:00Z", 2}}});
    newPoint({wall, "casing", "S1", "1", {{"2015-12-21T06:00:00Z", 3}}});
    const std::string day = "2015-12-21T00:00:00.000+00:00";
    EXPECT_THAT(normal(R"({"cellId":")" + tower + R"(","name":{"$in":["S1"]}})"),
                ElementsAre(day + " S1/=1"));
    EXPECT_THAT(normal(R"({"uuid":"m1"})"), ElementsAre(day + " S1/=1"));
    EXPECT_THAT(normal(R"({"category":"Inclinometer"})"), ElementsAre(day + " S1/1=3"));
    EXPECT_THAT(normal(R"({"name":{"$regex":"2$"}})"), ElementsAre(day + " S2/=2"));
}

TEST_F(StatisticsResource, WhatMayNotBeReadIsNotThere)
{
    newPoint({tower, "ground", "S1", "", {{"2015-12-21T06:00:00Z", 1}}});
    newPoint({wall, "casing", "I1", "1", {{"2015-12-20T06:00:00Z", 2}}});
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_THAT(days(call(reader, "GET", statistics)), ElementsAre("2015-12-20T00:00:00.000+00:00 I1/1=2"));
    EXPECT_THAT(days(call(reader, "GET", ofDepths)), ElementsAre("2015-12-20T00:00:00.000+00:00 I1/1=2"));
    EXPECT_EQ(refusal(call(reader, "GET", inVienna)), "404 there is no project \"vienna\"");
    EXPECT_EQ(get("projects/nowhere/normal_statistics").status, 404U);
    EXPECT_THAT(refusal(where(statistics, "{]")), HasSubstr("400 where:"));
}

} // namespace
} // namespace monitorservice
