#include "MeasuredFixture.h"
#include "trail/AuditTrail.h"

namespace monitorservice {
namespace {

using test::member;
using test::percentEncoded;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ChangesResource : public test::MeasuredFixture
{
protected:
    std::string newGroup(const std::string& name) const
    {
        return member(call(editor, "POST", "groupSettings",
                           R"({"projectId":"p1","cellId":")" + tower +
                               R"(","subCategoryId":"ground","groupName":")" + name + R"(","totalVar":10})")
                          .body,
                      "_id");
    }

    // One delivery of a point with two samples.
    std::string deliver(const std::string& name) const
    {
        const RawAnswer answer =
            call(editor, "POST", "pointLocations",
                 R"([{"cellId":")" + tower + R"(","subCategoryId":"ground","name":")" + name +
                     R"(","initialValue":1,"data":[{"count":1,"time":"2015-12-20T06:00:00Z","value":1},)"
                     R"({"count":1,"time":"2015-12-21T06:00:00Z","value":50}]}])");
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return test::membersOf(answer.body, "_id").at(0);
    }

    std::vector<std::string> changes(const std::string& token) const
    {
        return members(call(token, "GET", list), "action");
    }
    std::vector<std::string> changes() const { return changes(editor); }

    // The entry of this place in the list, 0 for the newest.
    std::string entry(std::size_t place) const
    {
        const std::string body = get(list).body;
        simdjson::dom::parser parser;
        return simdjson::minify(parser.parse(body).at(place));
    }
    std::string newest() const { return entry(0); }

    RawAnswer putLinks(const std::string& condition, const std::string& links) const
    {
        return call(editor, "PUT", "pointLocations?where=" + percentEncoded(condition),
                    R"({"links":)" + links + "}");
    }

    void recordOfProject(const std::string& action)
    {
        write([&](Session& session) {
            Change change;
            change.project = "p1";
            change.action = action;
            record(session, change);
        });
    }

    const std::string list = "projects/p1/changes";
};

TEST_F(ChangesResource, TellWhatBecameOfAGroup)
{
    const std::string id = newGroup("Corner");
    const std::string path = "groupSettings/" + id;
    const std::string created = get(path).body;
    EXPECT_EQ(newest(),
              R"({"_id":")" + member(newest(), "_id") +
                  R"(","projectId":"p1","category":"Settlement","cellId":")" + tower +
                  R"(","subCategoryId":"ground","action":"group.created","subject":")" + id +
                  R"(","name":"Corner","before":null,"after":)" + created +
                  R"(,"delivery":"","createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada Editor"})");
    now += 1000;
    EXPECT_EQ(call(editor, "PUT", path, R"({"groupName":"Edge","groupPoint":["S9"]})").status, 200U);
    const std::string changed = get(path).body;
    EXPECT_EQ(member(newest(), "action"), "group.changed");
    EXPECT_EQ(member(newest(), "name"), "Edge");
    EXPECT_EQ(member(newest(), "before"), created);
    EXPECT_EQ(member(newest(), "after"), changed) << "without warnings";
    EXPECT_EQ(member(newest(), "createdAt"), "2015-12-21T06:30:01.123Z");
    EXPECT_EQ(call(editor, "PUT", path, R"({"groupName":"Edge"})").status, 200U);
    EXPECT_EQ(call(editor, "DELETE", path).status, 200U);
    EXPECT_EQ(member(newest(), "before"), changed);
    EXPECT_EQ(member(newest(), "after"), "null");
    EXPECT_THAT(changes(), ElementsAre("group.deleted", "group.changed", "group.created"));
}

TEST_F(ChangesResource, TellOfANewMonitoring)
{
    const std::string id = newCell("Mast");
    EXPECT_EQ(newest(),
              R"({"_id":")" + member(newest(), "_id") +
                  R"(","projectId":"p1","category":"Settlement","cellId":")" + id +
                  R"(","subCategoryId":"","action":"cell.created","subject":")" + id +
                  R"(","name":"Mast","before":null,"after":)" + get("cells/" + id).body +
                  R"(,"delivery":"","createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada Editor"})");
}

TEST_F(ChangesResource, TellWhatBecameOfAMonitoring)
{
    const std::string path = "cells/" + tower;
    const std::string created = get(path).body;
    EXPECT_EQ(call(editor, "PUT", path, R"({"name":"Mast","alarmTo":["a@example.org"]})").status, 200U);
    const std::string changed = get(path).body;
    EXPECT_EQ(member(newest(), "action"), "cell.changed");
    EXPECT_EQ(member(newest(), "subject"), tower);
    EXPECT_EQ(member(newest(), "cellId"), tower);
    EXPECT_EQ(member(newest(), "subCategoryId"), "");
    EXPECT_EQ(member(newest(), "name"), "Mast");
    EXPECT_EQ(member(newest(), "before"), created);
    EXPECT_EQ(member(newest(), "after"), changed);
    EXPECT_EQ(call(editor, "PUT", path, R"({"name":"Mast"})").status, 200U);
    EXPECT_EQ(call(editor, "PUT", path, R"({"links":[{"type":"model","rId":"m1"}]})").status, 200U);
    EXPECT_EQ(call(editor, "DELETE", path).status, 200U);
    EXPECT_EQ(member(newest(), "after"), "null");
    EXPECT_THAT(changes(), ElementsAre("cell.deleted", "cell.changed", "cell.changed"));
}

TEST_F(ChangesResource, OfAMoveEachCategoryHasItsOwnSide)
{
    const std::string path = "cells/" + tower;
    const std::string before = get(path).body;
    EXPECT_EQ(call(editor, "PUT", path, R"({"category":"Inclinometer"})").status, 200U);
    const std::string after = get(path).body;
    EXPECT_EQ(member(entry(1), "category"), "Settlement");
    EXPECT_EQ(member(entry(1), "before"), before);
    EXPECT_EQ(member(entry(1), "after"), "null");
    EXPECT_EQ(member(entry(0), "category"), "Inclinometer");
    EXPECT_EQ(member(entry(0), "before"), "null");
    EXPECT_EQ(member(entry(0), "after"), after);
}

TEST_F(ChangesResource, TellTheLinksThatAPointHad)
{
    const std::string first = newPoint({tower, "ground", "S1", "", {}, R"([{"type":"sheet","rId":"s1"}])"});
    newPoint({tower, "ground", "S2", "", {}, R"([{"type":"model","rId":"m1"}])"});
    newPoint({wall, "casing", "S3", "1"});
    EXPECT_EQ(putLinks(R"({"name":{"$regex":"^S"}})", R"([{"type":"model","rId":"m1"}])").body,
              R"({"count":3})");
    EXPECT_THAT(members(get(list), "name"), ElementsAre("S3", "S1")) << "S2 had them";
    EXPECT_EQ(member(entry(0), "category"), "Inclinometer");
    const std::string change = entry(1);
    EXPECT_EQ(member(change, "action"), "links.replaced");
    EXPECT_EQ(member(change, "subject"), first);
    EXPECT_EQ(member(change, "category"), "Settlement");
    EXPECT_EQ(member(change, "cellId"), tower);
    EXPECT_EQ(member(change, "subCategoryId"), "ground");
    EXPECT_EQ(member(change, "before"), R"({"links":[{"type":"sheet","rId":"s1"}]})");
    EXPECT_EQ(member(change, "after"), R"({"links":[{"type":"model","rId":"m1"}]})");
    EXPECT_EQ(member(change, "createdBy"), "Ada Editor");
}

TEST_F(ChangesResource, OutliveWhatTheyTellOf)
{
    const std::string group = newGroup("Corner");
    call(editor, "PUT", "groupSettings/" + group, R"({"groupPoint":["S1"]})");
    const std::string point = deliver("S1");
    deliver("S2");
    putLinks(R"({"name":"S1"})", R"([{"type":"model","rId":"m1"}])");
    const RawAnswer held = get("projects/p1/dataManages");
    const std::string id = members(held, "_id").at(0);
    EXPECT_EQ(call(editor, "DELETE", "dataManages/" + id).status, 409U);
    EXPECT_EQ(call(editor, "DELETE", "dataManages/" + id + "?cascade=true").status, 200U);

    EXPECT_EQ(member(newest(), "action"), "dataManage.deleted");
    EXPECT_EQ(member(newest(), "subject"), id);
    EXPECT_EQ(member(newest(), "name"), "Tower 1 / Ground level");
    EXPECT_EQ(member(newest(), "before"),
              held.body.substr(1, held.body.size() - 3) + R"(,"points":2,"samples":4,"alarms":1})");
    EXPECT_EQ(member(newest(), "after"), "null");

    EXPECT_EQ(call(editor, "DELETE", "groupSettings/" + group).status, 200U);
    EXPECT_EQ(call(editor, "DELETE", "cells/" + tower).status, 200U);
    EXPECT_THAT(changes(), ElementsAre("cell.deleted", "group.deleted", "dataManage.deleted",
                                       "links.replaced", "group.changed", "group.created"));
    EXPECT_THAT(members(where(list, R"({"subject":")" + point + "\"}"), "action"),
                ElementsAre("links.replaced"));
}

TEST_F(ChangesResource, WhatIsRefusedLeavesNone)
{
    const std::string group = newGroup("Corner");
    const std::string reader = newTokenFor("Settlement", Right::Read);
    newPoint({tower, "ground", "S1"});
    EXPECT_EQ(call(reader, "DELETE", "groupSettings/" + group).status, 403U);
    EXPECT_EQ(call(editor, "PUT", "groupSettings/" + group, R"({"groupName":"X","cellId":"none"})").status,
              400U);
    EXPECT_EQ(call(editor, "DELETE", "cells/" + tower).status, 409U);
    EXPECT_THAT(changes(), ElementsAre("group.created"));
}

TEST_F(ChangesResource, AreAListLikeTheOthers)
{
    newGroup("A");
    now += 1000;
    const std::string id = newGroup("B");
    now += 1000;
    call(editor, "PUT", "groupSettings/" + id, R"({"totalVar":11})");
    EXPECT_THAT(members(get(list), "name"), ElementsAre("B", "B", "A"));
    EXPECT_THAT(members(get(list + "?order=createdAt"), "name"), ElementsAre("A", "B", "B"));
    EXPECT_THAT(members(get(list + "?order=action,-_id&limit=2"), "action"),
                ElementsAre("group.changed", "group.created"));
    EXPECT_THAT(members(get(list + "?skip=2&limit=5&expand=true"), "name"), ElementsAre("A"));
    EXPECT_EQ(get(list + "?only_count=true").body, R"({"count":3})");
    EXPECT_THAT(members(where(list, R"({"before.totalVar":10})"), "action"), ElementsAre("group.changed"));
    EXPECT_EQ(count(list, R"({"createdAt":{"$lt":"2015-12-21T06:30:01Z"},"createdBy":"Ada Editor"})"), "1");
    EXPECT_EQ(refusal(get(list + "?order=name")).substr(0, 3), "400");
}

TEST_F(ChangesResource, AreReadByWhoMayReadTheirCategory)
{
    newGroup("Corner");
    call(editor, "PUT", "cells/" + wall, R"({"name":"Bank"})");
    recordOfProject("members.changed");
    const std::string reader = newTokenFor("Settlement", Right::Read);
    EXPECT_THAT(changes(reader), ElementsAre("group.created"));
    EXPECT_EQ(call(reader, "GET", list + "?only_count=true").body, R"({"count":1})");
    grant(reader, "p1", "Inclinometer", Right::Read);
    EXPECT_THAT(changes(reader), ElementsAre("cell.changed", "group.created"));
    EXPECT_THAT(changes(), ElementsAre("members.changed", "cell.changed", "group.created"))
        << "what is of no category is for who may read all of them, those to come, too";
    const std::string creator = newTokenFor("Settlement", Right::Create);
    EXPECT_EQ(call(creator, "GET", list).status, 404U);
    EXPECT_EQ(call(reader, "GET", "projects/vienna/changes").status, 404U);
    EXPECT_THAT(members(get("projects/vienna/changes"), "_id"), IsEmpty());
}

TEST_F(ChangesResource, OfTheWholeServiceAreForAdministrators)
{
    const std::string administrator = newAdministrator("Root");
    const auto asked = [&](const std::string& parameters) {
        return call(administrator, "GET", "changes" + parameters);
    };
    EXPECT_EQ(asked("").body, "[]");
    newGroup("Corner");
    now += 1000;
    const std::string made =
        member(call(administrator, "POST", "projects", R"({"name":"Dam","timeZone":"UTC"})").body, "_id");
    call(administrator, "POST", "categories", R"({"name":"Strain"})");
    call(administrator, "DELETE", "projects/" + made);
    EXPECT_THAT(members(asked(""), "action"),
                ElementsAre("project.removed", "category.created", "project.created", "group.created"));
    EXPECT_THAT(members(asked(""), "projectId"), ElementsAre(made, "", made, "p1"));
    EXPECT_THAT(members(asked("?order=createdAt,action&skip=1&limit=2"), "action"),
                ElementsAre("category.created", "project.created"));
    EXPECT_EQ(asked("?only_count=true").body, R"({"count":4})");
    EXPECT_THAT(members(asked("?where=" + percentEncoded(R"({"projectId":""})")), "name"),
                ElementsAre("Strain"));
    EXPECT_THAT(members(asked("?where=" + percentEncoded(R"({"before.name":"Dam"})")), "action"),
                ElementsAre("project.removed"));
    EXPECT_EQ(refusal(asked("?order=name")).substr(0, 3), "400");
    EXPECT_EQ(refusal(asked("?project=p1")).substr(0, 3), "400");
    EXPECT_EQ(refusal(get("changes")), "403 the token may not administer the service");
    EXPECT_EQ(call("", "GET", "changes").status, 401U);
    EXPECT_THAT(changes(), ElementsAre("group.created")) << "of a project as before";
    EXPECT_EQ(call(administrator, "GET", list).status, 404U) << "without a right in the project";
}

TEST_F(ChangesResource, OfAProjectsNameAreForWhoMayReadAllOfIt)
{
    const std::string administrator = newAdministrator("Root");
    call(administrator, "PATCH", "projects/p1", R"({"name":"Grube"})");
    call(administrator, "PATCH", "subCategories/ground", R"({"unit":"mm"})");
    EXPECT_THAT(changes(newTokenFor("Settlement", Right::Read)), ElementsAre("subCategory.changed"));
    EXPECT_THAT(changes(newTokenFor("Inclinometer", Right::Read)), IsEmpty());
    EXPECT_THAT(changes(), ElementsAre("subCategory.changed", "project.renamed"));
}

TEST_F(ChangesResource, CanOnlyBeRead)
{
    newGroup("Corner");
    const std::string id = member(newest(), "_id");
    for (const char* const method : {"POST", "PUT", "DELETE", "PATCH"}) {
        EXPECT_EQ(call(editor, method, list, "{}").status, 405U);
        EXPECT_EQ(call(editor, method, list + "/" + id, "{}").status, 404U);
        EXPECT_EQ(call(editor, method, "changes/" + id, "{}").status, 404U);
    }
    EXPECT_THAT(changes(), ElementsAre("group.created"));
}

} // namespace
} // namespace monitorservice
