#include "ApiFixture.h"

namespace monitorservice {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class AuthResource : public test::ApiFixture
{
protected:
    std::string value(const std::string& token, const std::string& project, const std::string& category,
                      const std::string& key) const
    {
        const test::RawAnswer answer =
            call(token, "GET",
                 "projects/" + project + "/auth?category=" + test::percentEncoded(category) + "&key=" + key);
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return answer.body;
    }
};

constexpr const char* yes = R"({"value":"true"})";
constexpr const char* no = R"({"value":"false"})";

TEST_F(AuthResource, EachRightIsAnsweredByItself)
{
    struct Case
    {
        const char* key;
        Right right;
    };
    const std::vector<Case> cases{
        {"create", Right::Create}, {"edit", Right::Edit}, {"delete", Right::Delete}};
    for (const Case& held : cases) {
        const std::string token = newToken(std::string("Only ") + held.key);
        grant(token, "p1", "Settlement", held.right);
        for (const Case& asked : cases) {
            EXPECT_EQ(value(token, "p1", "Settlement", asked.key), asked.right == held.right ? yes : no)
                << held.key << ' ' << asked.key;
            EXPECT_EQ(value(token, "p1", "Inclinometer", asked.key), no);
            EXPECT_EQ(value(token, "p2", "Settlement", asked.key), no);
        }
    }
}

TEST_F(AuthResource, ReaderMayNothingElse)
{
    const std::string token = newToken("Reader");
    grant(token, "p1", std::nullopt, Right::Read);
    for (const char* const key : {"create", "edit", "delete"}) {
        EXPECT_EQ(value(token, "p1", "Settlement", key), no);
    }
}

TEST_F(AuthResource, GrantForEveryCategoryHoldsForThoseAddedLater)
{
    EXPECT_EQ(value(editor, "p1", "Überwachung & mehr", "create"), no);
    write([](Session& session) { session.categories().add("Überwachung & mehr"); });
    EXPECT_EQ(value(editor, "p1", "Überwachung & mehr", "create"), yes);
}

TEST_F(AuthResource, WhatIsNotKnownIsNotAllowed)
{
    EXPECT_EQ(value(editor, "p9", "Settlement", "create"), no);
    EXPECT_EQ(value(editor, "p1", "", "create"), no);
    EXPECT_EQ(value(editor, "p1", "settlement", "create"), no);
}

TEST_F(AuthResource, BadParametersAreNamed)
{
    const auto refused = [this](const std::string& query) {
        return refusal(get("projects/p1/auth" + query));
    };
    EXPECT_THAT(refused("?category=Settlement&key=read"), StartsWith("400 parameter \"key\""));
    EXPECT_THAT(refused("?category=Settlement&key="), StartsWith("400 parameter \"key\""));
    EXPECT_THAT(refused("?category=Settlement"), StartsWith("400 parameter \"key\" is missing"));
    EXPECT_THAT(refused("?key=edit"), StartsWith("400 parameter \"category\" is missing"));
    EXPECT_THAT(refused("?category=a&category=b&key=edit"), HasSubstr("\"category\" is given twice"));
    EXPECT_THAT(refused("?category=a&key=edit&where={}"), HasSubstr("\"where\" is not known"));
}

} // namespace
} // namespace monitorservice
