#include "json/JsonMembers.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(JsonMembers, ValueTakesThePlaceOfTheOneThatIsThere)
{
    EXPECT_EQ(withMember(R"({"a":1,"b":"x","c":[]})", "b", "true"), R"({"a":1,"b":true,"c":[]})");
    EXPECT_EQ(withMember(R"({ "a" : {"b":1} , "b" : [ "}" ] })", "b", "2"), R"({ "a" : {"b":1} , "b" : 2 })");
}

TEST(JsonMembers, MemberWithinAnotherStays)
{
    EXPECT_EQ(withMember(R"({"before":{"category":"A"},"t":"\"category\":\"A\"","category":"A"})", "category",
                         R"("B")"),
              R"({"before":{"category":"A"},"t":"\"category\":\"A\"","category":"B"})");
}

TEST(JsonMembers, MissingOneStandsBehindTheOthers)
{
    EXPECT_EQ(withMember(R"({"a":1})", "b", "null"), R"({"a":1,"b":null})");
    EXPECT_EQ(withMember("{}", "b", "2"), R"({"b":2})");
    EXPECT_EQ(withMember("{ }", "b", "2"), R"({ "b":2})");
}

} // namespace
} // namespace monitorservice
