#include "Document.h"
#include "Matching.h"
#include "query/Where.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace monitorservice {
namespace {

struct Row
{
    const char* document;
    const char* where;
    bool expected;
};

void check(const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.where) + " on " + row.document);
        const Document document(row.document);
        EXPECT_EQ(matches(Where::parse(row.where), document.root()), row.expected);
    }
}

// Whether there is a condition on exactly this path.
bool names(const Where& where, std::string_view path)
{
    const std::vector<Condition>& conditions = where.conditions();
    return std::any_of(conditions.begin(), conditions.end(),
                       [path](const Condition& condition) { return condition.path == path; });
}

TEST(WhereMatching, EmptyMatchesEverything)
{
    check({{"{}", "{}", true}, {R"({"a":1})", " { } ", true}, {"[]", "{}", true}});
    EXPECT_TRUE(matches(Where(), Document("{}").root()));
}

TEST(WhereMatching, EqualityWithAValue)
{
    check({
        {R"({"a":"x"})", R"({"a":"x"})", true},
        {R"({"a":"x"})", R"({"a":"X"})", false},
        {R"({"a":"x"})", R"({"a":"x "})", false},
        {R"({"a":""})", R"({"a":""})", true},
        {R"({"a":true})", R"({"a":true})", true},
        {R"({"a":true})", R"({"a":false})", false},
        {R"({"a":1})", R"({"a":1.0})", true},
        {R"({"b":"x"})", R"({"a":"x"})", false},
        {R"({"a":"x","b":1})", R"({"a":"x","b":1})", true},
        {R"({"a":"x","b":2})", R"({"a":"x","b":1})", false},
        {R"({"a":"a\u0000b"})", R"({"a":"a\u0000b"})", true},
        {R"({"a":"a\u0000b"})", R"({"a":"a"})", false},
        {R"({"a":"a"})", R"({"a":"a\u0000"})", false},
    });
}

TEST(WhereMatching, EqualityWithAMemberOfAList)
{
    check({
        {R"({"a":["x","y"]})", R"({"a":"y"})", true},
        {R"({"a":["x","y"]})", R"({"a":"z"})", false},
        {R"({"a":[]})", R"({"a":"x"})", false},
        {R"({"a":[["x"]]})", R"({"a":"x"})", false},
        {R"({"a":[1,null]})", R"({"a":null})", true},
        {R"({"a":[{"b":1},{"b":2}]})", R"({"a":{"b":2}})", true},
    });
}

TEST(WhereMatching, EqualityWithAListOrAnObject)
{
    check({
        {R"({"a":[1,2]})", R"({"a":[1,2]})", true},
        {R"({"a":[1,2]})", R"({"a":[2,1]})", false},
        {R"({"a":[1,2,3]})", R"({"a":[1,2]})", false},
        {R"({"a":[1]})", R"({"a":[1,2]})", false},
        {R"({"a":[[1,2],3]})", R"({"a":[1,2]})", true},
        {R"({"a":[[[1,2]]]})", R"({"a":[1,2]})", false},
        {R"({"a":1})", R"({"a":[1]})", false},
        {R"({"a":[]})", R"({"a":[]})", true},
        {R"({"a":[[]]})", R"({"a":[]})", true},
        {R"({"a":{}})", R"({"a":{}})", true},
        {R"({"a":{"b":1}})", R"({"a":{}})", false},
        {R"({"a":{"b":1,"c":2}})", R"({"a":{"c":2,"b":1}})", true},
        {R"({"a":{"b":1,"c":2}})", R"({"a":{"b":1}})", false},
        {R"({"a":{"b":1}})", R"({"a":{"b":1,"c":2}})", false},
        {R"({"a":{"b":1}})", R"({"a":{"c":1}})", false},
        {R"({"a":{"b":null}})", R"({"a":{"c":null}})", false},
        {R"({"a":{"b":[1,{"c":"2024-01-01T00:00:00Z"}]}})",
         R"({"a":{"b":[1.0,{"c":"2024-01-01T01:00:00+01:00"}]}})", true},
        {R"({"a.b":1})", R"({"a.b":1})", false},
    });
}

TEST(WhereMatching, NullIsMissingOrNull)
{
    check({
        {R"({"a":null})", R"({"a":null})", true},
        {R"({})", R"({"a":null})", true},
        {R"({"a":0})", R"({"a":null})", false},
        {R"({"a":""})", R"({"a":null})", false},
        {R"({"a":false})", R"({"a":null})", false},
        {R"({"a":[]})", R"({"a":null})", false},
        {R"({"a":{}})", R"({"a":null})", false},
        {R"({})", R"({"a":{"$in":["x",null]}})", true},
        {R"({"a":"y"})", R"({"a":{"$in":["x",null]}})", false},
        {R"({})", R"({"a":{"$ne":null}})", false},
        {R"({"a":1})", R"({"a":{"$ne":null}})", true},
        {R"({})", R"({"a":{"$nin":[null]}})", false},
        {R"({})", R"({"a":{"$gte":null}})", true},
        {R"({"a":null})", R"({"a":{"$lte":null}})", true},
        {R"({"a":1})", R"({"a":{"$gte":null}})", false},
        {R"({"a":null})", R"({"a":{"$gt":null}})", false},
        {R"({})", R"({"a":{"$lt":null}})", false},
        {R"({"a":{}})", R"({"a.b":null})", true},
        {R"({"a":1})", R"({"a.b":null})", true},
        {R"({"a":[]})", R"({"a.b":null})", true},
        {R"({"a":[1,2]})", R"({"a.b":null})", true},
        {R"({"a":[1,{"b":5}]})", R"({"a.b":null})", false},
        {R"({"a":[{"b":5},{"c":6}]})", R"({"a.b":null})", true},
        {R"({"a":[{"b":5},{"b":null}]})", R"({"a.b":null})", true},
        {R"({"a":[{"b":5},{"b":6}]})", R"({"a.b":null})", false},
        {R"({"a":[{"b":1}]})", R"({"a.0":null})", false},
        {R"({"a":[{"b":1}]})", R"({"a.1":null})", true},
    });
}

TEST(WhereMatching, Exists)
{
    check({
        {R"({"a":1})", R"({"a":{"$exists":true}})", true},
        {R"({"a":null})", R"({"a":{"$exists":true}})", true},
        {R"({})", R"({"a":{"$exists":true}})", false},
        {R"({"a":1})", R"({"a":{"$exists":false}})", false},
        {R"({"a":null})", R"({"a":{"$exists":false}})", false},
        {R"({})", R"({"a":{"$exists":false}})", true},
        {R"({"a":[]})", R"({"a":{"$exists":true}})", true},
        {R"({"a":[]})", R"({"a.b":{"$exists":true}})", false},
        {R"({"a":[{"c":1},{"b":1}]})", R"({"a.b":{"$exists":true}})", true},
        {R"({"a":[{"c":1},{"b":1}]})", R"({"a.b":{"$exists":false}})", false},
        {R"({"a":[7]})", R"({"a.0":{"$exists":true}})", true},
        {R"({"a":[7]})", R"({"a.1":{"$exists":true}})", false},
    });
}

TEST(WhereMatching, DottedPaths)
{
    check({
        {R"({"a":{"b":{"c":1}}})", R"({"a.b.c":1})", true},
        {R"({"a":{"b":1}})", R"({"a.b.c":1})", false},
        {R"({"links":[{"type":"m","rId":"x"},{"type":"m","rId":"y"}]})", R"({"links.rId":"y"})", true},
        {R"({"links":[{"type":"m"}]})", R"({"links.rId":"y"})", false},
        {R"({"a":[{"b":[{"c":1},{"c":2}]},{"b":{"c":3}}]})", R"({"a.b.c":2})", true},
        {R"({"a":[{"b":[{"c":1},{"c":2}]},{"b":{"c":3}}]})", R"({"a.b.c":3})", true},
        {R"({"a":[{"b":[{"c":1},{"c":2}]},{"b":{"c":3}}]})", R"({"a.b.c":4})", false},
        {R"({"a":[{"b":["x","y"]}]})", R"({"a.b":"y"})", true},
        {R"({"a":[[{"b":1}]]})", R"({"a.b":1})", false},
        {R"({"a":[[{"b":1}]]})", R"({"a.0.b":1})", true},
        {R"({"a":[5,6]})", R"({"a.1":6})", true},
        {R"({"a":[5,6]})", R"({"a.0":6})", false},
        {R"({"a":[5,6]})", R"({"a.01":6})", false},
        {R"({"a":[5,6]})", R"({"a.-1":6})", false},
        {R"({"a":[5,6]})", R"({"a.99999999999999999999":6})", false},
        {R"({"a":{"1":6}})", R"({"a.1":6})", true},
        {R"({"a":[{"1":6}]})", R"({"a.1":6})", true},
        {R"({"a":[{"b":7},{"b":8}]})", R"({"a.1.b":8})", true},
        {R"({"a":[{"b":7},{"b":8}]})", R"({"a.0.b":8})", false},
        {R"({"a":[[5,6]]})", R"({"a.0":6})", true},
        {R"([{"a":1},{"a":2}])", R"({"a":2})", true},
    });
}

TEST(WhereMatching, ConditionsOnOneListMayBeMetByDifferentMembers)
{
    check({
        {R"({"a":[1,9]})", R"({"a":{"$gt":5,"$lt":3}})", true},
        {R"({"a":[4]})", R"({"a":{"$gt":5,"$lt":3}})", false},
        {R"({"a":[{"b":1,"c":1},{"b":2,"c":2}]})", R"({"a.b":1,"a.c":2})", true},
        {R"({"a":[{"b":1,"c":1},{"b":2,"c":2}]})", R"({"a.b":1,"a.c":3})", false},
        {R"({"a":["x","y"]})", R"({"a":{"$in":["x"],"$ne":"y"}})", false},
        {R"({"a":["x","y"]})", R"({"a":{"$in":["x"],"$ne":"z"}})", true},
    });
}

TEST(WhereMatching, NegationIsOfTheWholeCondition)
{
    check({
        {R"({"a":1})", R"({"a":{"$ne":1}})", false},
        {R"({"a":1})", R"({"a":{"$ne":"1"}})", true},
        {R"({})", R"({"a":{"$ne":1}})", true},
        {R"({"a":[1,2]})", R"({"a":{"$ne":2}})", false},
        {R"({"a":[1,2]})", R"({"a":{"$ne":3}})", true},
        {R"({"a":[{"b":1},{}]})", R"({"a.b":{"$ne":1}})", false},
        {R"({"a":1})", R"({"a":{"$nin":[1,2]}})", false},
        {R"({"a":3})", R"({"a":{"$nin":[1,2]}})", true},
        {R"({"a":[1,3]})", R"({"a":{"$nin":[1,2]}})", false},
        {R"({})", R"({"a":{"$nin":[]}})", true},
        {R"({"a":1})", R"({"a":{"$in":[]}})", false},
        {R"({})", R"({"a":{"$in":[]}})", false},
    });
}

TEST(WhereMatching, InLooksThroughAllTypes)
{
    const char* where =
        R"({"a":{"$in":["b",3,"a",1.5,true,[1],{"x":1},"2024-01-01T00:00:00Z",18446744073709551615]}})";
    check({
        {R"({"a":"a"})", where, true},
        {R"({"a":"b"})", where, true},
        {R"({"a":"c"})", where, false},
        {R"({"a":3.0})", where, true},
        {R"({"a":1.5})", where, true},
        {R"({"a":1})", where, false},
        {R"({"a":18446744073709551615})", where, true},
        {R"({"a":true})", where, true},
        {R"({"a":false})", where, false},
        {R"({"a":[1]})", where, true},
        {R"({"a":[2]})", where, false},
        {R"({"a":{"x":1}})", where, true},
        {R"({"a":{"x":2}})", where, false},
        {R"({"a":null})", where, false},
        {R"({"a":"2023-12-31T23:00:00-0100"})", where, true},
        {R"({"a":"2024-01-01T00:00:00.0001Z"})", where, false},
    });
}

TEST(WhereMatching, ComparisonsHoldWithinOneType)
{
    check({
        {R"({"a":5})", R"({"a":{"$gt":"1"}})", false},
        {R"({"a":"5"})", R"({"a":{"$gt":1}})", false},
        {R"({"a":"5"})", R"({"a":5})", false},
        {R"({"a":true})", R"({"a":{"$gte":1}})", false},
        {R"({"a":1})", R"({"a":true})", false},
        {R"({"a":null})", R"({"a":{"$lt":1}})", false},
        {R"({})", R"({"a":{"$lt":1}})", false},
        {R"({"a":{"b":1}})", R"({"a":{"$gt":0}})", false},
        {R"({"a":["x",5]})", R"({"a":{"$gt":4}})", true},
        {R"({"a":true})", R"({"a":{"$gt":false}})", true},
        {R"({"a":false})", R"({"a":{"$gte":false}})", true},
        {R"({"a":false})", R"({"a":{"$lt":false}})", false},
        {R"({"a":2})", R"({"a":{"$gte":2}})", true},
        {R"({"a":2})", R"({"a":{"$gt":2}})", false},
        {R"({"a":2})", R"({"a":{"$lte":2}})", true},
        {R"({"a":2})", R"({"a":{"$lt":2}})", false},
        {R"({"a":2})", R"({"a":{"$gte":1.5,"$lte":2.5}})", true},
    });
}

TEST(WhereMatching, TextsOrderByCodePoint)
{
    check({
        {R"({"a":"b"})", R"({"a":{"$gt":"a"}})", true},
        {R"({"a":"B"})", R"({"a":{"$gt":"a"}})", false},
        {R"({"a":"ab"})", R"({"a":{"$gt":"a"}})", true},
        {R"({"a":""})", R"({"a":{"$lt":"\u0000"}})", true},
        {R"({"a":"é"})", R"({"a":{"$gt":"z"}})", true},
        // In UTF-16 the surrogates of U+1F600 would stand before U+FF5E.
        {R"({"a":"\ud83d\ude00"})", R"({"a":{"$gt":"\uff5e"}})", true},
        {R"({"a":"10"})", R"({"a":{"$lt":"9"}})", true},
    });
}

TEST(WhereMatching, TimesCompareAsInstants)
{
    check({
        {R"({"t":"2024-03-01T08:00:00+08:00"})", R"({"t":"2024-03-01T00:00:00.000Z"})", true},
        {R"({"t":"2024-03-01T08:00:00+0800"})", R"({"t":{"$in":["x","2024-03-01T00:00:00Z"]}})", true},
        {R"({"t":"2024-03-01T08:00:00+08:00"})", R"({"t":{"$ne":"2024-03-01T00:00:00Z"}})", false},
        {R"({"t":"2024-03-01T07:59:59+08:00"})", R"({"t":{"$gte":"2024-03-01T00:00:00Z"}})", false},
        {R"({"t":"2024-02-29T23:30:00-01:00"})", R"({"t":{"$gte":"2024-03-01T00:00:00Z"}})", true},
        {R"({"t":"2024-03-01T00:00:00.0005Z"})", R"({"t":{"$gt":"2024-03-01T00:00:00Z"}})", true},
        {R"({"t":"2024-03-01T00:00:00.0005Z"})", R"({"t":{"$lte":"2024-03-01T00:00:00Z"}})", false},
        {R"({"t":"2024-03-01T00:00:00.000Z"})",
         R"({"t":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-03-02T00:00:00.000Z"}})", true},
        {R"({"t":"2024-03-02T00:00:00.000Z"})",
         R"({"t":{"$gte":"2024-03-01T00:00:00.000Z","$lt":"2024-03-02T00:00:00.000Z"}})", false},
        {R"({"data":[{"time":"2024-03-01T09:00:00+09:00"}]})", R"({"data.time":"2024-03-01T00:00:00Z"})",
         true},
        // Only full timestamps are instants.
        {R"({"t":"2024-03-01"})", R"({"t":"2024-03-01T00:00:00Z"})", false},
        {R"({"t":"2024-03-01"})", R"({"t":{"$lt":"2024-03-01T00:00:00Z"}})", true},
        {R"({"t":"2024-03-01T00:00:00"})", R"({"t":"2024-03-01T00:00:00Z"})", false},
        {R"({"t":"2024-02-30T00:00:00Z"})", R"({"t":"2024-02-30T00:00:00.0Z"})", false},
        {R"({"t":"2024-03-01T12:00:00+08:00"})", R"({"t":{"$gt":"2024-03-01T11"}})", true},
        {R"({"t":1709251200000})", R"({"t":"2024-03-01T00:00:00Z"})", false},
    });
}

TEST(WhereMatching, NumbersCompareExactly)
{
    check({
        {R"({"a":9007199254740993})", R"({"a":9007199254740992.0})", false},
        {R"({"a":9007199254740993})", R"({"a":{"$gt":9007199254740992.0}})", true},
        {R"({"a":9007199254740992.0})", R"({"a":{"$lt":9007199254740993}})", true},
        {R"({"a":9007199254740992})", R"({"a":9007199254740992.0})", true},
        {R"({"a":9223372036854775807})", R"({"a":9223372036854775808.0})", false},
        {R"({"a":9223372036854775807})", R"({"a":{"$lt":9223372036854775808}})", true},
        {R"({"a":9223372036854775808})", R"({"a":9223372036854775808.0})", true},
        {R"({"a":-9223372036854775808})", R"({"a":-9223372036854775808.0})", true},
        {R"({"a":-9223372036854775808})", R"({"a":{"$gt":-1e300}})", true},
        {R"({"a":-9223372036854775808})", R"({"a":{"$lt":18446744073709551615}})", true},
        {R"({"a":18446744073709551615})", R"({"a":18446744073709551616.0})", false},
        {R"({"a":18446744073709551615})", R"({"a":{"$lt":18446744073709551616.0}})", true},
        {R"({"a":18446744073709551615})", R"({"a":18446744073709551615})", true},
        {R"({"a":18446744073709551615})", R"({"a":{"$gt":-0.5}})", true},
        {R"({"a":18446744073709551614})", R"({"a":{"$lt":18446744073709551615}})", true},
        {R"({"a":1.7976931348623157e308})", R"({"a":{"$gt":18446744073709551615}})", true},
        {R"({"a":5e-324})", R"({"a":{"$gt":0}})", true},
        {R"({"a":0})", R"({"a":-0.0})", true},
        {R"({"a":-0.0})", R"({"a":0.0})", true},
        {R"({"a":0})", R"({"a":{"$gt":-0.5,"$lt":0.5}})", true},
        {R"({"a":-1})", R"({"a":{"$lt":-0.5}})", true},
        {R"({"a":-1})", R"({"a":{"$gt":-1.5}})", true},
        {R"({"a":0.1})", R"({"a":0.1})", true},
        {R"({"a":0.30000000000000004})", R"({"a":0.3})", false},
        {R"({"a":1e2})", R"({"a":100})", true},
    });
}

TEST(WhereMatching, Patterns)
{
    check({
        {R"({"a":"pit K1 north"})", R"({"a":{"$regex":"K1"}})", true},
        {R"({"a":"pit k1 north"})", R"({"a":{"$regex":"K1"}})", false},
        {R"({"a":"pit k1 north"})", R"({"a":{"$regex":"K1","$options":"i"}})", true},
        {R"({"a":"pit k1 north"})", R"({"a":{"$regex":"K1","$options":""}})", false},
        {R"({"a":"x"})", R"({"a":{"$regex":""}})", true},
        {R"({"a":""})", R"({"a":{"$regex":"^$"}})", true},
        {R"({})", R"({"a":{"$regex":""}})", false},
        {R"({"a":5})", R"({"a":{"$regex":"5"}})", false},
        {R"({"a":null})", R"({"a":{"$regex":""}})", false},
        {R"({"a":["x","yy"]})", R"({"a":{"$regex":"^y+$"}})", true},
        {R"({"a":[["yy"]]})", R"({"a":{"$regex":"y"}})", false},
        {R"({"a":[{"b":"x"},{"b":"y"}]})", R"({"a.b":{"$regex":"y"}})", true},
        {R"({"a":"abc"})", R"({"a":{"$regex":"b","$ne":"abc"}})", false},
        {R"({"a":"a.b"})", R"({"a":{"$regex":"a\\.b"}})", true},
        {R"({"a":"axb"})", R"({"a":{"$regex":"a\\.b"}})", false},
        {R"({"a":"a\u0000b"})", R"({"a":{"$regex":"a\u0000b"}})", true},
        {R"({"a":"a\u0000b"})", R"({"a":{"$regex":"b$"}})", true},
    });
}

TEST(WhereMatching, PatternOptionsEach)
{
    check({
        {R"({"a":"x\nY"})", R"({"a":{"$regex":"^y$","$options":"i"}})", false},
        {R"({"a":"x\nY"})", R"({"a":{"$regex":"^Y$","$options":"m"}})", true},
        {R"({"a":"x\nY"})", R"({"a":{"$regex":"^Y$"}})", false},
        {R"({"a":"x\nY"})", R"({"a":{"$regex":"^y$","$options":"mi"}})", true},
        {R"({"a":"x\nY"})", R"({"a":{"$regex":"x.Y"}})", false},
        {R"({"a":"x\nY"})", R"({"a":{"$regex":"x.Y","$options":"s"}})", true},
        {R"({"a":"xY"})", R"({"a":{"$regex":" x Y # comment","$options":"x"}})", true},
        {R"({"a":"xY"})", R"({"a":{"$regex":" x Y"}})", false},
        {R"({"a":"X\nY"})", R"({"a":{"$regex":"^ x . y $","$options":"imsx"}})", true},
        {R"({"a":"xY"})", R"({"a":{"$options":"ii","$regex":"XY"}})", true},
    });
}

TEST(WhereMatching, PatternsKnowUnicode)
{
    check({
        {R"({"a":"ÉCLUSE"})", R"({"a":{"$regex":"écluse","$options":"i"}})", true},
        {R"({"a":"ПЛОТИНА"})", R"({"a":{"$regex":"плотина","$options":"i"}})", true},
        {R"({"a":"ΣΑΣ"})", R"({"a":{"$regex":"^σας$","$options":"i"}})", true},
        {R"({"a":"基坑"})", R"({"a":{"$regex":"^..$"}})", true},
        {R"({"a":"基坑"})", R"({"a":{"$regex":"^\\w+$"}})", true},
        {R"({"a":"٣"})", R"({"a":{"$regex":"^\\d$"}})", true},
        {R"({"a":"\ud83d\ude00"})", R"({"a":{"$regex":"^.$"}})", true},
        // Combining marks are characters of their own: texts are not normalised.
        {R"({"a":"e\u0301"})", R"({"a":{"$regex":"é"}})", false},
        {R"({"a":"e\u0301"})", R"({"a":"é"})", false},
        {R"({"a":"e\u0301"})", R"({"a":{"$regex":"^\\X$"}})", true},
        {R"({"a":"e\u0301"})", R"({"a":{"$regex":"^.$"}})", false},
    });
}

TEST(WhereMatching, DocumentsOfTheClientLibrary)
{
    check({
        {R"({"cellId":"c2","name":"Wall k1","category":"pit"})",
         R"({"cellId":{"$in":["c1","c2"]},"name":{"$options":"i","$regex":"K1"}})", true},
        {R"({"cellId":"c3","name":"Wall k1","category":"pit"})",
         R"({"cellId":{"$in":["c1","c2"]},"name":{"$options":"i","$regex":"K1"}})", false},
        {R"({"data":[{"timeFlag":"B"},{"timeFlag":"A"}]})", R"({"data.timeFlag":"A"})", true},
    });
}

TEST(WhereMatching, SplitsByPath)
{
    const Where where = Where::parse(R"({"time":{"$gte":1,"$lt":2},"name":"x","data.timeFlag":"A"})");
    const auto [samples, points] = where.split({"time", "data.timeFlag"});
    EXPECT_EQ(samples.conditions().size(), 3U);
    EXPECT_TRUE(names(samples, "time"));
    EXPECT_TRUE(names(samples, "data.timeFlag"));
    EXPECT_FALSE(names(samples, "name"));
    EXPECT_EQ(points.conditions().size(), 1U);
    EXPECT_TRUE(names(points, "name"));
    EXPECT_TRUE(matches(points, Document(R"({"name":"x"})").root()));
    EXPECT_TRUE(matches(samples, Document(R"({"time":1,"data":{"timeFlag":"A"}})").root()));
    EXPECT_FALSE(matches(samples, Document(R"({"time":2,"data":{"timeFlag":"A"}})").root()));
    EXPECT_FALSE(where.isEmpty());
    EXPECT_TRUE(where.split({"depth"}).first.isEmpty());
}

TEST(WhereMatching, ReadsAMemberUnderAnotherName)
{
    const Where where = Where::parse(R"({"uuid":"m1","uuid.0":{"$exists":false},"name":"uuid"})");
    const Where stored = where.readAs("uuid", {"links", "rId"});
    EXPECT_TRUE(names(stored, "links.rId"));
    EXPECT_TRUE(names(stored, "links.rId.0"));
    EXPECT_TRUE(names(stored, "name"));
    EXPECT_FALSE(names(stored, "uuid"));
    EXPECT_TRUE(names(where, "uuid"));
    const Document document(R"({"name":"uuid","links":[{"rId":"m2"},{"rId":"m1"}]})");
    EXPECT_TRUE(matches(stored, document.root()));
    EXPECT_FALSE(matches(where, document.root()));
}

TEST(WhereMatching, EqualsATextWithoutItsJson)
{
    const std::string text = "a \"quoted\"\n\\ \xc3\xa9 $in";
    const Where where = Where::equals("name.of", text);
    ASSERT_EQ(where.conditions().size(), 1U);
    EXPECT_EQ(where.conditions().front().path, "name.of");
    EXPECT_TRUE(matches(where, Document(R"({"name":[{"of":"a \"quoted\"\n\\ \u00e9 $in"}]})").root()));
    EXPECT_FALSE(matches(where, Document(R"({"name":{"of":"a"}})").root()));
    EXPECT_TRUE(matches(Where::equals("at", "2024-01-01T00:00:00Z"),
                        Document(R"({"at":"2024-01-01T01:00:00+01:00"})").root()));
    EXPECT_TRUE(matches(Where::equals("name", ""), Document(R"({"name":""})").root()));
}

TEST(WhereMatching, OutlivesTheTextItWasParsedFrom)
{
    Where where;
    {
        std::string json = R"({"a":{"$in":["2024-01-01T00:00:00.0001Z","x"]},"b":{"$regex":"y"}})";
        where = Where::parse(json);
        json.assign(json.size(), '#');
    }
    EXPECT_TRUE(matches(where, Document(R"({"a":"2024-01-01T01:00:00.0001+01:00","b":"y"})").root()));
    EXPECT_TRUE(matches(where, Document(R"({"a":"x","b":"y"})").root()));
}

} // namespace
} // namespace monitorservice
