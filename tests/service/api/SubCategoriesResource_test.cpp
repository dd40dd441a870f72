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

} // namespace
} // namespace monitorservice
