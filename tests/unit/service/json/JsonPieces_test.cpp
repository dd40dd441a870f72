#include "json/JsonPieces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> pieces(std::string_view text)
{
    std::vector<std::string> found;
    JsonArrayPieces array(text);
    while (const auto piece = array.next()) {
        found.emplace_back(*piece);
    }
    return found;
}

TEST(JsonArrayPieces, ElementsAreCutAtTheirCommas)
{
    EXPECT_THAT(pieces(R"( [ 1 ,"a,b" , [2,[3]],{"x":[1,{}]}, null ] )"),
                ElementsAre("1", R"("a,b")", "[2,[3]]", R"({"x":[1,{}]})", "null"));
    EXPECT_THAT(pieces("[]"), IsEmpty());
    EXPECT_THAT(pieces("[ \t\r\n]\n"), IsEmpty());
}

TEST(JsonArrayPieces, BracketsInTextsDoNotCount)
{
    EXPECT_THAT(pieces(R"([{"a":"]}[\"{"},"\\","\\\"]"])"),
                ElementsAre(R"({"a":"]}[\"{"})", R"("\\")", R"("\\\"]")"));
}

TEST(JsonArrayPieces, WhatIsNoArrayIsRefused)
{
    for (const char* const text : {"", " ", "{}", "1", "[", "[1", "[1,", "[1,]", "[,1]", "[1 2]", "[1,,2]",
                                   "[1]]", "[1] x", R"(["a)", R"(["a\")", "[{}", "[1}", "[[1]"}) {
        EXPECT_THROW(pieces(text), JsonPieceError) << text;
    }
}

TEST(FindJsonMember, FirstMemberOfThatNameIsFound)
{
    EXPECT_EQ(findJsonMember(R"({"a":1,"data":[1,2],"data":3})", "\"data\""), "[1,2]");
    EXPECT_EQ(findJsonMember(R"( { "x" : {"data":5} , "data" : "y" } )", "\"data\""), "\"y\"");
    EXPECT_EQ(findJsonMember(R"({"a":"\"data\":"})", "\"data\""), std::nullopt);
}

TEST(FindJsonMember, WhatIsNoObjectHasNone)
{
    for (const char* const text : {"", "[]", "{", "{\"data\"", "{\"data\":", "{x:1,\"data\":2}",
                                   "{\"a\":1 \"data\":2}", "{\"a\" 1,\"data\":2}", "{\"a"}) {
        const auto found = findJsonMember(text, "\"data\"");
        EXPECT_TRUE(!found || found->empty()) << text;
    }
}

} // namespace
} // namespace monitorservice
