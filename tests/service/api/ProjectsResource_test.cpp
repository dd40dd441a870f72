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
    EXPECT_EQ(call(bearer, "POST", "projects", "{}").status, 405U);
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
        R"(["about","alarmReasons","changes","deliveryResults","deliveryUndo","groupSides","pointChanges",)"
        R"("pointDeletion","pointSummaries",)"
        R"("projects","subCategoryKinds"])");
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

} // namespace
} // namespace monitorservice
