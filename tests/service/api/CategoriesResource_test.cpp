#include "ApiFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::RawAnswer;
using ::testing::ElementsAre;

class CategoriesResource : public test::ApiFixture
{
protected:
    std::vector<std::string> categories() const { return store.read()->categories().list(); }

    RawAnswer ask(const std::string& method, const std::string& path, const std::string& body = {}) const
    {
        return call(administrator, method, path, body);
    }

    const std::string administrator = newAdministrator("Root");
};

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

TEST_F(CategoriesResource, OneIsAdded)
{
    const RawAnswer added = ask("POST", "categories", R"({"name":"Strain / \"a\" 100 %"})");
    EXPECT_EQ(added.status, 201U);
    EXPECT_EQ(added.body, R"({"name":"Strain / \"a\" 100 %"})");
    EXPECT_EQ(added.fields.at("location"), "/monitor-service/categories/Strain%20%2F%20%22a%22%20100%20%25");
    EXPECT_THAT(categories(), ElementsAre("Settlement", "Inclinometer", "Strain / \"a\" 100 %"));
    EXPECT_EQ(member(latestEntry(), "action"), "category.created");
    EXPECT_EQ(member(latestEntry(), "projectId"), "");
    EXPECT_EQ(member(latestEntry(), "category"), "");
    EXPECT_EQ(member(latestEntry(), "after"), added.body);
    EXPECT_EQ(member(latestEntry(), "createdBy"), "Root");
    EXPECT_EQ(ask("POST", "categories", R"({"name":"SETTLEMENT"})").body,
              R"({"name":"SETTLEMENT","warnings":["there is a category \"Settlement\" too"]})");
    EXPECT_EQ(refusal(ask("POST", "categories", R"({"name":"Settlement"})")),
              "409 there is a category \"Settlement\" already");
}

TEST_F(CategoriesResource, OneIsRenamedByItsEncodedName)
{
    const std::string odd = "../a b?c=%41#\u00e4";
    ask("POST", "categories", R"({"name":")" + odd + "\"}");
    const RawAnswer renamed = ask("PATCH", "categories/" + test::percentEncoded(odd), R"({"name":"Strain"})");
    EXPECT_EQ(renamed.status, 200U);
    EXPECT_EQ(renamed.body, R"({"name":"Strain"})");
    EXPECT_THAT(categories(), ElementsAre("Settlement", "Inclinometer", "Strain"));
    const std::string cell = newCell("Tower");
    EXPECT_EQ(ask("PATCH", "categories/Settlement", R"({"name":"Setzung"})").status, 200U);
    EXPECT_EQ(member(get("cells/" + cell).body, "category"), "Setzung");
    EXPECT_EQ(member(latestEntry(), "before"), R"({"name":"Settlement"})");
    EXPECT_EQ(member(latestEntry(), "after"), R"({"name":"Setzung"})");
    EXPECT_EQ(refusal(ask("PATCH", "categories/Strain", R"({"name":"Setzung"})")),
              "409 there is a category \"Setzung\" already");
    EXPECT_EQ(refusal(ask("PATCH", "categories/Stress", R"({"name":"x"})")),
              "404 there is no category \"Stress\"");
    EXPECT_EQ(member(ask("PATCH", "categories/Strain", R"({"name":"SETZUNG"})").body, "warnings"),
              R"(["there is a category \"Setzung\" too"])");
}

TEST_F(CategoriesResource, OneIsRemovedWhenNothingIsOfIt)
{
    newCell("Tower");
    EXPECT_EQ(refusal(ask("DELETE", "categories/Settlement")),
              "409 category \"Settlement\" is still in use and stays: monitorings: 1 in project \"Pit\"");
    EXPECT_EQ(ask("DELETE", "categories/Inclinometer").body, R"({"name":"Inclinometer"})");
    EXPECT_THAT(categories(), ElementsAre("Settlement"));
    EXPECT_EQ(member(latestEntry(), "action"), "category.removed");
    EXPECT_EQ(refusal(ask("DELETE", "categories/Inclinometer")), "404 there is no category \"Inclinometer\"");
}

TEST_F(CategoriesResource, BadBodiesAreRefused)
{
    EXPECT_EQ(refusal(ask("POST", "categories", "{}")), "400 \"name\" is missing");
    EXPECT_EQ(refusal(ask("POST", "categories", R"({"name":null})")), "400 \"name\" must be a text");
    EXPECT_EQ(refusal(ask("POST", "categories", R"({"name":" "})")), "400 \"name\" is empty");
    EXPECT_EQ(refusal(ask("POST", "categories", R"({"name":"a","name":"b"})")),
              "400 \"name\" is given twice");
    EXPECT_EQ(refusal(ask("PATCH", "categories/Settlement", R"({"name":"\u0007"})")),
              "400 \"name\" has a control character");
    EXPECT_EQ(refusal(ask("PATCH", "categories/Settlement", R"({"name":"a","order":1})")),
              "400 \"order\" is not a member that can be set");
    EXPECT_EQ(refusal(ask("POST", "categories", R"(["Strain"])")), "400 the body must be a JSON object");
    EXPECT_EQ(latestEntry(), "");
}

TEST_F(CategoriesResource, OnlyAdministratorsAdminister)
{
    const std::string refused = "403 the token may not administer the service";
    EXPECT_EQ(refusal(call(editor, "POST", "categories", R"({"name":"Strain"})")), refused);
    EXPECT_EQ(refusal(call(editor, "PATCH", "categories/Settlement", R"({"name":"Strain"})")), refused);
    EXPECT_EQ(refusal(call(editor, "DELETE", "categories/Settlement")), refused);
    EXPECT_EQ(call("", "POST", "categories", R"({"name":"Strain"})").status, 401U);
    EXPECT_THAT(categories(), ElementsAre("Settlement", "Inclinometer"));
}

} // namespace
} // namespace monitorservice
