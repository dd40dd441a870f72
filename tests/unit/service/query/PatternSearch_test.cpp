#include "Document.h"
#include "Matching.h"
#include "query/Matcher.h"
#include "query/QueryError.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace monitorservice {
namespace {

using ::testing::HasSubstr;

Where whereName(const std::string& pattern)
{
    return Where::parse(R"({"name":{"$regex":")" + pattern + "\"}}");
}

Document named(const std::string& name)
{
    return Document(R"({"name":")" + name + "\"}");
}

// The status of matching, 200 when there was an answer.
int status(const std::string& pattern, const std::string& name)
{
    try {
        matches(whereName(pattern), named(name).root());
    } catch (const QueryError& error) {
        EXPECT_THAT(error.what(), HasSubstr("at \"name\" takes too many steps"));
        return error.status();
    }
    return 200;
}

TEST(PatternSearch, ExplodingPatternsAreRefused)
{
    const std::string many(60, 'a');
    const std::vector<std::string> patterns{
        "(a+)+$",
        "(a*)*$",
        "(a|aa)+$",
        "(a|a?)+$",
        "(.*a){25}$",
        "^(([a-z])+.)+[A-Z]([a-z])+$",
        "((a+)(a+)(a+))+\\\\4?$",
        "(a*)(a*)(a*)(a*)(a*)(a*)(a*)(a*)\\\\8\\\\7\\\\6\\\\5\\\\4\\\\3\\\\2\\\\1$",
        "^(a(?1)?a?)*$",
        "(?:(?:(?:a+)+)+)+$",
        "(?=(a+)+$).",
        "(a+)+(?<!a)$",
        "(*NO_JIT)(a+)+$",
        "(*NO_START_OPT)(*NO_AUTO_POSSESS)(a+)+$",
    };
    for (const std::string& pattern : patterns) {
        EXPECT_EQ(status(pattern, many + "!"), 422) << pattern;
    }
}

TEST(PatternSearch, PatternsCannotRaiseTheLimits)
{
    const std::string many(60, 'a');
    for (const char* verb :
         {"(*LIMIT_MATCH=4000000000)", "(*LIMIT_DEPTH=4000000000)", "(*LIMIT_HEAP=4000000000)",
          "(*NO_JIT)(*LIMIT_MATCH=4000000000)(*LIMIT_HEAP=4000000000)"}) {
        EXPECT_EQ(status(verb + std::string("(a+)+$"), many + "!"), 422) << verb;
    }
    // Lowering is the pattern's own affair.
    EXPECT_EQ(status("(*LIMIT_MATCH=1)a+b?c?$", many + "!"), 422);
}

TEST(PatternSearch, PatternsCannotLeaveUnicode)
{
    EXPECT_TRUE(matches(whereName("(*UTF)^.$"), named("é").root()));
    EXPECT_TRUE(matches(whereName("(*UCP)^\\\\w$"), named("é").root()));
    EXPECT_THROW(whereName("(*UTF)\\\\C"), QueryError);
}

TEST(PatternSearch, NestedPatternsNeitherCrashNorHang)
{
    const std::string deep(20'000, '(');
    EXPECT_EQ(status("(\\\\((?1)*\\\\))*$", deep), 422);
    EXPECT_EQ(status("(?R)?x", std::string(20'000, 'y')), 200);
    EXPECT_EQ(status("^(?:(a)|(b))*$", std::string(1'000, 'a')), 200);
    // Needs memory for each repetition: either an answer or a refusal.
    EXPECT_THAT(status("^(?:(a)|(b))*$", std::string(1'000'000, 'a')), ::testing::AnyOf(200, 422));
}

TEST(PatternSearch, LongTextsHaveAnswers)
{
    const std::string text = std::string(1'000'000, 'a') + "K1";
    EXPECT_TRUE(matches(whereName("K1"), named(text).root()));
    EXPECT_TRUE(matches(whereName("k1$"), named(std::string(1'000'000, 'b') + "k1").root()));
    EXPECT_FALSE(matches(whereName("K2"), named(text).root()));
    EXPECT_FALSE(matches(whereName("^K1"), named(text).root()));
    EXPECT_EQ(status("[a-z]*+[0-9]*+!?#", text), 422);
}

TEST(PatternSearch, OneBudgetForTheWholeQuery)
{
    constexpr int documents = 100'000;
    const Where where = whereName("^(a|aa)+$");
    const Document document = named(std::string(18, 'a') + "!");
    ASSERT_FALSE(matches(where, document.root()));

    Matcher matcher(where);
    int tried = 0;
    const auto matchAll = [&] {
        for (; tried < documents; ++tried) {
            matcher.matches(document.root());
        }
    };
    EXPECT_THROW(matchAll(), QueryError);
    EXPECT_GT(tried, 10);
    EXPECT_LT(tried, documents);
    EXPECT_THROW(matcher.matches(document.root()), QueryError) << "a used-up budget stays used up";
}

TEST(PatternSearch, OrdinaryPagesStayWithinTheBudget)
{
    const Where where = Where::parse(R"({"name":{"$regex":"wall.*17$","$options":"i"}})");
    const Document document = named("Settlement point, north wall, row 3, number 17");
    Matcher matcher(where);
    int matched = 0;
    for (int i = 0; i < 100'000; ++i) {
        matched += matcher.matches(document.root()) ? 1 : 0;
    }
    EXPECT_EQ(matched, 100'000);
}

TEST(PatternSearch, BudgetIsCountedInSteps)
{
    const auto answers = [](std::uint64_t budget) {
        // Too long not to be counted.
        Matcher matcher(whereName("b"), budget);
        const Document document = named(std::string(300, 'a'));
        int count = 0;
        try {
            for (; count < 1'000; ++count) {
                matcher.matches(document.root());
            }
        } catch (const QueryError& error) {
            EXPECT_EQ(error.status(), 422);
        }
        return count;
    };
    EXPECT_EQ(answers(0), 0);
    EXPECT_EQ(answers(1), 0);
    EXPECT_GT(answers(100), 0);
    EXPECT_LT(answers(100), 1'000);
    EXPECT_EQ(answers(100), answers(100));
    EXPECT_EQ(answers(10'000), 1'000);
}

TEST(PatternSearch, WhatIsNotCountedIsBoundedToo)
{
    Matcher matcher(whereName("b"), 1'000);
    const Document document = named("a");
    const auto matchAll = [&] {
        for (int i = 0; i < 100'000; ++i) {
            matcher.matches(document.root());
        }
    };
    EXPECT_THROW(matchAll(), QueryError);
}

TEST(PatternSearch, CountedOrNotTheAnswersAreTheSame)
{
    const std::vector<std::string> patterns{
        "wall",      "^w",       "7$",         "[a-z]+ \\\\d", "(north|south).*row", ".*o.*o",
        "(?i)NORTH", "(o)\\\\1", "(?<!r)ow",   "a?b?c?$",      "^(.)(?=.*7$)",       "x*",

        "\\\\bse",   "\\\\W$",   "(?:w|wa)ll", "^$",           "(*NO_JIT)w.*7$"};
    const std::vector<std::string> texts{
        "", "7", "wall", "Wall North, row 7", "north wall, section 12, row 3", "rooow", "Stützwand 7", "é"};
    int found = 0;
    for (const std::string& pattern : patterns) {
        // With the comment it is too long not to be counted.
        const Where uncounted = whereName(pattern);
        const Where counted = whereName(pattern + "(?#" + std::string(130, '-') + ")");
        for (const std::string& text : texts) {
            const Document document = named(text);
            EXPECT_EQ(matches(uncounted, document.root()), matches(counted, document.root()))
                << pattern << " in " << text;
            found += matches(counted, document.root()) ? 1 : 0;
        }
    }
    EXPECT_GT(found, 30);
}

TEST(PatternSearch, PatternsThatAreNotReachedCostNothing)
{
    const Where where = Where::parse(R"({"cellId":"c1","name":{"$regex":"(a+)+$"}})");
    const Document document(R"({"cellId":"c2","name":")" + std::string(60, 'a') + "!\"}");
    EXPECT_FALSE(matches(where, document.root()));
}

} // namespace
} // namespace monitorservice
