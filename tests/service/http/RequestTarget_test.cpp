#include "http/RequestTarget.h"

#include "http/RefusedRequest.h"

#include <gmock/gmock.h>

namespace monitorservice {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

// The status the target is refused with; 0 when it is accepted.
unsigned refusal(std::string_view target)
{
    try {
        parseRequestTarget(target);
        return 0;
    } catch (const RefusedRequest& refused) {
        return refused.status();
    }
}

} // namespace

TEST(RequestTarget, SplitsPathAndParameters)
{
    const RequestTarget target = parseRequestTarget("/monitor-service/projects/p1/cells?skip=10&limit=5");
    EXPECT_THAT(target.path, ElementsAre("monitor-service", "projects", "p1", "cells"));
    EXPECT_THAT(target.parameters, ElementsAre(Pair("skip", "10"), Pair("limit", "5")));
}

TEST(RequestTarget, KeepsEmptyAndDotSegmentsAsTheyStand)
{
    EXPECT_THAT(parseRequestTarget("/").path, ElementsAre(""));
    EXPECT_THAT(parseRequestTarget("//").path, ElementsAre("", ""));
    EXPECT_THAT(parseRequestTarget("/a//b/").path, ElementsAre("a", "", "b", ""));
    EXPECT_THAT(parseRequestTarget("/a/../b/./c").path, ElementsAre("a", "..", "b", ".", "c"));
}

TEST(RequestTarget, DecodesAfterSplitting)
{
    EXPECT_THAT(parseRequestTarget("/a%2Fb/..%2f/%3F").path, ElementsAre("a/b", "../", "?"));
    EXPECT_THAT(parseRequestTarget("/x?a%3Db=1%262%3D3").parameters, ElementsAre(Pair("a=b", "1&2=3")));
}

TEST(RequestTarget, PlusIsAPlus)
{
    EXPECT_THAT(parseRequestTarget("/a+b?c+d=e+f%2B%20g").parameters, ElementsAre(Pair("c+d", "e+f+ g")));
    EXPECT_THAT(parseRequestTarget("/a+b").path, ElementsAre("a+b"));
}

TEST(RequestTarget, KeepsDuplicatesEmptyValuesAndOrder)
{
    EXPECT_THAT(parseRequestTarget("/x?b=2&a&b=1&a=&=v&c=d=e").parameters,
                ElementsAre(Pair("b", "2"), Pair("a", ""), Pair("b", "1"), Pair("a", ""), Pair("", "v"),
                            Pair("c", "d=e")));
    EXPECT_THAT(parseRequestTarget("/x?").parameters, IsEmpty());
    EXPECT_THAT(parseRequestTarget("/x?&&a=1&").parameters, ElementsAre(Pair("a", "1")));
}

TEST(RequestTarget, SecondQuestionMarkAndSlashBelongToTheQuery)
{
    EXPECT_THAT(parseRequestTarget("/x?a=?/b").parameters, ElementsAre(Pair("a", "?/b")));
    EXPECT_THAT(parseRequestTarget("/x?a=?/b").path, ElementsAre("x"));
}

TEST(RequestTarget, AcceptsAJsonDocumentTypedByHand)
{
    EXPECT_THAT(parseRequestTarget(R"(/x?where={"a":[1,"b\c|^`"]})").parameters,
                ElementsAre(Pair("where", R"({"a":[1,"b\c|^`"]})")));
}

TEST(RequestTarget, DecodesEveryByteButNul)
{
    for (int byte = 1; byte < 0x80; ++byte) {
        std::string target = "/%";
        target += "0123456789abcdef"[byte / 16];
        target += "0123456789ABCDEF"[byte % 16];
        EXPECT_THAT(parseRequestTarget(target).path, ElementsAre(std::string(1, static_cast<char>(byte))));
    }
    EXPECT_EQ(refusal("/%00"), 400U);
    EXPECT_EQ(refusal("/x?a=b%00c"), 400U);
}

TEST(RequestTarget, DecodesUtf8)
{
    EXPECT_THAT(parseRequestTarget("/%C3%A9%e6%b2%89%f0%9f%9a%a7").path, ElementsAre("é沉🚧"));
}

TEST(RequestTarget, RefusesWhatIsNotUtf8)
{
    for (const char* target :
         {"/%80", "/%C3", "/%C3%28", "/%C0%AF", "/%E0%80%AF", "/%ED%A0%80", "/%F4%90%80%80", "/%FF",
          "/x?%C3=1", "/x?a=%C3", "/x?a=%C3&b=%A9", "/%C3/%A9"}) {
        EXPECT_EQ(refusal(target), 400U) << target;
    }
}

TEST(RequestTarget, RefusesIncompletePercentEncoding)
{
    for (const char* target : {"/%", "/%4", "/a%", "/%zz", "/%4g", "/%g4", "/% 41", "/%+4", "/%-1", "/%4/1",
                               "/%0x", "/%%41", "/x?a=%", "/x?%4=1", "/x?a=%4&1"}) {
        EXPECT_EQ(refusal(target), 400U) << target;
    }
}

TEST(RequestTarget, RefusesOtherForms)
{
    for (const char* target : {"", "*", "x", "http://localhost/x", "localhost:80", "?a=1", "\\x"}) {
        EXPECT_EQ(refusal(target), 400U) << target;
    }
}

TEST(RequestTarget, RefusesFragmentsBlanksControlsAndRawBytes)
{
    for (const char* target :
         {"/x#y", "/x?a=1#", "/#", "/a b", "/a\tb", "/a\x01", "/a\x7F", "/\xC3\xA9", "/x?a=\xFF"}) {
        EXPECT_EQ(refusal(target), 400U) << target;
    }
    EXPECT_EQ(refusal(std::string_view("/a\0b", 4)), 400U);
}

TEST(RequestTarget, SegmentIsReadAsItWasEncoded)
{
    EXPECT_EQ(encodedSegment("Settlement-1_a.b~"), "Settlement-1_a.b~");
    EXPECT_EQ(encodedSegment("a/b ?%#\u00e4"), "a%2Fb%20%3F%25%23%C3%A4");
    std::string all;
    for (char character = 1; character < 127; ++character) {
        all += character;
    }
    const RequestTarget parsed = parseRequestTarget("/" + encodedSegment(all) + "/x");
    ASSERT_EQ(parsed.path.size(), 2U);
    EXPECT_EQ(parsed.path.front(), all);
}

} // namespace monitorservice
