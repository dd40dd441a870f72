#include "MeasuredFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::percentEncoded;
using test::RawAnswer;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class PointLocationLinks : public test::MeasuredFixture
{
protected:
    RawAnswer put(const std::string& token, const std::string& condition, const std::string& body) const
    {
        return call(token, "PUT", "pointLocations?where=" + percentEncoded(condition), body);
    }
    RawAnswer put(const std::string& condition, const std::string& body) const
    {
        return put(editor, condition, body);
    }

    std::string links(const std::string& point) const
    {
        return member(get("pointLocations/" + point).body, "entity");
    }

    const std::string toM1 = R"({"links":[{"type":"model","rId":"m1"}]})";
    const std::string m1 = R"([{"type":"model","rId":"m1"}])";
};

TEST_F(PointLocationLinks, ReplaceAllRelationsOfWhatMatches)
{
    const std::string first = newPoint({tower, "ground", "S1", "", {}, R"([{"type":"sheet","rId":"s1"}])"});
    const std::string second = newPoint({tower, "ground", "S2"});
    const std::string other = newPoint({tower, "ground", "S3", "", {}, R"([{"type":"sheet","rId":"s3"}])"});
    now += 1000;
    const RawAnswer answer = put(R"({"cellId":")" + tower + R"(","name":{"$in":["S1","S2"]}})", toM1);
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(answer.body, R"({"count":2})");
    EXPECT_EQ(links(first), m1);
    EXPECT_EQ(links(second), m1);
    EXPECT_EQ(links(other), R"([{"type":"sheet","rId":"s3"}])");
    const std::string changed = get("pointLocations/" + first).body;
    EXPECT_EQ(member(changed, "links"), m1);
    EXPECT_EQ(member(changed, "updatedAt"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(member(changed, "updatedBy"), "Ada Editor");
    EXPECT_EQ(member(changed, "createdAt"), "2015-12-21T06:30:00.123Z");
}

TEST_F(PointLocationLinks, RelationsThatAreThereAlreadyLeaveTheTimes)
{
    const std::string id = newPoint({tower, "ground", "S1", "", {}, m1});
    const std::string before = get("pointLocations/" + id).body;
    now += 1000;
    EXPECT_EQ(put(R"({"name":"S1"})", toM1).body, R"({"count":1})");
    EXPECT_EQ(get("pointLocations/" + id).body, before);
}

TEST_F(PointLocationLinks, AnEmptyArrayRemovesThem)
{
    const std::string id = newPoint({tower, "ground", "S1", "", {}, m1});
    EXPECT_EQ(put(R"({"name":"S1"})", R"({"links":[]})").status, 200U);
    EXPECT_EQ(links(id), "[]");
    EXPECT_EQ(put(R"({"name":"S1"})", toM1).status, 200U);
    EXPECT_EQ(put(R"({"name":"S1"})", R"({"links":[{"type":"model"}]})").status, 200U);
    EXPECT_EQ(links(id), "[]");
}

TEST_F(PointLocationLinks, SamplesChooseThePoints)
{
    const std::string measured = newPoint({tower, "ground", "S1", "", {{"2015-12-20T06:00:00Z", 1, "A"}}});
    const std::string flagged = newPoint({tower, "ground", "S2", "", {{"2015-12-20T06:00:00Z", 1, "B"}}});
    EXPECT_EQ(put(R"({"data.timeFlag":"A","time":{"$lt":"2015-12-21T00:00:00Z"}})", toM1).body,
              R"({"count":1})");
    EXPECT_EQ(links(measured), m1);
    EXPECT_EQ(links(flagged), "[]");
}

TEST_F(PointLocationLinks, MoreThanAPageIsReplaced)
{
    write([this](Session& session) {
        for (int i = 0; i < 1005; ++i) {
            insertPoint(session, {tower, "ground", "S" + std::to_string(i)});
        }
    });
    EXPECT_EQ(put(R"({"name":{"$regex":"^S"}})", toM1).body, R"({"count":1005})");
    EXPECT_EQ(count("projects/p1/pointLocations", R"({"uuid":"m1"})"), "1005");
}

TEST_F(PointLocationLinks, NothingThatMatchesIsNoError)
{
    EXPECT_EQ(put(R"({"name":"S1"})", toM1).body, R"({"count":0})");
}

TEST_F(PointLocationLinks, RefusesWhatIsWrongAndChangesNothing)
{
    const std::string id = newPoint({tower, "ground", "S1"});
    EXPECT_THAT(refusal(put("{}", toM1)), StartsWith("400 parameter \"where\" must have a condition"));
    EXPECT_THAT(refusal(call(editor, "PUT", "pointLocations", toM1)), "400 parameter \"where\" is missing");
    EXPECT_THAT(refusal(put(R"({"name":"S1"})", "{}")), "400 \"links\" is missing");
    EXPECT_THAT(refusal(put(R"({"name":"S1"})", R"({"links":{}})")), "400 \"links\" must be an array");
    EXPECT_THAT(refusal(put(R"({"name":"S1"})", R"({"links":[{"rId":"m1"}]})")),
                "400 \"links[0].type\" is missing");
    EXPECT_THAT(refusal(put(R"({"name":"S1"})", R"({"links":[],"name":"S2"})")),
                "400 \"name\" is not a member that can be set");
    EXPECT_THAT(refusal(put(R"({"name":)", toM1)), StartsWith("400 where:"));
    EXPECT_EQ(links(id), "[]");
}

TEST_F(PointLocationLinks, EveryProjectIsLookedAtAndOnlyWhatMayBeEditedIsChanged)
{
    const std::string inPit = newPoint({tower, "ground", "S1"});
    const std::string inWall = newPoint({wall, "casing", "S1", "1"});
    const std::string inTunnel = newPoint({tunnel, "tube", "S1"});
    const std::string condition = R"({"name":"S1"})";

    const std::string reader = newTokenFor("Settlement", Right::Read);
    EXPECT_EQ(refusal(put(reader, condition, toM1)), "403 the token may not edit the points that match");
    const std::string stranger = newToken("Stranger");
    EXPECT_EQ(put(stranger, condition, toM1).body, R"({"count":0})");

    const std::string owner = newTokenFor("Inclinometer", Rights(Right::Read) | Right::Edit);
    grant(owner, "p1", "Settlement", Right::Read);
    EXPECT_EQ(put(owner, condition, toM1).body, R"({"count":1})");
    EXPECT_EQ(links(inWall), m1);
    EXPECT_EQ(links(inPit), "[]");

    EXPECT_EQ(put(condition, toM1).body, R"({"count":3})");
    EXPECT_EQ(links(inPit), m1);
    EXPECT_EQ(links(inTunnel), m1);
}

} // namespace
} // namespace monitorservice
