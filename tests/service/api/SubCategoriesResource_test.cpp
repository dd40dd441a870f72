#include "ApiFixture.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class SubCategoriesResource : public test::ApiFixture
{
protected:
    SubCategoriesResource()
    {
        add({"s1", "p1", "Ground level", "Settlement", "GL"});
        add({"s2", "p1", "Wall", "Inclinometer", ""});
        add({"s3", "p1", "Building \"A\"", "Settlement", "B", SubCategoryKind::Displacement, "mm", 1});
        add({"s4", "p2", "Ground level", "Settlement", "GL"});
    }

    void add(const SubCategory& subCategory)
    {
        write([&](Session& session) {
            session.documents(DocumentKind::SubCategory)
                .insert(subCategory.project, subCategory.id, toDocument(subCategory));
        });
    }

    std::vector<std::string> idsOf(const test::RawAnswer& answer) const
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return test::membersOf(answer.body, "_id");
    }
};

TEST_F(SubCategoriesResource, AreListedByCategory)
{
    const std::string where = test::percentEncoded(R"({"category":"Settlement"})");
    EXPECT_THAT(idsOf(get("projects/p1/subCategories?where=" + where)), ElementsAre("s1", "s3"));
    EXPECT_THAT(idsOf(get("projects/p1/subCategories?where=" + test::percentEncoded(R"({"category":""})"))),
                IsEmpty());
    EXPECT_THAT(idsOf(get("projects/p1/subCategories")), ElementsAre("s1", "s2", "s3"));
    EXPECT_EQ(get("projects/p1/subCategories?only_count=true").body, R"({"count":3})");
}

TEST_F(SubCategoriesResource, OneIsAnsweredWhole)
{
    EXPECT_EQ(get("subCategories/s3").body,
              R"({"_id":"s3","projectId":"p1","name":"Building \"A\"","category":"Settlement","alias":"B",)"
              R"("kind":"displacement","unit":"mm","decimals":1})");
}

TEST_F(SubCategoriesResource, WhatMayNotBeReadIsNotThere)
{
    EXPECT_THAT(refusal(get("subCategories/s4")), StartsWith("404 there is no sub-category \"s4\""));
    EXPECT_THAT(refusal(get("subCategories/s9")), StartsWith("404 there is no sub-category \"s9\""));
    EXPECT_EQ(get("projects/p2/subCategories").status, 404U);
    const std::string token = newToken("Reader");
    grant(token, "p1", "Inclinometer", Right::Read);
    EXPECT_THAT(idsOf(call(token, "GET", "projects/p1/subCategories")), ElementsAre("s2"));
    EXPECT_EQ(call(token, "GET", "subCategories/s1").status, 404U);
    EXPECT_EQ(call(token, "GET", "subCategories/s2").status, 200U);
}

TEST_F(SubCategoriesResource, AdministratorSeesAll)
{
    const std::string administrator = newAdministrator("Root");
    EXPECT_THAT(idsOf(call(administrator, "GET", "projects/p1/subCategories")),
                ElementsAre("s1", "s2", "s3"));
    EXPECT_THAT(idsOf(call(administrator, "GET", "projects/p2/subCategories")), ElementsAre("s4"));
    EXPECT_EQ(refusal(call(administrator, "GET", "projects/p9/subCategories")),
              "404 there is no project \"p9\"");
    EXPECT_EQ(call(administrator, "GET", "subCategories/s4").status, 200U);
    EXPECT_EQ(call(administrator, "GET", "subCategories/s9").status, 404U);
}

TEST_F(SubCategoriesResource, OneIsMade)
{
    const std::string administrator = newAdministrator("Root");
    const test::RawAnswer made =
        call(administrator, "POST", "projects/p2/subCategories",
             R"({"name":"Water","category":"Settlement","alias":"W","kind":"water level","unit":"m",)"
             R"("decimals":2})");
    EXPECT_EQ(made.status, 201U);
    const std::string id = test::member(made.body, "_id");
    EXPECT_EQ(made.body, R"({"_id":")" + id +
                             R"(","projectId":"p2","name":"Water","category":"Settlement","alias":"W",)"
                             R"("kind":"water level","unit":"m","decimals":2})");
    EXPECT_EQ(made.fields.at("location"), "/monitor-service/subCategories/" + id);
    EXPECT_EQ(call(administrator, "GET", "subCategories/" + id).body, made.body);
    EXPECT_EQ(test::member(latestEntry(), "action"), "subCategory.created");
    EXPECT_EQ(test::member(latestEntry(), "projectId"), "p2");
    EXPECT_EQ(test::member(latestEntry(), "category"), "Settlement");
    EXPECT_EQ(test::member(latestEntry(), "createdBy"), "Root");
    const test::RawAnswer bare = call(administrator, "POST", "projects/p2/subCategories",
                                      R"({"name":"WATER","category":"Settlement","alias":"W"})");
    EXPECT_EQ(bare.status, 201U);
    EXPECT_EQ(test::member(bare.body, "kind"), "other");
    EXPECT_EQ(test::member(bare.body, "decimals"), "null");
    EXPECT_EQ(test::member(bare.body, "warnings"),
              R"(["sub-category \"Water\" of category \"Settlement\" has the alias \"W\" too",)"
              R"("category \"Settlement\" of the project has a sub-category \"Water\" too"])");
}

TEST_F(SubCategoriesResource, OneIsChangedInWhatIsSent)
{
    const std::string administrator = newAdministrator("Root");
    const auto patch = [&](const std::string& body) {
        return call(administrator, "PATCH", "subCategories/s3", body);
    };
    EXPECT_EQ(patch(R"({"name":"House","kind":"settlement","decimals":null})").body,
              R"({"_id":"s3","projectId":"p1","name":"House","category":"Settlement","alias":"B",)"
              R"("kind":"settlement","unit":"mm","decimals":null})");
    EXPECT_EQ(patch(R"({"alias":"","unit":"","decimals":0})").body,
              R"({"_id":"s3","projectId":"p1","name":"House","category":"Settlement","alias":"",)"
              R"("kind":"settlement","unit":"","decimals":0})");
    const std::string entry = latestEntry();
    EXPECT_EQ(test::member(entry, "action"), "subCategory.changed");
    EXPECT_EQ(test::member(entry, "subCategoryId"), "s3");
    EXPECT_EQ(patch("{}").status, 200U);
    EXPECT_EQ(patch(R"({"name":"House"})").status, 200U);
    EXPECT_EQ(latestEntry(), entry) << "nothing has changed";
    EXPECT_EQ(refusal(patch(R"({"name":"Ground level"})")),
              "409 category \"Settlement\" of the project has a sub-category \"Ground level\" already");
    EXPECT_EQ(test::member(patch(R"({"alias":"GL"})").body, "warnings"),
              R"(["sub-category \"Ground level\" of category \"Settlement\" has the alias \"GL\" too"])");
    EXPECT_EQ(refusal(call(administrator, "PATCH", "subCategories/s9", "{}")),
              "404 there is no sub-category \"s9\"");
}

TEST_F(SubCategoriesResource, OneIsRemovedWhenNothingUsesIt)
{
    const std::string administrator = newAdministrator("Root");
    const std::string cell = newCell("Tower");
    const test::RawAnswer group =
        call(editor, "POST", "groupSettings",
             R"({"projectId":"p1","cellId":")" + cell + R"(","subCategoryId":"s1","groupName":"Corner"})");
    EXPECT_EQ(group.status, 201U);
    EXPECT_EQ(refusal(call(administrator, "DELETE", "subCategories/s1")),
              "409 sub-category \"Ground level\" is still in use and stays: groups: 1");
    EXPECT_EQ(test::member(call(administrator, "DELETE", "subCategories/s2").body, "name"), "Wall");
    EXPECT_EQ(test::member(latestEntry(), "action"), "subCategory.removed");
    EXPECT_EQ(get("subCategories/s2").status, 404U);
    EXPECT_EQ(refusal(call(administrator, "DELETE", "subCategories/s2")),
              "404 there is no sub-category \"s2\"");
}

TEST_F(SubCategoriesResource, BadBodiesAreRefused)
{
    const std::string administrator = newAdministrator("Root");
    const auto posted = [&](const std::string& body) {
        return refusal(call(administrator, "POST", "projects/p1/subCategories", body));
    };
    const auto patched = [&](const std::string& body) {
        return refusal(call(administrator, "PATCH", "subCategories/s1", body));
    };
    EXPECT_EQ(posted(R"({"category":"Settlement"})"), "400 \"name\" is missing");
    EXPECT_EQ(posted(R"({"name":"a"})"), "400 \"category\" is missing");
    EXPECT_EQ(posted(R"({"name":"a","category":"Strain"})"),
              "400 \"category\": there is no category \"Strain\"");
    EXPECT_EQ(posted(R"({"name":"a","category":"Settlement","projectId":"p1"})"),
              "400 \"projectId\" is not a member that can be set");
    EXPECT_EQ(refusal(call(administrator, "POST", "projects/p9/subCategories",
                           R"({"name":"a","category":"Settlement"})")),
              "404 there is no project \"p9\"");
    EXPECT_EQ(patched(R"({"category":"Inclinometer"})"), "400 \"category\" is not a member that can be set");
    EXPECT_EQ(patched(R"({"name":""})"), "400 \"name\" is empty");
    EXPECT_EQ(patched(R"({"name":7})"), "400 \"name\" must be a text");
    EXPECT_EQ(patched(R"({"alias":"\t"})"), "400 \"alias\" has a control character");
    EXPECT_EQ(patched(R"({"unit":" "})"), "400 \"unit\" is empty");
    EXPECT_EQ(patched(R"({"kind":"tilt"})"),
              "400 \"kind\" must be one of \"displacement\", \"settlement\", \"inclinometer\", \"water "
              "level\", \"force\", \"other\"");
    EXPECT_EQ(patched(R"({"kind":null})"), "400 \"kind\" must be a text");
    for (const char* const decimals : {"-1", "16"}) {
        EXPECT_EQ(patched(std::string(R"({"decimals":)") + decimals + "}"),
                  "400 \"decimals\" is not a whole number from 0 to 15");
    }
    EXPECT_EQ(patched(R"({"decimals":1.5})"), "400 \"decimals\" must be a whole number of 32 bits");
    EXPECT_EQ(latestEntry(), "");
}

TEST_F(SubCategoriesResource, OnlyAdministratorsAdminister)
{
    const std::string refused = "403 the token may not administer the service";
    EXPECT_EQ(
        refusal(call(editor, "POST", "projects/p1/subCategories", R"({"name":"a","category":"Settlement"})")),
        refused);
    EXPECT_EQ(refusal(call(editor, "PATCH", "subCategories/s1", R"({"unit":"mm"})")), refused);
    EXPECT_EQ(refusal(call(editor, "PATCH", "subCategories/s9", R"({"unit":"mm"})")), refused);
    EXPECT_EQ(refusal(call(editor, "DELETE", "subCategories/s2")), refused);
    EXPECT_EQ(call("", "DELETE", "subCategories/s2").status, 401U);
    EXPECT_EQ(latestEntry(), "");
}

} // namespace
} // namespace monitorservice
