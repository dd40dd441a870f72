#include "MeasuredFixture.h"
#include "domain/Group.h"
#include "store/StoreContents.h"

namespace monitorservice {
namespace {

using test::documentsOf;
using test::member;
using test::RawAnswer;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PointLocationChange : public test::MeasuredFixture
{
protected:
    PointLocationChange()
    {
        id = newPoint(
            {tower, "ground", "S1", "", {{"2015-12-20T06:00:00Z", 2}, {"2015-12-21T06:00:00Z", 7}}, "[]", 4});
    }

    RawAnswer patch(const std::string& body) const
    {
        return call(editor, "PATCH", "pointLocations/" + id, body);
    }
    std::string stored(std::string_view name) const { return member(get("pointLocations/" + id).body, name); }
    std::vector<std::string> all(DocumentKind kind) { return documentsOf(store, kind); }

    void limitTotal(double limit)
    {
        write([&](Session& session) {
            Group group;
            group.id = "g1";
            group.project = "p1";
            group.cell = tower;
            group.subCategory = "ground";
            group.name = "Corner";
            group.points = {"S1"};
            group.totalVariation = limit;
            session.documents(DocumentKind::Group).insert(group.project, group.id, toDocument(group));
        });
    }

    std::string id;
};

TEST_F(PointLocationChange, MembersThatAreSentAreChanged)
{
    const RawAnswer answer = patch(R"({"alias":"north","dataType":3,"offsetDirection":"down"})");
    ASSERT_EQ(answer.status, 200U) << answer.body;
    EXPECT_EQ(member(answer.body, "alias"), "north");
    EXPECT_EQ(member(answer.body, "dataType"), "3");
    EXPECT_EQ(member(answer.body, "offsetDirection"), "down");
    EXPECT_EQ(member(answer.body, "initialValue"), "4");
    EXPECT_EQ(answer.body.find("\"data\""), std::string::npos);
    EXPECT_EQ(stored("alias"), "north");
    EXPECT_EQ(stored("updatedAt"), member(answer.body, "updatedAt"));
    ASSERT_THAT(all(DocumentKind::Change), SizeIs(1));
    const std::string change = all(DocumentKind::Change)[0];
    EXPECT_EQ(member(change, "action"), "pointLocation.changed");
    EXPECT_EQ(member(change, "before"), R"({"alias":"","dataType":0,"offsetDirection":""})");
    EXPECT_EQ(member(change, "after"), R"({"alias":"north","dataType":3,"offsetDirection":"down"})");
    EXPECT_EQ(member(change, "delivery"), "");
    patch(R"({"alias":""})");
    EXPECT_EQ(stored("alias"), "");
    EXPECT_EQ(stored("insertCount"), "2");
    EXPECT_EQ(stored("lastDate"), "2015-12-21T06:00:00.000Z");
}

TEST_F(PointLocationChange, WhatChangesNothingLeavesNoTrace)
{
    const std::string before = get("pointLocations/" + id).body;
    EXPECT_EQ(patch(R"({"initialValue":4,"alias":""})").status, 200U);
    EXPECT_EQ(patch("{}").status, 200U);
    EXPECT_EQ(get("pointLocations/" + id).body, before);
    EXPECT_THAT(all(DocumentKind::Change), IsEmpty());
}

TEST_F(PointLocationChange, InitialValueMayBeZeroAndMayBeTakenBack)
{
    EXPECT_EQ(patch(R"({"initialValue":0})").status, 200U);
    EXPECT_EQ(stored("initialValue"), "0");
    EXPECT_EQ(stored("hasInitialValue"), "true");
    EXPECT_EQ(patch(R"({"initialValue":null})").status, 200U);
    EXPECT_EQ(stored("initialValue"), "0");
    EXPECT_EQ(stored("hasInitialValue"), "false");
    const std::vector<std::string> changes = all(DocumentKind::Change);
    ASSERT_THAT(changes, SizeIs(2));
    EXPECT_EQ(member(changes[0], "action"), "initialValue.changed");
    EXPECT_EQ(member(changes[0], "subject"), id);
    EXPECT_EQ(member(changes[0], "before"), "4");
    EXPECT_EQ(member(changes[0], "after"), "0");
    EXPECT_EQ(member(changes[1], "before"), "0");
    EXPECT_EQ(member(changes[1], "after"), "null");
}

TEST_F(PointLocationChange, ReadingsAreJudgedAnewByAnotherInitialValue)
{
    limitTotal(5);
    patch(R"({"initialValue":0})");
    ASSERT_THAT(all(DocumentKind::AlarmDetail), SizeIs(1));
    const std::string detail = all(DocumentKind::AlarmDetail)[0];
    EXPECT_EQ(member(detail, "totalVar"), "7");
    EXPECT_EQ(member(detail, "reference"), "0");
    // Counted from the earliest reading it is at the limit.
    patch(R"({"initialValue":null})");
    EXPECT_THAT(all(DocumentKind::Alarm), IsEmpty());
    EXPECT_EQ(member(all(DocumentKind::Change).back(), "action"), "alarm.withdrawn");
}

TEST_F(PointLocationChange, WhatCannotBeSetIsNamed)
{
    for (const auto& [body, message] :
         {std::pair(R"({"name":"S2"})", "\"name\" is not a member that can be set"),
          std::pair(R"({"initialValue":"4"})", "\"initialValue\""),
          std::pair(R"({"initialValue":1e999})", ""), std::pair(R"({"dataType":1.5})", "\"dataType\""),
          std::pair(R"({"alias":null})", "\"alias\""), std::pair(R"({"alias":"a","alias":"b"})", "\"alias\""),
          std::pair("[]", ""), std::pair("", "")}) {
        const RawAnswer answer = patch(body);
        EXPECT_EQ(answer.status, 400U) << body;
        EXPECT_THAT(test::member(answer.body, "message"), HasSubstr(message)) << body;
    }
    EXPECT_EQ(call(editor, "PATCH", "pointLocations/nothing", "{}").status, 404U);
    EXPECT_EQ(call(editor, "PATCH", "pointLocations/" + id + "?cascade=true", "{}").status, 400U);
}

} // namespace
} // namespace monitorservice
