#include "MeasuredFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class GroupsResource : public test::MeasuredFixture
{
protected:
    std::string body(const std::string& name, const std::string& cell, const std::string& subCategory) const
    {
        return R"({"projectId":"p1","cellId":")" + cell + R"(","subCategoryId":")" + subCategory +
               R"(","groupName":")" + name +
               R"(","groupPoint":["S1","S2"],"dayVarType":0,"dayVarValue":2.5,)"
               R"("totalVar":10})";
    }

    RawAnswer post(const std::string& json) const { return call(editor, "POST", "groupSettings", json); }

    std::string newGroup(const std::string& name) const
    {
        return member(post(body(name, tower, "ground")).body, "_id");
    }

    std::string newWallGroup(const std::string& name) const
    {
        return member(post(body(name, wall, "casing")).body, "_id");
    }

    // The refusal of a body in which one piece is replaced.
    std::string refusalOf(const std::string& piece, const std::string& by) const
    {
        std::string json = body("G", tower, "ground");
        const std::size_t place = json.find(piece);
        EXPECT_NE(place, std::string::npos) << piece;
        json.replace(place, piece.size(), by);
        const RawAnswer answer = post(json);
        EXPECT_GE(answer.status, 400U) << answer.body;
        return refusal(answer);
    }
};

TEST_F(GroupsResource, IsAnsweredWholeAsItWasCreated)
{
    const RawAnswer created = post(body("Corner", tower, "ground"));
    ASSERT_EQ(created.status, 201U) << created.body;
    const std::string id = member(created.body, "_id");
    EXPECT_EQ(created.fields.at("location"), "/monitor-service/groupSettings/" + id);
    EXPECT_EQ(created.body, R"({"_id":")" + id + R"(","projectId":"p1","cellId":")" + tower +
                                R"(","subCategoryId":"ground","groupName":"Corner","groupPoint":["S1","S2"],)"
                                R"("dayVarType":0,"dayVarValue":2.5,"totalVar":10,"viewPortId":"",)"
                                R"("dayVarSide":"both","totalVarSide":"both","warningLevel":80,)"
                                R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada Editor",)"
                                R"("updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"Ada Editor"})");
    EXPECT_EQ(get("groupSettings/" + id).body, created.body);
}

TEST_F(GroupsResource, LimitsAndPointsMayBeLeftOut)
{
    const RawAnswer created = post(R"({"projectId":"p1","cellId":")" + tower +
                                   R"(","subCategoryId":"ground","groupName":"Plain"})");
    ASSERT_EQ(created.status, 201U) << created.body;
    EXPECT_EQ(member(created.body, "groupPoint"), "[]");
    EXPECT_EQ(member(created.body, "dayVarValue"), "0");
    EXPECT_EQ(member(created.body, "totalVar"), "0");
}

TEST_F(GroupsResource, RefusesWhatIsWrongByName)
{
    EXPECT_THAT(refusalOf(R"("projectId":"p1",)", ""), "400 \"projectId\" is missing");
    EXPECT_THAT(refusalOf(R"("projectId":"p1")", R"("projectId":null)"), "400 \"projectId\" must be a text");
    EXPECT_THAT(refusalOf(R"("groupName":"G")", R"("groupName":"")"), "400 \"groupName\" must not be empty");
    EXPECT_THAT(refusalOf(R"("S2")", "7"), "400 \"groupPoint[1]\" must be a text");
    EXPECT_THAT(refusalOf(R"("S2")", R"("")"), "400 \"groupPoint[1]\" must not be empty");
    EXPECT_THAT(refusalOf(R"("dayVarType":0)", R"("dayVarType":2)"),
                StartsWith("400 \"dayVarType\" must be 0"));
    EXPECT_THAT(refusalOf(R"("dayVarType":0)", R"("dayVarType":0.5)"),
                "400 \"dayVarType\" must be a whole number of 32 bits");
    EXPECT_THAT(refusalOf(R"("dayVarType":0)", R"("dayVarType":4294967296)"),
                "400 \"dayVarType\" must be a whole number of 32 bits");
    EXPECT_THAT(refusalOf("2.5", "-2.5"), StartsWith("400 \"dayVarValue\" must not be negative"));
    EXPECT_THAT(refusalOf(R"("totalVar":10)", R"("totalVar":"10")"), "400 \"totalVar\" must be a number");
    EXPECT_THAT(refusalOf(R"("totalVar":10)", R"("totalVar":true)"), "400 \"totalVar\" must be a number");
    EXPECT_THAT(refusalOf(R"("totalVar":10)", R"("totalVar":1e999)"), StartsWith("400 the body is not JSON"));
    EXPECT_THAT(refusalOf(R"("totalVar":10)", R"("totalVar":NaN)"), StartsWith("400 the body is not JSON"));
    EXPECT_THAT(refusalOf(R"("totalVar":10)", R"("totalVar":10,"totalVar":9)"),
                "400 \"totalVar\" is given twice");
    EXPECT_THAT(refusalOf(R"("totalVar":10)", R"("viewPortId":"v")"),
                "400 \"viewPortId\" is not a member that can be set");
    EXPECT_EQ(get("projects/p1/groupSettings").body, "[]");
}

TEST_F(GroupsResource, MonitoringAndSubCategoryMustBelongTogether)
{
    EXPECT_THAT(refusalOf(tower, "nowhere"),
                "400 \"cellId\": there is no monitoring \"nowhere\" in this project");
    EXPECT_THAT(refusalOf(tower, tunnel), StartsWith("400 \"cellId\": there is no monitoring \"" + tunnel));
    EXPECT_THAT(
        refusalOf("ground", "casing"),
        "400 \"subCategoryId\": category \"Settlement\" of the monitoring has no sub-category \"casing\" in "
        "this project");
    EXPECT_THAT(refusalOf("ground", "tube"), HasSubstr("has no sub-category \"tube\""));
    EXPECT_THAT(refusalOf("\"p1\"", "\"p9\""), StartsWith("400 \"cellId\": there is no monitoring"));
}

TEST_F(GroupsResource, UpdateChangesOnlyWhatIsSent)
{
    const std::string id = newGroup("Old");
    now += 1000;
    const RawAnswer updated = call(editor, "PUT", "groupSettings/" + id, R"({"groupName":"New"})");
    EXPECT_EQ(updated.status, 200U) << updated.body;
    EXPECT_EQ(member(updated.body, "groupName"), "New");
    EXPECT_EQ(member(updated.body, "groupPoint"), R"(["S1","S2"])");
    EXPECT_EQ(member(updated.body, "dayVarValue"), "2.5");
    EXPECT_EQ(member(updated.body, "createdAt"), "2015-12-21T06:30:00.123Z");
    EXPECT_EQ(member(updated.body, "updatedAt"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(get("groupSettings/" + id).body, updated.body);
}

TEST_F(GroupsResource, UpdateThatChangesNothingLeavesTheTimes)
{
    const std::string id = newGroup("Same");
    const std::string before = get("groupSettings/" + id).body;
    now += 1000;
    EXPECT_EQ(call(editor, "PUT", "groupSettings/" + id, R"({"groupName":"Same","totalVar":10.0})").body,
              before);
    EXPECT_EQ(call(editor, "PUT", "groupSettings/" + id, "{}").body, before);
}

TEST_F(GroupsResource, UpdateNeverGoesBackInTime)
{
    const std::string id = newGroup("Old");
    now -= 60000;
    EXPECT_EQ(member(call(editor, "PUT", "groupSettings/" + id, R"({"totalVar":1})").body, "updatedAt"),
              "2015-12-21T06:30:00.123Z");
}

TEST_F(GroupsResource, MovesToAMonitoringWithASubCategoryOfItsOwn)
{
    const std::string id = newGroup("Moving");
    const std::string path = "groupSettings/" + id;
    EXPECT_THAT(refusal(call(editor, "PUT", path, R"({"projectId":"vienna"})")),
                "400 \"projectId\": a group stays in its project");
    EXPECT_EQ(call(editor, "PUT", path, R"({"projectId":"p1"})").status, 200U);
    EXPECT_EQ(call(editor, "PUT", path, R"({"cellId":")" + wall + "\"}").status, 400U);
    const RawAnswer moved =
        call(editor, "PUT", path, R"({"cellId":")" + wall + R"(","subCategoryId":"casing"})");
    EXPECT_EQ(moved.status, 200U) << moved.body;
    EXPECT_THAT(members(get("cells/" + wall + "/groupSettings"), "_id"), ElementsAre(id));
    EXPECT_THAT(members(get("cells/" + tower + "/groupSettings"), "_id"), IsEmpty());
}

TEST_F(GroupsResource, DeleteAnswersWhatWasDeleted)
{
    const std::string id = newGroup("Gone");
    const std::string before = get("groupSettings/" + id).body;
    const RawAnswer deleted = call(editor, "DELETE", "groupSettings/" + id);
    EXPECT_EQ(deleted.status, 200U);
    EXPECT_EQ(deleted.body, before);
    EXPECT_EQ(get("groupSettings/" + id).status, 404U);
    EXPECT_THAT(refusal(call(editor, "DELETE", "groupSettings/" + id)),
                "404 there is no group \"" + id + "\"");
}

TEST_F(GroupsResource, ListsByCategoryAndByMonitoring)
{
    const std::string first = newGroup("B");
    const std::string second = newWallGroup("A");
    const std::string third = newGroup("C");
    const std::string list = "projects/p1/groupSettings";
    EXPECT_THAT(members(get(list), "_id"), ElementsAre(first, second, third));
    EXPECT_THAT(members(get(list + "?order=groupName"), "groupName"), ElementsAre("A", "B", "C"));
    EXPECT_THAT(members(where(list, R"({"category":"Inclinometer"})"), "_id"), ElementsAre(second));
    EXPECT_THAT(members(where(list, R"({"category":{"$regex":"^sett","$options":"i"}})"), "_id"),
                ElementsAre(first, third));
    EXPECT_EQ(count(list, R"({"category":{"$regex":"^sett","$options":"i"}})"), "2");
    EXPECT_EQ(count(list, R"({"category":"Settlement"})"), "2");
    EXPECT_THAT(
        members(where(list, R"({"groupPoint":"S2","totalVar":{"$gte":10}})", "&skip=1&limit=1"), "_id"),
        ElementsAre(second));
    EXPECT_THAT(members(get("cells/" + tower + "/groupSettings"), "_id"), ElementsAre(first, third));
    EXPECT_THAT(members(get("cells/" + tunnel + "/groupSettings"), "_id"), IsEmpty());
    EXPECT_EQ(get("cells/" + tower + "/groupSettings?only_count=true").body, R"({"count":2})");
}

TEST_F(GroupsResource, CategoryIsThatOfTheMonitoring)
{
    const std::string id = newGroup("G");
    EXPECT_THAT(members(where("projects/p1/groupSettings", R"({"category":"Settlement"})"), "_id"),
                ElementsAre(id));
    EXPECT_EQ(count("projects/p1/groupSettings", R"({"category":"Inclinometer"})"), "0");
}

TEST_F(GroupsResource, WhatMayNotBeReadIsNotThere)
{
    const std::string hidden = newGroup("Hidden");
    const std::string seen = newWallGroup("Seen");
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_THAT(members(call(reader, "GET", "projects/p1/groupSettings"), "_id"), ElementsAre(seen));
    EXPECT_EQ(call(reader, "GET", "projects/p1/groupSettings?only_count=true").body, R"({"count":1})");
    EXPECT_EQ(call(reader, "GET", "groupSettings/" + hidden).status, 404U);
    EXPECT_EQ(call(reader, "PUT", "groupSettings/" + hidden, "{}").status, 404U);
    EXPECT_EQ(call(reader, "DELETE", "groupSettings/" + hidden).status, 404U);
    EXPECT_THAT(refusal(call(reader, "GET", "cells/" + tower + "/groupSettings")),
                "404 there is no monitoring \"" + tower + "\"");
    EXPECT_EQ(call(reader, "GET", "projects/vienna/groupSettings").status, 404U);
    EXPECT_EQ(get("cells/nowhere/groupSettings").status, 404U);
}

TEST_F(GroupsResource, EachMethodNeedsItsRight)
{
    const std::string id = newWallGroup("Guarded");
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_EQ(refusal(call(reader, "POST", "groupSettings", body("G", wall, "casing"))),
              "403 the token may not create groups of category \"Inclinometer\" in this project");
    EXPECT_EQ(refusal(call(reader, "PUT", "groupSettings/" + id, R"({"totalVar":1})")),
              "403 the token may not edit groups of category \"Inclinometer\" in this project");
    EXPECT_EQ(refusal(call(reader, "DELETE", "groupSettings/" + id)),
              "403 the token may not delete groups of category \"Inclinometer\" in this project");
    EXPECT_THAT(refusal(call(reader, "POST", "groupSettings", body("G", tower, "ground"))),
                StartsWith("400 \"cellId\": there is no monitoring"));
    const std::string creator = newTokenFor("Inclinometer", Right::Create);
    EXPECT_EQ(call(creator, "POST", "groupSettings", body("G", wall, "casing")).status, 201U);
}

TEST_F(GroupsResource, MovingNeedsTheRightInBothCategories)
{
    const std::string id = newWallGroup("Moving");
    const std::string token = newTokenFor("Inclinometer", Rights(Right::Read) | Right::Edit);
    grant(token, "p1", "Settlement", Right::Read);
    EXPECT_EQ(refusal(call(token, "PUT", "groupSettings/" + id,
                           R"({"cellId":")" + tower + R"(","subCategoryId":"ground"})")),
              "403 the token may not edit groups of category \"Settlement\" in this project");
}

} // namespace
} // namespace monitorservice
