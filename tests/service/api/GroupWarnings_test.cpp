#include "MeasuredFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

// In the tower there are points S1 to S3.
class GroupWarnings : public test::MeasuredFixture
{
protected:
    GroupWarnings()
    {
        write([this](Session& session) {
            for (const char* const name : {"S1", "S2", "S3"}) {
                insertPoint(session, {tower, "ground", name});
            }
        });
    }

    RawAnswer postAs(const std::string& token, const std::string& name, const std::string& points,
                     const std::string& more) const
    {
        return call(token, "POST", "groupSettings",
                    R"({"projectId":"p1","cellId":")" + tower +
                        R"(","subCategoryId":"ground","groupName":")" + name + R"(","groupPoint":[)" +
                        points + "]" + more + "}");
    }
    RawAnswer post(const std::string& name, const std::string& points,
                   const std::string& more = R"(,"totalVar":1)") const
    {
        return postAs(editor, name, points, more);
    }

    // Names from N1 on, as they stand in a body.
    static std::string namesTo(int last)
    {
        std::string names;
        for (int i = 1; i <= last; ++i) {
            names += (i == 1 ? "\"N" : ",\"N") + std::to_string(i) + "\"";
        }
        return names;
    }

    // None when the member is absent.
    static std::vector<std::string> warnings(const RawAnswer& answer)
    {
        EXPECT_TRUE(answer.status == 200 || answer.status == 201) << answer.body;
        std::vector<std::string> texts;
        simdjson::dom::parser parser;
        simdjson::dom::array array;
        if (parser.parse(answer.body)["warnings"].get(array) == simdjson::SUCCESS) {
            for (const simdjson::dom::element text : array) {
                texts.emplace_back(text.get_string().value());
            }
            EXPECT_THAT(texts, Not(IsEmpty()));
        }
        return texts;
    }
};

TEST_F(GroupWarnings, ThereAreNoneWhereAllIsWell)
{
    const RawAnswer answer = post("Corner", R"("S1","S2")");
    EXPECT_THAT(answer.body, Not(HasSubstr("warnings")));
    EXPECT_THAT(post("Empty", "").body, Not(HasSubstr("warnings")));
    EXPECT_THAT(post("Daily", R"("S3")", R"(,"dayVarValue":1)").body, Not(HasSubstr("warnings")));
}

TEST_F(GroupWarnings, NamePointsThatAreNotThereAndNamesThatStandTwice)
{
    EXPECT_THAT(warnings(post("Corner", R"("S1","W7","W \"8\"","S1","W7")")),
                ElementsAre(R"("groupPoint" lists more than once: "S1", "W7")",
                            R"(the monitoring has no point of this sub-category named "W "8"", "W7")"));
}

TEST_F(GroupWarnings, SayThatThereIsNoLimit)
{
    EXPECT_THAT(warnings(post("Corner", R"("S1")", R"(,"totalVar":0)")),
                ElementsAre("the group has no limit: \"dayVarValue\" and \"totalVar\" are 0"));
}

TEST_F(GroupWarnings, NameTheOtherGroupsOfThePoints)
{
    const std::string corner = member(post("Corner", R"("S1","S2")").body, "_id");
    const std::string side = member(post("Side", R"("S3")").body, "_id");
    EXPECT_THAT(warnings(post("All", R"("S2","S1","S3")")),
                ElementsAre("group \"Corner\" (" + corner + ") lists \"S1\", \"S2\", too",
                            "group \"Side\" (" + side + ") lists \"S3\", too"));
}

TEST_F(GroupWarnings, GroupsOfOtherPlacesAreOther)
{
    newSubCategory({"roof", "p1", "Roof", "Settlement", "R"});
    const std::string shed = newCell("Shed");
    write([&](Session& session) {
        insertPoint(session, {tower, "roof", "S1"});
        insertPoint(session, {shed, "ground", "S1"});
    });
    const auto groupIn = [&](const std::string& cell, const std::string& subCategory) {
        return call(editor, "POST", "groupSettings",
                    R"({"projectId":"p1","cellId":")" + cell + R"(","subCategoryId":")" + subCategory +
                        R"(","groupName":"Other","groupPoint":["S1"],"totalVar":1})");
    };
    EXPECT_THAT(warnings(groupIn(tower, "roof")), IsEmpty());
    EXPECT_THAT(warnings(groupIn(shed, "ground")), IsEmpty());
    EXPECT_THAT(warnings(post("Corner", R"("S1")")), IsEmpty());
}

TEST_F(GroupWarnings, AreAnsweredToChangesAndNeverStored)
{
    const std::string id = member(post("Corner", R"("S1")").body, "_id");
    const std::string path = "groupSettings/" + id;
    EXPECT_THAT(warnings(call(editor, "PUT", path, R"({"groupPoint":["S9"]})")), SizeIs(1));
    EXPECT_THAT(warnings(call(editor, "PUT", path, "{}")), SizeIs(1)) << "of a change that changes nothing";
    EXPECT_THAT(get(path).body, Not(HasSubstr("warnings")));
    EXPECT_THAT(get("projects/p1/groupSettings").body, Not(HasSubstr("warnings")));
    EXPECT_THAT(call(editor, "PUT", path, R"({"groupPoint":["S1"]})").body, Not(HasSubstr("warnings")));
    EXPECT_EQ(call(editor, "DELETE", path).status, 200U);
}

TEST_F(GroupWarnings, StayShort)
{
    const std::vector<std::string> some = warnings(post("First", namesTo(1000)));
    ASSERT_THAT(some, SizeIs(1));
    EXPECT_THAT(some[0], HasSubstr(R"("N1", "N10", "N100", )"));
    EXPECT_THAT(some[0], HasSubstr("and 990 more"));
    EXPECT_LT(some[0].size(), 200U);
    for (int i = 0; i < 30; ++i) {
        post("More", namesTo(20));
    }
    const std::vector<std::string> many = warnings(post("Last", namesTo(20)));
    ASSERT_THAT(many, SizeIs(12));
    EXPECT_THAT(many[1], HasSubstr("group \"First\""));
    EXPECT_THAT(many[1], HasSubstr("and 10 more, too"));
    EXPECT_EQ(many.back(), "21 more groups list points of this one, too");
}

TEST_F(GroupWarnings, TellNothingThatMayNotBeRead)
{
    post("Secret", R"("S1")");
    const std::string creator = newTokenFor("Settlement", Right::Create);
    EXPECT_THAT(warnings(postAs(creator, "Corner", R"("S1","S1","S9")", R"(,"totalVar":1)")),
                ElementsAre(R"("groupPoint" lists more than once: "S1")"));
}

} // namespace
} // namespace monitorservice
