#include "ApiFixture.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ProjectsResource : public test::ApiFixture
{
protected:
    ProjectsResource() : bearer(newToken("Bea"))
    {
        write([](Session& session) {
            session.projects().insert({"p3", "Bridge", "Europe/Vienna", 1});
            session.projects().insert({"p4", "Dam", "Europe/Vienna", 1});
        });
        grant(bearer, "p1", std::nullopt, Right::Read);
        grant(bearer, "p3", "Settlement", Right::Create);
        grant(bearer, "p4", "Inclinometer", Right::Delete);
    }

    std::vector<std::string> ids(const std::string& query = {}) const
    {
        const test::RawAnswer answer = call(bearer, "GET", "projects" + query);
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return test::membersOf(answer.body, "_id");
    }

    std::vector<std::string> idsWhere(const std::string& condition) const
    {
        return ids("?where=" + test::percentEncoded(condition));
    }

    const std::string bearer;
};

TEST_F(ProjectsResource, AreThoseWithAnyRight)
{
    EXPECT_THAT(ids(), ElementsAre("p1", "p3", "p4"));
    EXPECT_EQ(get("projects").body, R"([{"_id":"p1","name":"Pit","timeZone":"UTC"}])");
    EXPECT_EQ(call(newToken("Stranger"), "GET", "projects").body, "[]");
}

TEST_F(ProjectsResource, AreAListLikeOthers)
{
    EXPECT_EQ(call(bearer, "GET", "projects?only_count=true&skip=1&limit=1").body, R"({"count":3})");
    EXPECT_THAT(ids("?skip=1"), ElementsAre("p3", "p4"));
    EXPECT_THAT(ids("?skip=1&limit=1"), ElementsAre("p3"));
    EXPECT_THAT(ids("?limit=0"), IsEmpty());
    EXPECT_THAT(ids("?skip=18446744073709551615"), IsEmpty());
    EXPECT_THAT(ids("?order=name"), ElementsAre("p3", "p4", "p1"));
    EXPECT_THAT(ids("?order=-timeZone,-name&expand=true"), ElementsAre("p1", "p4", "p3"));
    EXPECT_THAT(ids("?order=timeZone&limit=2"), ElementsAre("p3", "p4"));
    EXPECT_THAT(idsWhere(R"({"timeZone":"Europe/Vienna"})"), ElementsAre("p3", "p4"));
    EXPECT_THAT(idsWhere(R"({"name":{"$regex":"^d","$options":"i"}})"), ElementsAre("p4"));
    EXPECT_EQ(
        call(bearer, "GET", "projects?only_count=true&where=" + test::percentEncoded(R"({"_id":"p2"})")).body,
        R"({"count":0})");
}

TEST_F(ProjectsResource, BadParametersAreRefused)
{
    const std::string stranger = newToken("Stranger");
    for (const char* const query : {"?order=createdAt", "?order=name,name", "?limit=-1", "?expand=maybe",
                                    "?only_count=1", "?where=x", "?color=red"}) {
        EXPECT_EQ(call(bearer, "GET", std::string("projects") + query).status, 400U) << query;
        EXPECT_EQ(call(stranger, "GET", std::string("projects") + query).status, 400U) << query;
    }
    EXPECT_EQ(call(bearer, "PUT", "projects", "{}").status, 405U);
    EXPECT_EQ(call("", "GET", "projects").status, 401U);
}

TEST_F(ProjectsResource, OneIsAnsweredToWhoHasAnyRightInIt)
{
    EXPECT_EQ(call(bearer, "GET", "projects/p3").body,
              R"({"_id":"p3","name":"Bridge","timeZone":"Europe/Vienna"})");
    EXPECT_EQ(refusal(call(bearer, "GET", "projects/p2")), "404 there is no project \"p2\"");
    EXPECT_EQ(refusal(call(bearer, "GET", "projects/p9")), "404 there is no project \"p9\"");
    EXPECT_EQ(call(bearer, "GET", "projects/p3?expand=true").status, 400U);
}

TEST_F(ProjectsResource, RenamedOneIsAnsweredByItsNewName)
{
    write([](Session& session) { session.projects().rename("p1", "Grube"); });
    EXPECT_EQ(test::member(get("projects/p1").body, "name"), "Grube");
}

TEST_F(ProjectsResource, AboutTellsWhoAsksAndWhatTheyMay)
{
    const test::RawAnswer answer = call(bearer, "GET", "about");
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(test::member(answer.body, "name"), "monitor-service");
    EXPECT_THAT(test::member(answer.body, "version"), ::testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
    EXPECT_EQ(
        test::member(answer.body, "extensions"),
        R"(["about","administration","alarmReasons","changes","deliveryResults","deliveryUndo","groupSides",)"
        R"("openAlarms","pointChanges","pointDeletion","pointSummaries","projects","subCategoryKinds"])");
    EXPECT_EQ(test::member(answer.body, "owner"), "Bea");
    EXPECT_EQ(test::member(answer.body, "rights"),
              R"([{"projectId":"p1","category":null,"rights":["read"]},)"
              R"({"projectId":"p3","category":"Settlement","rights":["create"]},)"
              R"({"projectId":"p4","category":"Inclinometer","rights":["delete"]}])");
    EXPECT_EQ(test::member(get("about").body, "rights"),
              R"([{"projectId":"p1","category":null,"rights":["read","create","edit","delete"]}])");
    EXPECT_EQ(test::member(call(newToken("Stranger"), "GET", "about").body, "rights"), "[]");
    EXPECT_EQ(call("", "GET", "about").status, 401U);
    EXPECT_EQ(get("about?expand=true").status, 400U);
}

TEST_F(ProjectsResource, AboutTellsWhoAdministers)
{
    const std::string administrator = newAdministrator("Root");
    EXPECT_EQ(test::member(call(administrator, "GET", "about").body, "rights"),
              R"([{"projectId":null,"category":null,"rights":["administer"]}])");
    grant(administrator, "p1", std::nullopt, Right::Read);
    EXPECT_EQ(test::member(call(administrator, "GET", "about").body, "rights"),
              R"([{"projectId":null,"category":null,"rights":["administer"]},)"
              R"({"projectId":"p1","category":null,"rights":["read"]}])");
}

TEST_F(ProjectsResource, AdministratorSeesAllProjectsAndNothingMeasured)
{
    const std::string administrator = newAdministrator("Root");
    const std::string cell = newCell("Tower");
    EXPECT_THAT(test::membersOf(call(administrator, "GET", "projects").body, "_id"),
                ElementsAre("p1", "p2", "p3", "p4"));
    EXPECT_EQ(call(administrator, "GET", "projects/p2").status, 200U);
    EXPECT_EQ(call(administrator, "GET", "projects/p9").status, 404U);
    for (const char* const path :
         {"projects/p1/cells", "projects/p1/pointLocations", "projects/p1/changes"}) {
        EXPECT_EQ(call(administrator, "GET", path).status, 404U) << path;
    }
    EXPECT_EQ(call(administrator, "GET", "cells/" + cell).status, 404U);
    EXPECT_EQ(call(administrator, "DELETE", "cells/" + cell).status, 404U);
}

TEST_F(ProjectsResource, OneIsMade)
{
    const std::string administrator = newAdministrator("Root");
    const test::RawAnswer made =
        call(administrator, "POST", "projects", R"({"name":"Hafen \"Süd\"","timeZone":"Europe/Vienna"})");
    EXPECT_EQ(made.status, 201U);
    const std::string id = test::member(made.body, "_id");
    EXPECT_EQ(made.body, R"({"_id":")" + id + R"(","name":"Hafen \"Süd\"","timeZone":"Europe/Vienna"})");
    EXPECT_EQ(made.fields.at("location"), "/monitor-service/projects/" + id);
    EXPECT_EQ(call(administrator, "GET", "projects/" + id).body, made.body);
    EXPECT_EQ(test::member(latestEntry(), "action"), "project.created");
    EXPECT_EQ(test::member(latestEntry(), "projectId"), id);
    EXPECT_EQ(test::member(latestEntry(), "after"), made.body);
    EXPECT_EQ(test::member(latestEntry(), "createdBy"), "Root");
    const test::RawAnswer like =
        call(administrator, "POST", "projects", R"({"name":"HAFEN \"SÜD\"","timeZone":"UTC"})");
    EXPECT_EQ(like.status, 201U);
    EXPECT_EQ(test::member(like.body, "warnings"),
              R"(["project )" + id + R"( is called \"Hafen \"Süd\"\" too"])");
}

TEST_F(ProjectsResource, OneIsRenamedAndRemoved)
{
    const std::string administrator = newAdministrator("Root");
    const test::RawAnswer renamed = call(administrator, "PATCH", "projects/p1", R"({"name":"Grube"})");
    EXPECT_EQ(renamed.status, 200U);
    EXPECT_EQ(renamed.body, R"({"_id":"p1","name":"Grube","timeZone":"UTC"})");
    EXPECT_EQ(get("projects/p1").body, renamed.body);
    EXPECT_EQ(test::member(latestEntry(), "action"), "project.renamed");
    newCell("Tower");
    EXPECT_EQ(refusal(call(administrator, "DELETE", "projects/p1")),
              "409 project p1 is still in use and stays: monitorings: 1, grants: 2");
    EXPECT_EQ(call(administrator, "DELETE", "projects/p2").body,
              R"({"_id":"p2","name":"Slope","timeZone":"UTC"})");
    EXPECT_EQ(test::member(latestEntry(), "action"), "project.removed");
    EXPECT_EQ(refusal(call(administrator, "DELETE", "projects/p2")), "404 there is no project \"p2\"");
    EXPECT_EQ(refusal(call(administrator, "PATCH", "projects/p2", R"({"name":"Grube"})")),
              "404 there is no project \"p2\"");
}

TEST_F(ProjectsResource, BadBodiesAreRefused)
{
    const std::string administrator = newAdministrator("Root");
    const std::string before = latestEntry();
    const auto refused = [&](const std::string& method, const std::string& path, const std::string& body) {
        return refusal(call(administrator, method, path, body));
    };
    EXPECT_EQ(refused("POST", "projects", R"({"name":"Pit"})"), "400 \"timeZone\" is missing");
    EXPECT_EQ(refused("POST", "projects", R"({"timeZone":"UTC"})"), "400 \"name\" is missing");
    EXPECT_EQ(refused("POST", "projects", R"({"name":1,"timeZone":"UTC"})"), "400 \"name\" must be a text");
    EXPECT_EQ(refused("POST", "projects", R"({"name":" ","timeZone":"UTC"})"), "400 \"name\" is empty");
    EXPECT_EQ(refused("POST", "projects", R"({"name":"a\nb","timeZone":"UTC"})"),
              "400 \"name\" has a control character");
    EXPECT_EQ(refused("POST", "projects", R"({"name":"Pit","timeZone":"Europe/Vien"})"),
              "400 \"timeZone\" is not a zone of this system's time zone database");
    EXPECT_EQ(refused("POST", "projects", R"({"name":"Pit","timeZone":"UTC","_id":"p9"})"),
              "400 \"_id\" is not a member that can be set");
    EXPECT_EQ(refused("PATCH", "projects/p1", "{}"), "400 \"name\" is missing");
    EXPECT_EQ(refused("PATCH", "projects/p1", R"({"timeZone":"UTC"})"),
              "400 \"timeZone\" is not a member that can be set");
    EXPECT_EQ(refused("PATCH", "projects/p1", R"({"name":""})"), "400 \"name\" is empty");
    EXPECT_EQ(refused("DELETE", "projects/p2?cascade=true", "").substr(0, 3), "400");
    EXPECT_EQ(latestEntry(), before);
}

TEST_F(ProjectsResource, OnlyAdministratorsAdminister)
{
    const std::string refused = "403 the token may not administer the service";
    EXPECT_EQ(refusal(call(editor, "POST", "projects", R"({"name":"Pit","timeZone":"UTC"})")), refused);
    EXPECT_EQ(refusal(call(editor, "PATCH", "projects/p1", R"({"name":"Grube"})")), refused);
    EXPECT_EQ(refusal(call(editor, "PATCH", "projects/p9", R"({"name":"Grube"})")), refused);
    EXPECT_EQ(refusal(call(editor, "DELETE", "projects/p2")), refused);
    EXPECT_EQ(call("", "DELETE", "projects/p2").status, 401U);
    const std::string administrator = newToken("Root");
    const std::string id = grant(administrator, std::nullopt, std::nullopt, Right::Administer);
    write([&](Session& session) { session.grants().remove(id); });
    EXPECT_EQ(refusal(call(administrator, "DELETE", "projects/p2")), refused) << "revoked";
    EXPECT_EQ(store.read()->projects().list().size(), 4U);
}

} // namespace
} // namespace monitorservice
