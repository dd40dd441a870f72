#include "MeasuredFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

// S1 has an initial value, S2 none, S3 no samples. Days of p1 are those of UTC.
class PointDigests : public test::MeasuredFixture
{
protected:
    PointDigests()
    {
        first = newPoint({tower,
                          "ground",
                          "S1",
                          "",
                          {{"2015-12-19T06:00:00Z", 4.5, "A"},
                           {"2015-12-20T06:00:00Z", 9, "B"},
                           {"2015-12-20T07:00:00+01:00", 2, "A", 2},
                           {"2015-12-21T01:00:00+01:00", 3.25, "B", 7}},
                          R"([{"type":"model","rId":"m1"}])",
                          0});
        newPoint({tower, "ground", "S2", "", {{"2015-12-18T06:00:00Z", -1.5}, {"2015-12-19T06:00:00Z", -2}}});
        newPoint({tower, "ground", "S3"});
    }

    // A member of every point as JSON text.
    static std::vector<std::string> each(const RawAnswer& answer, std::string_view name)
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        std::vector<std::string> texts;
        simdjson::dom::parser parser;
        const simdjson::dom::array found = parser.parse(answer.body);
        for (const simdjson::dom::element point : found) {
            texts.push_back(simdjson::minify(point[name].value()));
        }
        return texts;
    }

    std::string first;
    const std::string points = "projects/p1/pointLocations";
    const std::string latestOfFirst =
        R"([{"count":7,"time":"2015-12-21T01:00:00.000+01:00","value":3.25,"timeFlag":"B"}])";
    const std::string latestOfSecond =
        R"([{"count":1,"time":"2015-12-19T06:00:00.000Z","value":-2,"timeFlag":"A"}])";
};

TEST_F(PointDigests, LatestGivesOneSampleOfEachPoint)
{
    EXPECT_THAT(each(get(points + "?samples=latest"), "data"),
                ElementsAre(latestOfFirst, latestOfSecond, "[]"));
}

TEST_F(PointDigests, NoneGivesNoSample)
{
    EXPECT_THAT(each(get(points + "?samples=none"), "data"), ElementsAre("[]", "[]", "[]"));
}

TEST_F(PointDigests, AllIsWhatIsAnsweredWithoutTheParameter)
{
    const std::string whole = get(points).body;
    EXPECT_EQ(get(points + "?samples=all").body, whole);
    EXPECT_EQ(get(points + "?samples=all&rollup=false").body, whole);
    EXPECT_THAT(whole, Not(HasSubstr("reference")));
    EXPECT_THAT(whole, Not(HasSubstr("minimum")));
}

TEST_F(PointDigests, TheRestOfThePointIsAsEver)
{
    const std::string whole = get("pointLocations/" + first).body;
    const std::string begin = whole.substr(0, whole.find(R"(,"data":[)"));
    EXPECT_EQ(where(points, R"({"name":"S1"})", "&samples=latest").body,
              "[" + begin + R"(,"reference":0,"data":)" + latestOfFirst + "}]");
    EXPECT_EQ(where(points, R"({"name":"S1"})", "&samples=none&rollup=true").body,
              "[" + begin + R"(,"reference":0,"minimum":2,"maximum":4.5,"data":[]}])")
        << "9 is not the last value of its day";
}

TEST_F(PointDigests, ReferenceIsTheInitialValueOrTheEarliestReading)
{
    for (const char* const samples : {"?samples=none", "?samples=latest"}) {
        EXPECT_THAT(each(get(points + samples), "reference"), ElementsAre("0", "-1.5", "null"));
        EXPECT_THAT(get(points + samples).body, Not(HasSubstr("minimum")));
    }
    newPoint({tower, "ground", "S4", "", {}, "[]", 7.5});
    EXPECT_THAT(each(where(points, R"({"name":"S4"})", "&samples=none"), "reference"), ElementsAre("7.5"));
}

TEST_F(PointDigests, RollupAddsTheExtremesOfTheDays)
{
    for (const char* const samples : {"?samples=none&rollup=true", "?samples=latest&rollup=true"}) {
        EXPECT_THAT(each(get(points + samples), "minimum"), ElementsAre("2", "-2", "null"));
        EXPECT_THAT(each(get(points + samples), "maximum"), ElementsAre("4.5", "-1.5", "null"));
    }
}

TEST_F(PointDigests, ConditionsOnSamplesChooseThePointsAndTheLatestSample)
{
    const std::string flagged = R"({"data.timeFlag":"A","time":{"$lt":"2015-12-20T06:00:00.001Z"}})";
    const RawAnswer latest = where(points, flagged, "&samples=latest&rollup=true");
    EXPECT_THAT(
        each(latest, "data"),
        ElementsAre(R"([{"count":2,"time":"2015-12-20T07:00:00.000+01:00","value":2,"timeFlag":"A"}])",
                    latestOfSecond));
    EXPECT_THAT(each(latest, "reference"), ElementsAre("0", "-1.5"));
    EXPECT_THAT(each(latest, "minimum"), ElementsAre("2", "-2")) << "of all days";
    const RawAnswer none = where(points, flagged, "&samples=none");
    EXPECT_THAT(members(none, "name"), ElementsAre("S1", "S2"));
    EXPECT_THAT(each(none, "data"), ElementsAre("[]", "[]"));
    EXPECT_THAT(each(where(points, R"({"time":{"$regex":"\\+01:00$"}})", "&samples=latest"), "data"),
                ElementsAre(latestOfFirst));
}

TEST_F(PointDigests, AreOrderedPagedAndCountedAsPointsAre)
{
    EXPECT_THAT(members(get(points + "?samples=latest&order=-data.time&limit=2"), "name"),
                ElementsAre("S1", "S2"));
    EXPECT_THAT(members(get(points + "?samples=none&order=-name&skip=1"), "name"), ElementsAre("S2", "S1"));
    EXPECT_EQ(get(points + "?samples=latest&only_count=true").body, R"({"count":3})");
    EXPECT_EQ(get(points + "?samples=none&limit=0").body, "[]");
}

TEST_F(PointDigests, OtherValuesAndOtherPlacesAreRefused)
{
    EXPECT_EQ(refusal(get(points + "?samples=some")),
              "400 parameter \"samples\" must be all, none or latest");
    EXPECT_EQ(refusal(get(points + "?samples=")), "400 parameter \"samples\" must be all, none or latest");
    EXPECT_EQ(refusal(get(points + "?samples=some&only_count=true")).substr(0, 3), "400");
    EXPECT_EQ(get(points + "?samples=none&rollup=1").status, 400U);
    EXPECT_EQ(refusal(get(points + "?rollup=true")),
              "400 parameter \"rollup\" needs samples=none or samples=latest");
    EXPECT_EQ(get(points + "?samples=all&rollup=true").status, 400U);
    EXPECT_EQ(get(points + "?samples=none&samples=none").status, 400U);
    for (const std::string& path :
         {"pointLocations/" + first, std::string("projects/p1/cells"), std::string("projects/p1/changes"),
          std::string("projects/p1/normal_statistics")}) {
        EXPECT_EQ(refusal(get(path + "?samples=none")), "400 parameter \"samples\" is not known here");
        EXPECT_EQ(refusal(get(path + "?rollup=true")), "400 parameter \"rollup\" is not known here");
    }
}

TEST_F(PointDigests, WhatMayNotBeReadIsNotThere)
{
    newPoint({wall, "casing", "I1", "1", {{"2015-12-19T06:00:00Z", 77.5}}});
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_THAT(members(call(reader, "GET", points + "?samples=latest&rollup=true"), "name"),
                ElementsAre("I1"));
    EXPECT_EQ(call(reader, "GET", "projects/vienna/pointLocations?samples=latest").status, 404U);
}

} // namespace
} // namespace monitorservice
