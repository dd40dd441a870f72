#include "MeasuredFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::percentEncoded;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

class PointLocationReads : public test::MeasuredFixture
{
protected:
    // The times of the samples of each point, by its name.
    static std::map<std::string, std::vector<std::string>> samplesOf(const RawAnswer& answer)
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        std::map<std::string, std::vector<std::string>> samples;
        simdjson::dom::parser parser;
        const simdjson::dom::array points = parser.parse(answer.body);
        for (const simdjson::dom::element point : points) {
            auto& times = samples[std::string(point["name"].get_string().value())];
            const simdjson::dom::array data = point["data"];
            for (const simdjson::dom::element sample : data) {
                times.emplace_back(sample["time"].get_string().value());
            }
        }
        return samples;
    }

    using Samples = std::map<std::string, std::vector<std::string>>;

    const std::string points = "projects/p1/pointLocations";
};

TEST_F(PointLocationReads, OneIsAnsweredWholeWithSamplesInTheOrderOfTime)
{
    const std::string id =
        newPoint({tower,
                  "ground",
                  "S \"1\"",
                  "2.5",
                  {{"2015-12-21T06:00:00Z", 0.1}, {"2015-12-20T23:30:00.250-07:30", -3, "B", 7}},
                  R"([{"type":"model","rId":"m1"}])"});
    const RawAnswer answer = get("pointLocations/" + id);
    ASSERT_EQ(answer.status, 200U) << answer.body;
    EXPECT_THAT(answer.body, StartsWith(R"({"_id":")" + id + R"(","projectId":"p1","cellId":")" + tower));
    EXPECT_EQ(member(answer.body, "name"), "S \"1\"");
    EXPECT_EQ(member(answer.body, "depth"), "2.5");
    EXPECT_EQ(member(answer.body, "category"), "Settlement");
    EXPECT_EQ(member(answer.body, "insertCount"), "2");
    EXPECT_EQ(member(answer.body, "entity"), R"([{"type":"model","rId":"m1"}])");
    EXPECT_EQ(member(answer.body, "data"),
              R"([{"count":1,"time":"2015-12-21T06:00:00.000Z","value":0.1,"timeFlag":"A"},)"
              R"({"count":7,"time":"2015-12-20T23:30:00.250-07:30","value":-3,"timeFlag":"B"}])");
    EXPECT_THAT(answer.body, HasSubstr(R"("value":-3,)"));
    EXPECT_EQ(get("pointLocations/" + id + "?expand=true").body, answer.body);
    EXPECT_EQ(get(points).body, "[" + answer.body + "]");
}

TEST_F(PointLocationReads, APointWithoutSamplesIsListed)
{
    newPoint({tower, "ground", "S1"});
    EXPECT_EQ(samplesOf(get(points)), (Samples{{"S1", {}}}));
    EXPECT_EQ(member(where(points, "{}", "&only_count=true").body, "count"), "1");
}

TEST_F(PointLocationReads, TimeChoosesPointsAndSamples)
{
    newPoint({tower, "ground", "S1", "", {{"2015-12-19T06:00:00Z"}, {"2015-12-20T06:00:00Z"}}});
    newPoint({tower, "ground", "S2", "", {{"2015-12-20T07:00:00+01:00"}, {"2015-12-21T06:00:00Z"}}});
    newPoint({tower, "ground", "S3", "", {{"2015-12-22T06:00:00Z"}}});
    newPoint({tower, "ground", "S4"});
    const std::string period =
        R"({"time":{"$gte":"2015-12-20T06:00:00.000Z","$lt":"2015-12-21T06:00:00.000Z"}})";
    EXPECT_EQ(samplesOf(where(points, period)),
              (Samples{{"S1", {"2015-12-20T06:00:00.000Z"}}, {"S2", {"2015-12-20T07:00:00.000+01:00"}}}));
    EXPECT_EQ(count(points, period), "2");
    EXPECT_EQ(samplesOf(where(points, R"({"time":"2015-12-20T07:00:00.000+01:00"})")),
              (Samples{{"S1", {"2015-12-20T06:00:00.000Z"}}, {"S2", {"2015-12-20T07:00:00.000+01:00"}}}));
    EXPECT_EQ(samplesOf(where(points, R"({"time":{"$gt":"2015-12-21T06:00:00Z"}})")),
              (Samples{{"S3", {"2015-12-22T06:00:00.000Z"}}}));
    EXPECT_EQ(samplesOf(where(points, R"({"time":{"$lte":"2015-12-19T06:00:00.0005Z"}})")),
              (Samples{{"S1", {"2015-12-19T06:00:00.000Z"}}}));
    // As texts: no such condition is left to SQL.
    EXPECT_EQ(samplesOf(where(points, R"({"time":{"$regex":"\\+01:00$"}})")),
              (Samples{{"S2", {"2015-12-20T07:00:00.000+01:00"}}}));
    EXPECT_EQ(count(points, R"({"time":{"$regex":"\\+01:00$"}})"), "1");
}

TEST_F(PointLocationReads, FlagChoosesPointsAndSamples)
{
    newPoint(
        {tower, "ground", "S1", "", {{"2015-12-19T06:00:00Z", 0, "B"}, {"2015-12-20T06:00:00Z", 0, "A"}}});
    newPoint({tower, "ground", "S2", "", {{"2015-12-19T06:00:00Z", 0, "B"}}});
    EXPECT_EQ(samplesOf(where(points, R"({"data.timeFlag":"A"})")),
              (Samples{{"S1", {"2015-12-20T06:00:00.000Z"}}}));
    EXPECT_EQ(count(points, R"({"data.timeFlag":"A"})"), "1");
    EXPECT_EQ(samplesOf(where(points, R"({"data.timeFlag":{"$ne":"A"}})")),
              (Samples{{"S1", {"2015-12-19T06:00:00.000Z"}}, {"S2", {"2015-12-19T06:00:00.000Z"}}}));
    EXPECT_EQ(samplesOf(where(points, R"({"data.timeFlag":{"$regex":"b","$options":"i"},"name":"S2"})")),
              (Samples{{"S2", {"2015-12-19T06:00:00.000Z"}}}));
}

TEST_F(PointLocationReads, TimeAndFlagAreAskedOfOneSample)
{
    newPoint(
        {tower, "ground", "S1", "", {{"2015-12-19T06:00:00Z", 0, "A"}, {"2015-12-20T06:00:00Z", 0, "B"}}});
    const std::string condition =
        R"({"data.timeFlag":"A","time":{"$gte":"2015-12-20T00:00:00.000Z","$lt":"2015-12-21T00:00:00.000Z"}})";
    EXPECT_EQ(samplesOf(where(points, condition)), Samples());
    EXPECT_EQ(count(points, condition), "0");
}

TEST_F(PointLocationReads, OtherMembersOfSamplesChooseOnlyPoints)
{
    newPoint(
        {tower, "ground", "S1", "", {{"2015-12-19T06:00:00Z", 7, "B"}, {"2015-12-20T06:00:00Z", 1, "A"}}});
    newPoint({tower, "ground", "S2", "", {{"2015-12-19T06:00:00Z", 1, "A"}}});
    EXPECT_EQ(samplesOf(where(points, R"({"data.timeFlag":"A","data.value":7})")),
              (Samples{{"S1", {"2015-12-20T06:00:00.000Z"}}}));
    EXPECT_EQ(samplesOf(where(points, R"({"data.1.value":{"$exists":true}})")),
              (Samples{{"S1", {"2015-12-19T06:00:00.000Z", "2015-12-20T06:00:00.000Z"}}}));
    EXPECT_EQ(count(points, R"({"data.time":{"$lt":"2015-12-20T00:00:00Z"}})"), "2");
}

TEST_F(PointLocationReads, UuidIsAnyIdentifierAmongTheRelations)
{
    newPoint({tower, "ground", "S1", "", {}, R"([{"type":"model","rId":"m1"},{"type":"sheet","rId":"s1"}])"});
    newPoint({tower, "ground", "S2", "", {}, R"([{"type":"model","rId":"m2"}])"});
    newPoint({tower, "ground", "S3"});
    EXPECT_THAT(members(where(points, R"({"uuid":"s1"})", "&expand=true"), "name"), ElementsAre("S1"));
    EXPECT_EQ(count(points, R"({"uuid":"s1"})"), "1");
    EXPECT_THAT(members(where(points, R"({"uuid":{"$in":["m2","s1"]}})"), "name"), ElementsAre("S1", "S2"));
    EXPECT_THAT(members(where(points, R"({"uuid":{"$ne":null}})"), "name"), ElementsAre("S1", "S2"));
    EXPECT_THAT(members(where(points, R"({"uuid":{"$regex":"^M","$options":"i"}})"), "name"),
                ElementsAre("S1", "S2"));
    EXPECT_THAT(members(where(points, R"({"entity.rId":"m2"})"), "name"), ElementsAre("S2"));
    EXPECT_THAT(members(where(points, R"({"links.type":"sheet"})"), "name"), ElementsAre("S1"));
    EXPECT_THAT(members(where(points, R"({"uuid":"model"})"), "name"), IsEmpty());
}

TEST_F(PointLocationReads, CategoryIsThatOfTheMonitoring)
{
    newPoint({tower, "ground", "S1"});
    newPoint({wall, "casing", "I1", "0.5"});
    EXPECT_THAT(members(where(points, R"({"category":"Inclinometer"})"), "name"), ElementsAre("I1"));
    EXPECT_THAT(members(where(points, R"({"category":{"$regex":"^I"},"alias":""})"), "name"),
                ElementsAre("I1"));
    EXPECT_THAT(members(get(points), "category"), ElementsAre("Settlement", "Inclinometer"));
}

TEST_F(PointLocationReads, ChosenByMonitoringAndNames)
{
    for (const char* const name : {"S1", "S2", "S3"}) {
        newPoint({tower, "ground", name});
    }
    newPoint({wall, "casing", "S1", "1"});
    EXPECT_THAT(members(where(points, R"({"cellId":")" + tower + R"(","name":{"$in":["S3","S1"]}})"), "name"),
                ElementsAre("S1", "S3"));
    EXPECT_THAT(members(where(points, R"({"cellId":")" + tower + R"(","name":{"$in":[]}})"), "name"),
                IsEmpty());
    EXPECT_THAT(members(where(points, R"({"name":"S1"})", "&order=-depth"), "depth"), ElementsAre("1", ""));
}

TEST_F(PointLocationReads, OrderByDepthIsNumeric)
{
    for (const char* const depth : {"10", "2.5", "0.5", "-1"}) {
        newPoint({wall, "casing", "I1", depth});
    }
    EXPECT_THAT(members(get(points + "?order=name,depth"), "depth"), ElementsAre("-1", "0.5", "2.5", "10"));
}

TEST_F(PointLocationReads, NewestMeasuredTimeFirst)
{
    newPoint({tower, "ground", "S1", "", {{"2015-12-21T06:00:00Z"}, {"2015-12-19T06:00:00Z"}}});
    newPoint({tower, "ground", "S2", "", {{"2015-12-21T08:00:00+01:00"}}});
    newPoint({tower, "ground", "S3"});
    newPoint({tower, "ground", "S4", "", {{"2015-12-21T07:00:00Z"}}});
    EXPECT_THAT(members(get(points + "?order=-data.time"), "name"), ElementsAre("S2", "S4", "S1", "S3"));
    EXPECT_THAT(members(get(points + "?order=-data.time&limit=1&skip=0"), "name"), ElementsAre("S2"));
    EXPECT_THAT(members(get(points + "?order=data.time"), "name"), ElementsAre("S3", "S1", "S2", "S4"));
}

TEST_F(PointLocationReads, NewestIsThatOfTheChosenSamples)
{
    newPoint({tower, "ground", "S1", "", {{"2015-12-19T06:00:00Z"}, {"2015-12-25T06:00:00Z"}}});
    newPoint({tower, "ground", "S2", "", {{"2015-12-20T06:00:00Z"}}});
    EXPECT_THAT(members(get(points + "?order=-data.time&limit=1"), "name"), ElementsAre("S1"));
    const std::string before = R"("time":{"$lt":"2015-12-21T00:00:00.000Z"})";
    for (const std::string& condition :
         {"{" + before + "}", "{" + before + R"(,"data.timeFlag":{"$regex":"A"}})"}) {
        EXPECT_THAT(members(where(points, condition, "&order=-data.time"), "name"), ElementsAre("S2", "S1"));
        EXPECT_THAT(members(where(points, condition, "&order=-data.time&limit=1&skip=1"), "name"),
                    ElementsAre("S1"));
    }
}

TEST_F(PointLocationReads, PagesAddUpToTheCountWithTies)
{
    for (int i = 0; i < 11; ++i) {
        newPoint({tower, "ground", "S" + std::to_string(i), "", {{"2015-12-20T06:00:00Z"}}});
    }
    for (const std::string& condition : {std::string("{}"), std::string(R"({"alias":{"$regex":"^$"}})"),
                                         std::string(R"({"time":{"$gte":"2015-12-20T00:00:00Z"}})"),
                                         std::string(R"({"time":{"$regex":"T06"}})")}) {
        const auto whole = members(where(points, condition, "&order=-data.time"), "_id");
        EXPECT_EQ(whole.size(), 11U);
        EXPECT_EQ(count(points, condition), "11");
        std::vector<std::string> joined;
        for (int skip = 0; skip < 12; skip += 3) {
            const auto page = members(
                where(points, condition, "&order=-data.time&limit=3&skip=" + std::to_string(skip)), "_id");
            joined.insert(joined.end(), page.begin(), page.end());
        }
        EXPECT_EQ(joined, whole);
    }
}

TEST_F(PointLocationReads, RefusesWhatItCannotAnswer)
{
    EXPECT_THAT(refusal(get(points + "?order=value")), StartsWith("400 order: cannot order by \"value\""));
    EXPECT_THAT(refusal(where(points, R"({"time":{"$near":1}})")), StartsWith("400 where: unknown operator"));
    EXPECT_THAT(refusal(where(points, "{")), StartsWith("400 where:"));
    EXPECT_THAT(refusal(get(points + "?expand=yes")), StartsWith("400 parameter \"expand\""));
    EXPECT_THAT(refusal(get(points + "?sample=1")), StartsWith("400 parameter \"sample\" is not known here"));
}

TEST_F(PointLocationReads, APatternThatTakesTooLongIsRefusedOnPointsAndOnSamples)
{
    newPoint({tower,
              "ground",
              std::string(40, 'a') + "!",
              "",
              {{"2015-12-20T06:00:00Z", 0, std::string(40, 'a') + "!"}}});
    const std::string pattern = R"({"$regex":"^(a+)+$"})";
    EXPECT_THAT(refusal(where(points, R"({"name":)" + pattern + "}")), HasSubstr("422 "));
    EXPECT_THAT(refusal(where(points, R"({"data.timeFlag":)" + pattern + "}")), HasSubstr("422 "));
    EXPECT_THAT(refusal(where(points, R"({"data.timeFlag":)" + pattern + "}", "&only_count=true")),
                HasSubstr("422 "));
    // The connection to the store is as good as before.
    EXPECT_EQ(count(points, R"({"data.timeFlag":{"$regex":"^a"}})"), "1");
}

TEST_F(PointLocationReads, WhatMayNotBeReadIsNotThere)
{
    const std::string hidden = newPoint({tower, "ground", "S1", "", {{"2015-12-20T06:00:00Z"}}});
    const std::string seen = newPoint({wall, "casing", "I1", "1", {{"2015-12-20T06:00:00Z"}}});
    const std::string foreign = newPoint({tunnel, "tube", "T1"});
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_THAT(members(call(reader, "GET", points), "_id"), ElementsAre(seen));
    EXPECT_EQ(call(reader, "GET", points + "?only_count=true").body, R"({"count":1})");
    EXPECT_EQ(refusal(call(reader, "GET", "pointLocations/" + hidden)),
              "404 there is no point location \"" + hidden + "\"");
    EXPECT_EQ(call(reader, "GET", "pointLocations/" + seen).status, 200U);
    EXPECT_EQ(call(reader, "GET", "pointLocations/" + foreign).status, 404U);
    EXPECT_EQ(call(reader, "GET", "projects/vienna/pointLocations").status, 404U);
    EXPECT_EQ(get("pointLocations/nowhere").status, 404U);
    EXPECT_EQ(get("projects/nowhere/pointLocations").status, 404U);
    EXPECT_THAT(members(get("projects/vienna/pointLocations"), "_id"), ElementsAre(foreign));
}

} // namespace
} // namespace monitorservice
