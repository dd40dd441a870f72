#include "ApiFixture.h"
#include "query/Where.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Listings of projects/p1/cells.
class CellsListing : public test::ApiFixture
{
protected:
    test::RawAnswer list(const std::string& query) const { return get("projects/p1/cells" + query); }

    test::RawAnswer where(const std::string& json, const std::string& more = {}) const
    {
        return list("?where=" + test::percentEncoded(json) + more);
    }

    static void insertCell(Session& session, const std::string& alarmTo)
    {
        const std::string id = session.newIdentifier();
        std::string document = R"({"_id":")" + id;
        document += R"(","projectId":"p1","name":"n","category":"Settlement","alarmTo":)";
        document += alarmTo;
        document += R"(,"links":[],"createdAt":"2015-12-21T06:30:00.123Z","createdBy":"a",)"
                    R"("updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"a"})";
        session.documents(DocumentKind::Cell).insert("p1", id, document);
    }

    std::vector<std::string> names(const test::RawAnswer& answer) const
    {
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return test::membersOf(answer.body, "name");
    }
};

TEST_F(CellsListing, IsAnEmptyArrayWhenThereIsNothing)
{
    EXPECT_EQ(list("").body, "[]");
    EXPECT_EQ(list("?only_count=true").body, R"({"count":0})");
}

TEST_F(CellsListing, ComesInTheOrderOfCreation)
{
    newCell("b");
    newCell("a");
    now -= 1000;
    newCell("c");
    EXPECT_THAT(names(list("")), ElementsAre("b", "a", "c"));
    EXPECT_THAT(names(list("?order=-_id")), ElementsAre("c", "a", "b"));
    EXPECT_THAT(names(list("?order=name")), ElementsAre("a", "b", "c"));
    EXPECT_THAT(names(list("?order=createdAt")), ElementsAre("c", "b", "a"));
}

TEST_F(CellsListing, PagesAddUpToTheCountWithTies)
{
    for (int i = 0; i < 11; ++i) {
        newCell(i % 2 == 0 ? "even" : "odd");
    }
    const std::string regex = R"({"name":{"$regex":"v|d"}})";
    for (const std::string& condition : {std::string("{}"), regex}) {
        const std::vector<std::string> whole = test::membersOf(where(condition, "&order=-name").body, "_id");
        EXPECT_EQ(where(condition, "&only_count=true").body,
                  R"({"count":)" + std::to_string(whole.size()) + "}");
        EXPECT_EQ(whole.size(), 11U);
        std::vector<std::string> joined;
        for (int skip = 0; skip < 12; skip += 3) {
            const auto page = test::membersOf(
                where(condition, "&order=-name&limit=3&skip=" + std::to_string(skip)).body, "_id");
            joined.insert(joined.end(), page.begin(), page.end());
        }
        EXPECT_EQ(joined, whole);
    }
}

TEST_F(CellsListing, CountReadsNeitherSkipNorLimit)
{
    newCell("a");
    newCell("b");
    EXPECT_EQ(list("?only_count=true&skip=1&limit=1").body, R"({"count":2})");
    EXPECT_EQ(list("?only_count=false&limit=1").body.front(), '[');
}

TEST_F(CellsListing, LimitOfNothingGivesNothing)
{
    newCell("a");
    EXPECT_THAT(names(list("?limit=0&skip=0")), IsEmpty());
    EXPECT_THAT(names(list("?skip=1")), IsEmpty());
    EXPECT_THAT(names(list("?skip=18446744073709551615&limit=18446744073709551615")), IsEmpty());
}

TEST_F(CellsListing, HoldsEverythingUnlessALimitIsGiven)
{
    write([](Session& session) {
        for (int i = 0; i < 1501; ++i) {
            insertCell(session, "[]");
        }
    });
    EXPECT_EQ(names(list("")).size(), 1501U);
    EXPECT_EQ(names(where(R"({"links":{"$ne":1}})")).size(), 1501U) << "asked of every document";
    EXPECT_EQ(names(list("?limit=1500")).size(), 1500U);
    EXPECT_EQ(names(list("?limit=5000")).size(), 1501U);
    EXPECT_EQ(names(list("?skip=1000")).size(), 501U);
    EXPECT_EQ(list("?only_count=true").body, R"({"count":1501})");
}

TEST_F(CellsListing, MoreThanAnAnswerHoldsIsRefusedNotCut)
{
    const std::string recipients = R"([")" + std::string(16 * 1024 * 1024, 'x') + R"("])";
    write([&recipients](Session& session) {
        for (int i = 0; i < 16; ++i) {
            insertCell(session, recipients);
        }
    });
    const test::RawAnswer refused = list("");
    EXPECT_EQ(refused.status, 413U);
    EXPECT_THAT(refused.body, HasSubstr("268435456 bytes; ask for pages"));
    EXPECT_EQ(list("?limit=16").status, 413U);
    EXPECT_EQ(names(list("?limit=15")).size(), 15U);
    EXPECT_EQ(list("?only_count=true").body, R"({"count":16})");
}

TEST_F(CellsListing, ConditionsOfTheClientSelect)
{
    newCell("Tower A & B", "Settlement", R"(,"links":[{"type":"model","rId":"m1"}])");
    now += 86'400'000;
    newCell("tower c", "Inclinometer", R"(,"links":[{"type":"model","rId":"m2"}])");
    EXPECT_THAT(names(where(R"({"links.rId":"m1"})")), ElementsAre("Tower A & B"));
    EXPECT_THAT(names(where(R"({"links.rId":"m1"})", "&expand=true")), ElementsAre("Tower A & B"));
    EXPECT_THAT(names(where(R"({"name":{"$options":"i","$regex":"TOWER"}})")),
                ElementsAre("Tower A & B", "tower c"));
    EXPECT_THAT(names(where(R"({"name":"Tower A & B"})")), ElementsAre("Tower A & B"));
    EXPECT_THAT(
        names(where(R"({"createdAt":{"$gte":"2015-12-22T00:00:00.000Z","$lt":"2015-12-23T00:00:00.000Z"}})")),
        ElementsAre("tower c"));
}

TEST_F(CellsListing, UnreadableCategoriesAreHiddenFromListsAndCounts)
{
    newCell("a", "Settlement");
    newCell("b", "Inclinometer");
    const std::string token = newToken("Reader");
    grant(token, "p1", "Inclinometer", Right::Read);
    grant(token, "p1", "Settlement", Right::Edit);
    EXPECT_THAT(names(call(token, "GET", "projects/p1/cells")), ElementsAre("b"));
    EXPECT_EQ(call(token, "GET", "projects/p1/cells?only_count=true").body, R"({"count":1})");
    EXPECT_EQ(call(token, "GET",
                   "projects/p1/cells?only_count=true&where=" +
                       test::percentEncoded(R"({"category":"Settlement"})"))
                  .body,
              R"({"count":0})");
}

TEST_F(CellsListing, ProjectThatMayNotBeReadIsNotThere)
{
    EXPECT_EQ(refusal(get("projects/p2/cells")), "404 there is no project \"p2\"");
    EXPECT_EQ(refusal(get("projects/p9/cells")), "404 there is no project \"p9\"");
    const std::string token = newToken("Blind");
    grant(token, "p1", std::nullopt, Rights(Right::Create) | Right::Edit | Right::Delete);
    EXPECT_EQ(call(token, "GET", "projects/p1/cells").status, 404U);
}

TEST_F(CellsListing, BadParametersAreNamed)
{
    const auto refused = [this](const std::string& query) {
        return refusal(list(query));
    };
    for (const char* const value :
         {"-1", "-5", "+1", "", "1.5", "0x1", "1 ", "ten", "18446744073709551616", "1e3"}) {
        for (const std::string name : {"skip", "limit"}) {
            EXPECT_THAT(refused("?" + name + "=" + test::percentEncoded(value)),
                        StartsWith("400 parameter \"" + name + "\" must be a number"));
        }
    }
    for (const std::string name : {"only_count", "expand"}) {
        for (const char* const value : {"1", "", "True", "yes"}) {
            EXPECT_THAT(refused("?" + name + "=" + value),
                        StartsWith("400 parameter \"" + name + "\" must be true"));
        }
    }
    EXPECT_THAT(refused("?limits=1"), StartsWith("400 parameter \"limits\" is not known"));
    EXPECT_THAT(refused("?limit=1&limit=1"), StartsWith("400 parameter \"limit\" is given twice"));
    EXPECT_THAT(refused("?where=%7B%7D&where=%7B%7D"), StartsWith("400 parameter \"where\" is given twice"));
    EXPECT_THAT(refused("?order=nothing"), HasSubstr("nothing"));
    EXPECT_THAT(refused("?order="), StartsWith("400 order"));
}

TEST_F(CellsListing, BadConditionsAreExplained)
{
    newCell("a");
    for (const char* const json : {"", "{", "[]", "null", R"({"name":{"$foo":1}})", R"({"$and":[]})",
                                   R"({"name":{"$regex":"("}})", R"({"name":{"$regex":"a","$options":"q"}})",
                                   R"({"name":1,"name":2})", R"({"name":{"$in":"a"}})", "{} x"}) {
        const test::RawAnswer answer = where(json);
        EXPECT_EQ(answer.status, 400U) << json;
        EXPECT_EQ(where(json, "&only_count=true").status, 400U) << json;
    }
    EXPECT_THAT(refusal(where(R"({"name":{"$foo":1}})")), HasSubstr("$foo"));
    const std::string tooLong = R"({"name":")" + std::string(Where::maximumBytes, 'x') + "\"}";
    EXPECT_EQ(list("?where=" + tooLong.substr(0, 9) + tooLong.substr(9)).status, 400U);
}

TEST_F(CellsListing, ExplodingPatternIsRefused)
{
    newCell(std::string(40, 'a') + "!");
    for (const char* const only : {"", "&only_count=true"}) {
        const test::RawAnswer answer = where(R"({"name":{"$regex":"^(a+)+$"}})", only);
        EXPECT_EQ(answer.status, 422U) << answer.body;
    }
}

} // namespace
} // namespace monitorservice
