#include "query/QueryError.h"
#include "query/Where.h"

#include <gmock/gmock.h>

#include <vector>

namespace monitorservice {
namespace {

using ::testing::StartsWith;

std::string refusal(const std::string& json)
{
    try {
        Where::parse(json);
    } catch (const QueryError& error) {
        EXPECT_EQ(error.status(), 400) << json;
        return error.what();
    }
    return "accepted";
}

TEST(WhereParsing, NamesWhatIsWrongAndWhere)
{
    struct Row
    {
        std::string json;
        const char* message;
    };
    const std::vector<Row> rows{
        {"", "where: not valid JSON: "},
        {" ", "where: not valid JSON: "},
        {"{", "where: not valid JSON: "},
        {R"({"a":1)", "where: not valid JSON: "},
        {R"({"a":1} x)", "where: not valid JSON: "},
        {R"({"a":1}{})", "where: not valid JSON: "},
        {R"({"a":1,})", "where: not valid JSON: "},
        {R"({'a':1})", "where: not valid JSON: "},
        {R"({"a":01})", "where: not valid JSON: "},
        {R"({"a":NaN})", "where: not valid JSON: "},
        {R"({"a":1e999})", "where: not valid JSON: "},
        {R"({"a":18446744073709551616})", "where: not valid JSON: "},
        {"{\"a\":\"\x01\"}", "where: not valid JSON: "},
        {"{\"a\":\"\xff\"}", "where: not valid JSON: "},
        {R"({"a":"\ud800"})", "where: not valid JSON: "},
        {R"([{"a":1}])", "where: not a JSON object"},
        {"1", "where: not a JSON object"},
        {"null", "where: not a JSON object"},
        {R"("a")", "where: not a JSON object"},
        {R"({"a":1,"a":1})", "where: the key \"a\" is given twice"},
        {R"({"a":1,"\u0061":1})", "where: the key \"a\" is given twice"},
        {R"({"a":{"$gt":1,"$gt":2}})", "where: the key \"$gt\" is given twice"},
        {R"({"a":[{"b":1,"b":1}]})", "where: the key \"b\" is given twice"},
        {R"({"$and":[]})", "where: unknown operator \"$and\""},
        {R"({"$or":[{"a":1}]})", "where: unknown operator \"$or\""},
        {R"({"$gt":1})", "where: unknown operator \"$gt\""},
        {R"({"name":{"$foo":1}})", "where: unknown operator \"$foo\" at \"name\""},
        {R"({"name":{"$GTE":1}})", "where: unknown operator \"$GTE\" at \"name\""},
        {R"({"name":{"$eq":1}})", "where: unknown operator \"$eq\" at \"name\""},
        {R"({"name":{"$":1}})", "where: unknown operator \"$\" at \"name\""},
        {R"({"name":{"$not":{"$gt":1}}})", "where: unknown operator \"$not\" at \"name\""},
        {R"({"a.$gt":1})", "where: unknown operator \"$gt\" at \"a.$gt\""},
        {R"({"a":{"$gt":1,"b":1}})", "where: plain key \"b\" among operators at \"a\""},
        {R"({"a":{"b":1,"$gt":1}})", "where: plain key \"b\" among operators at \"a\""},
        {R"({"a":{"b":{"$gt":1}}})", "where: operator \"$gt\" within a value at \"a\""},
        {R"({"a":[{"$gt":1}]})", "where: operator \"$gt\" within a value at \"a\""},
        {R"({"a":{"$in":[{"$regex":"x"}]}})", "where: operator \"$regex\" within a value at \"a\""},
        {R"({"a":{"$ne":{"$gt":1}}})", "where: operator \"$gt\" within a value at \"a\""},
        {R"({"":1})", "where: empty name in the path at \"\""},
        {R"({".":1})", "where: empty name in the path at \".\""},
        {R"({"a.":1})", "where: empty name in the path at \"a.\""},
        {R"({".a":1})", "where: empty name in the path at \".a\""},
        {R"({"a..b":1})", "where: empty name in the path at \"a..b\""},
        {R"({"a":{"$in":"x"}})", "where: $in needs a list at \"a\""},
        {R"({"a":{"$nin":{}}})", "where: $nin needs a list at \"a\""},
        {R"({"a":{"$exists":1}})", "where: $exists needs true or false at \"a\""},
        {R"({"a":{"$exists":"true"}})", "where: $exists needs true or false at \"a\""},
        {R"({"a":{"$gt":[1]}})", "where: lists and objects have no order at \"a\""},
        {R"({"a":{"$lte":{"b":1}}})", "where: lists and objects have no order at \"a\""},
        {R"({"a":{"$regex":1}})", "where: $regex needs a text at \"a\""},
        {R"({"a":{"$regex":"x","$options":1}})", "where: $options needs a text at \"a\""},
        {R"({"a":{"$options":"i"}})", "where: $options without $regex at \"a\""},
        {R"({"a":{"$options":"i","$gt":1}})", "where: $options without $regex at \"a\""},
        {R"({"a":{"$regex":"x","$options":"g"}})",
         "where: $options \"g\" has letters other than imsx at \"a\""},
        {R"({"a":{"$regex":"x","$options":"I"}})",
         "where: $options \"I\" has letters other than imsx at \"a\""},
        {R"({"a":{"$regex":"(x"}})",
         "where: pattern \"(x\" at \"a\": missing closing parenthesis (at byte 2)"},
        {R"({"a":{"$regex":"["}})", "where: pattern \"[\" at \"a\": missing terminating ]"},
        {R"({"a":{"$regex":"x**+"}})", "where: pattern \"x**+\" at \"a\": "},
        {R"({"a":{"$regex":"\\"}})", "where: pattern \"\\\" at \"a\": "},
        {R"({"a":{"$regex":"\\C"}})", "where: pattern \"\\C\" at \"a\": "},
        {R"({"a":{"$regex":"(*NO_UTF_CHECK)x"}})", "where: pattern \"(*NO_UTF_CHECK)x\" at \"a\": "},
        {R"x({"a":{"$regex":"((((a{9999}){9999}){9999}){9999})"}})x", "where: pattern "},
    };
    for (const Row& row : rows) {
        EXPECT_THAT(refusal(row.json), StartsWith(row.message)) << row.json;
    }
    EXPECT_THAT(refusal(std::string("{\"a\":1}\0", 8)), StartsWith("where: not valid JSON: "));
    EXPECT_THAT(refusal("{\"a\":{\"$regex\":\"" + std::string(300, '(') + "\"}}"),
                StartsWith("where: pattern "));
}

TEST(WhereParsing, ShortensLongTextInMessages)
{
    const std::string key = std::string(99, 'x') + "éééééé";
    EXPECT_EQ(refusal("{\"$" + key + "\":1}"), "where: unknown operator \"$" + std::string(99, 'x') + "…\"");
    EXPECT_EQ(refusal("{\"$" + key.substr(1) + "\":1}"),
              "where: unknown operator \"$" + std::string(98, 'x') + "…\"");
}

TEST(WhereParsing, LimitOfBytes)
{
    const auto document = [](std::size_t bytes) {
        return "{\"a\":\"" + std::string(bytes - 8, 'x') + "\"}";
    };
    ASSERT_EQ(document(Where::maximumBytes).size(), Where::maximumBytes);
    EXPECT_EQ(refusal(document(Where::maximumBytes - 1)), "accepted");
    EXPECT_EQ(refusal(document(Where::maximumBytes)), "accepted");
    EXPECT_EQ(refusal(document(Where::maximumBytes + 1)), "where: longer than 8192 bytes");
    EXPECT_EQ(refusal(std::string(1'000'000, ' ')), "where: longer than 8192 bytes");
}

TEST(WhereParsing, LimitOfDepth)
{
    const auto lists = [](std::size_t depth) {
        return "{\"a\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    EXPECT_EQ(refusal(lists(Where::maximumDepth - 1)), "accepted");
    EXPECT_EQ(refusal(lists(Where::maximumDepth)), "accepted");
    EXPECT_EQ(refusal(lists(Where::maximumDepth + 1)), "where: nested deeper than 8");
    EXPECT_EQ(refusal(lists(4000)), "where: nested deeper than 8");

    const auto objects = [](std::size_t depth) {
        std::string json;
        for (std::size_t i = 0; i < depth; ++i) {
            json += "{\"a\":";
        }
        return json + "1" + std::string(depth, '}');
    };
    EXPECT_EQ(refusal(objects(Where::maximumDepth - 1)), "accepted");
    EXPECT_EQ(refusal(objects(Where::maximumDepth)), "accepted");
    EXPECT_EQ(refusal(objects(Where::maximumDepth + 1)), "where: nested deeper than 8");
}

TEST(WhereParsing, LimitOfListMembers)
{
    const auto list = [](std::size_t members) {
        std::string json = "{\"a\":{\"$in\":[1";
        for (std::size_t i = 1; i < members; ++i) {
            json += ",1";
        }
        return json + "]}}";
    };
    EXPECT_EQ(refusal(list(Where::maximumListMembers - 1)), "accepted");
    EXPECT_EQ(refusal(list(Where::maximumListMembers)), "accepted");
    EXPECT_EQ(refusal(list(Where::maximumListMembers + 1)), "where: a list has more than 1000 members");
}

TEST(WhereParsing, LimitOfPatterns)
{
    const auto patterns = [](std::size_t count) {
        std::string json = "{";
        for (std::size_t i = 0; i < count; ++i) {
            json += (i == 0 ? "\"a" : ",\"a") + std::to_string(i) + "\":{\"$regex\":\"x\"}";
        }
        return json + "}";
    };
    EXPECT_EQ(refusal(patterns(Where::maximumPatterns - 1)), "accepted");
    EXPECT_EQ(refusal(patterns(Where::maximumPatterns)), "accepted");
    EXPECT_EQ(refusal(patterns(Where::maximumPatterns + 1)), "where: more than 32 patterns at \"a32\"");
}

TEST(WhereParsing, LimitOfNamesInAPath)
{
    EXPECT_EQ(refusal(R"({"a.b.c.d.e.f.g":1})"), "accepted");
    EXPECT_EQ(refusal(R"({"a.b.c.d.e.f.g.h":1})"), "accepted");
    EXPECT_EQ(refusal(R"({"a.b.c.d.e.f.g.h.i":1})"),
              "where: more than 8 names in the path at \"a.b.c.d.e.f.g.h.i\"");
}

TEST(WhereParsing, AcceptsWhitespaceAroundTheDocument)
{
    EXPECT_EQ(refusal(" \t\r\n{ \"a\" : 1 } \n"), "accepted");
    EXPECT_EQ(Where::parse(R"({"a":{"$gte":1,"$lt":2},"b":1})").conditions().size(), 3U);
    EXPECT_TRUE(Where::parse("{}").isEmpty());
}

} // namespace
} // namespace monitorservice
