#include "ApiFixture.h"

namespace monitorservice {
namespace {

using CategoriesResource = test::ApiFixture;

TEST_F(CategoriesResource, AreAnArrayOfTextsForEveryBearer)
{
    const std::string stranger = newToken("Stranger");
    write([](Session& session) { session.categories().add("a \"quoted\" \\ Böschung"); });
    const test::RawAnswer answer = call(stranger, "GET", "categories");
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(answer.fields.at("content-type"), "application/json; charset=utf-8");
    EXPECT_EQ(answer.body, R"(["Settlement","Inclinometer","a \"quoted\" \\ Böschung"])");
}

TEST_F(CategoriesResource, ParametersAreRefused)
{
    EXPECT_EQ(get("categories?limit=1").status, 400U);
}

} // namespace
} // namespace monitorservice
