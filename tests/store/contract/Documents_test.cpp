#include "StoreContract.h"
#include "query/QueryError.h"

#include <functional>
#include <limits>

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Six monitorings of project p1, c1 to c6, and one of p2.
class DocumentQueries : public StoreContract
{
protected:
    DocumentQueries()
    {
        for (const char* const project : {"p1", "p2"}) {
            session->projects().insert({project, "Pit", "UTC", 1});
        }
        session->categories().add("Settlement");
        session->categories().add("Inclinometer");
        insert("p1", "c1", "Beta", "Settlement", "2015-12-21T06:30:00.123Z", "m1");
        insert("p1", "c2", "Alpha", "Inclinometer", "2015-12-21T06:30:00.124Z", "m2");
        insert("p1", "c3", "Beta", "Inclinometer", "2015-12-21T06:30:00.125Z", "m1");
        insert("p1", "c4", "alpha", "Settlement", "2016-01-01T00:00:00.000Z", "m3");
        insert("p1", "c5", "Beta", "Settlement", "2014-01-01T00:00:00.000Z", "m4");
        insert("p1", "c6", "\u00c4pfel", "Settlement", "2015-12-21T06:30:00.123Z", "m5");
        insert("p2", "d1", "Beta", "Settlement", "2015-12-21T06:30:00.123Z", "m1");
    }

    void insert(const std::string& project, const std::string& id, const std::string& name,
                const std::string& category, const std::string& time, const std::string& model)
    {
        session->documents(DocumentKind::Cell)
            .insert(project, id,
                    R"({"_id":")" + id + R"(","projectId":")" + project + R"(","name":")" + name +
                        R"(","category":")" + category + R"(","alarmTo":["x@y","z"],"links":[{"type":)" +
                        R"("model","rId":")" + model + R"("}],"createdAt":")" + time +
                        R"(","createdBy":"Ada","updatedAt":")" + time + R"(","updatedBy":"Ada"})");
    }

    static DocumentQuery all()
    {
        DocumentQuery query;
        query.project = "p1";
        query.limit = 1000;
        return query;
    }

    std::vector<std::string> ids(const DocumentQuery& query) const
    {
        std::vector<std::string> found;
        session->documents(DocumentKind::Cell).visit(query, [&found](std::string_view document) {
            found.emplace_back(document.substr(8, 2)); // {"_id":"c1"
        });
        return found;
    }

    std::vector<std::string> idsWhere(const std::string& json) const
    {
        const Where where = Where::parse(json);
        DocumentQuery query = all();
        query.where = &where;
        std::vector<std::string> found = ids(query);
        EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), found.size()) << json;
        return found;
    }

    std::unique_ptr<Session> session = store->write();
};

TEST_P(DocumentQueries, ComeInTheOrderOfTheirIdentifiers)
{
    EXPECT_THAT(ids(all()), ElementsAre("c1", "c2", "c3", "c4", "c5", "c6"));
}

TEST_P(DocumentQueries, TextComesBackByteForByte)
{
    const std::string text = R"({"_id":"c7", "projectId":"p1","name":"a\u00e9","category":"Settlement",)"
                             R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"","updatedAt":)"
                             R"("2015-12-21T06:30:00.123Z","updatedBy":"","extra":[1.50, 1e3]})";
    session->documents(DocumentKind::Cell).insert("p1", "c7", text);
    EXPECT_EQ(session->documents(DocumentKind::Cell).find("c7")->text, text);
}

TEST_P(DocumentQueries, FindGivesWhatAccessIsDecidedBy)
{
    const auto document = session->documents(DocumentKind::Cell).find("c2");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->id, "c2");
    EXPECT_EQ(document->project, "p1");
    EXPECT_EQ(document->category, "Inclinometer");
    EXPECT_FALSE(session->documents(DocumentKind::Cell).find("c9"));
}

TEST_P(DocumentQueries, ReachTheIdentifiersNamedAlone)
{
    DocumentQuery query = all();
    query.identifiers = {"c6", "c2", "c3", "c3", "d1", "c9", "\"c4\""};
    EXPECT_THAT(ids(query), ElementsAre("c2", "c3", "c6"));
    EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), 3U);
    query.limit = 1;
    query.skip = 1;
    EXPECT_THAT(ids(query), ElementsAre("c3"));
    query = all();
    query.identifiers = {"c2", "c3", "c6"};
    const Where where = Where::parse(R"({"name":{"$regex":"^b","$options":"i"}})");
    query.where = &where;
    EXPECT_THAT(ids(query), ElementsAre("c3"));
    query.identifiers = std::vector<std::string>();
    EXPECT_THAT(ids(query), IsEmpty());
    query.identifiers = std::vector<std::string>(100'000, "c1");
    EXPECT_THAT(ids(query), ElementsAre("c1"));
}

TEST_P(DocumentQueries, OrderIsKeptWithTiesByIdentifier)
{
    DocumentQuery query = all();
    query.order = parseOrder("name");
    EXPECT_THAT(ids(query), ElementsAre("c2", "c1", "c3", "c5", "c4", "c6"));
    query.order = parseOrder("-name");
    EXPECT_THAT(ids(query), ElementsAre("c6", "c4", "c1", "c3", "c5", "c2"));
    query.order = parseOrder("category,-createdAt");
    EXPECT_THAT(ids(query), ElementsAre("c3", "c2", "c4", "c1", "c6", "c5"));
    query.order = parseOrder("-_id");
    EXPECT_THAT(ids(query), ElementsAre("c6", "c5", "c4", "c3", "c2", "c1"));
}

TEST_P(DocumentQueries, OrderByAnUnknownMemberIsRefusedAlsoWhenCounting)
{
    DocumentQuery query = all();
    query.order = parseOrder("links");
    EXPECT_THROW(ids(query), QueryError);
    EXPECT_THROW(session->documents(DocumentKind::Cell).count(query), QueryError);
}

TEST_P(DocumentQueries, PagesJoinToTheWholeWithTies)
{
    for (const char* const condition : {"{}", R"({"name":{"$regex":"e"}})"}) {
        const Where where = Where::parse(condition);
        DocumentQuery query = all();
        query.where = &where;
        query.order = parseOrder("name");
        const std::vector<std::string> whole = ids(query);
        EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), whole.size());
        for (const std::uint64_t size : {1U, 2U, 3U, 5U, 7U}) {
            std::vector<std::string> joined;
            query.limit = size;
            for (query.skip = 0; query.skip < whole.size(); query.skip += size) {
                const std::vector<std::string> page = ids(query);
                EXPECT_LE(page.size(), size);
                joined.insert(joined.end(), page.begin(), page.end());
            }
            EXPECT_EQ(joined, whole) << condition << " in pages of " << size;
        }
    }
}

TEST_P(DocumentQueries, PageOfNothingAndPageBeyondTheEndAreEmpty)
{
    DocumentQuery query = all();
    query.limit = 0;
    EXPECT_THAT(ids(query), IsEmpty());
    query.limit = 10;
    query.skip = std::numeric_limits<std::uint64_t>::max();
    EXPECT_THAT(ids(query), IsEmpty());
    const Where where = Where::parse(R"({"name":{"$regex":"a"}})");
    query.where = &where;
    EXPECT_THAT(ids(query), IsEmpty());
}

TEST_P(DocumentQueries, OnlyTheCategoriesAskedForAreListedAndCounted)
{
    DocumentQuery query = all();
    query.categories = {"Inclinometer"};
    EXPECT_THAT(ids(query), ElementsAre("c2", "c3"));
    EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), 2U);
    query.categories = {"Inclinometer", "Settlement"};
    EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), 6U);
    query.categories = std::vector<std::string>();
    EXPECT_THAT(ids(query), IsEmpty());
    EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), 0U);
}

TEST_P(DocumentQueries, ConditionsSelect)
{
    EXPECT_THAT(idsWhere(R"({"name":"Beta"})"), ElementsAre("c1", "c3", "c5"));
    EXPECT_THAT(idsWhere(R"({"name":{"$regex":"ALPHA","$options":"i"}})"), ElementsAre("c2", "c4"));
    EXPECT_THAT(idsWhere(R"({"name":{"$regex":"\u00e4PF","$options":"i"}})"), ElementsAre("c6"));
    EXPECT_THAT(idsWhere(R"({"links.rId":"m1"})"), ElementsAre("c1", "c3"));
    EXPECT_THAT(idsWhere(R"({"alarmTo":"z"})"), ElementsAre("c1", "c2", "c3", "c4", "c5", "c6"));
    EXPECT_THAT(idsWhere(R"({"alarmTo":"y"})"), IsEmpty());
    EXPECT_THAT(idsWhere(R"({"category":{"$in":["Inclinometer"]},"name":"Beta"})"), ElementsAre("c3"));
    EXPECT_THAT(idsWhere(R"({"projectId":"p2"})"), IsEmpty());
    EXPECT_THAT(idsWhere(R"({"_id":"c4"})"), ElementsAre("c4"));
    EXPECT_THAT(idsWhere(R"({"unheard":null,"_id":"c4"})"), ElementsAre("c4"));
}

TEST_P(DocumentQueries, PatternsAreFoundInColumnsAndInDocumentsAlike)
{
    const std::string pattern = R"where("name":{"$regex":"^(be|al)","$options":"i"})where";
    for (const char* const other :
         {"", R"(,"alarmTo":"z")", R"(,"createdBy":{"$regex":"d"})", R"(,"links.type":{"$regex":"mod"})"}) {
        EXPECT_THAT(idsWhere("{" + pattern + other + "}"), ElementsAre("c1", "c2", "c3", "c4", "c5"))
            << other;
    }
    EXPECT_THAT(idsWhere("{" + pattern + R"(,"category":{"$regex":"^In"}})"), ElementsAre("c2", "c3"));
    EXPECT_THAT(idsWhere("{" + pattern + R"(,"createdAt":{"$gte":"2015-12-21T06:30:00.125Z"}})"),
                ElementsAre("c3", "c4"));
    EXPECT_THAT(idsWhere("{" + pattern + R"(,"name.x":{"$regex":"."}})"), IsEmpty());
}

TEST_P(DocumentQueries, PatternThatTakesTooManyStepsIsRefused)
{
    insert("p1", "c7", std::string(60, 'a') + "!", "Inclinometer", "2015-12-21T06:30:00.123Z", "m6");
    const Where where = Where::parse(R"({"name":{"$regex":"(a+)+$"}})");
    DocumentQuery query = all();
    query.where = &where;
    EXPECT_THROW(ids(query), QueryError);
    EXPECT_THROW(session->documents(DocumentKind::Cell).count(query), QueryError);
    query.categories = {"Settlement"};
    EXPECT_THAT(ids(query), ElementsAre("c1", "c4", "c5")) << "what is out of reach costs no steps";
    EXPECT_EQ(session->documents(DocumentKind::Cell).count(query), 3U);
}

TEST_P(DocumentQueries, TimesAreComparedToTheMillisecondWhateverTheirOffset)
{
    EXPECT_THAT(idsWhere(R"({"createdAt":{"$gte":"2015-12-21T06:30:00.124Z"}})"),
                ElementsAre("c2", "c3", "c4"));
    EXPECT_THAT(idsWhere(R"({"createdAt":{"$gt":"2015-12-21T07:30:00.124+01:00"}})"),
                ElementsAre("c3", "c4"));
    EXPECT_THAT(idsWhere(R"({"createdAt":"2015-12-21T12:00:00.123+05:30"})"), ElementsAre("c1", "c6"));
    EXPECT_THAT(
        idsWhere(R"({"createdAt":{"$lt":"2015-12-21T06:30:00.1235Z","$gte":"2015-01-01T00:00:00Z"}})"),
        ElementsAre("c1", "c6"));
}

TEST_P(DocumentQueries, ReplacedDocumentIsFoundByItsNewContentOnly)
{
    std::string text = session->documents(DocumentKind::Cell).find("c1")->text;
    text.replace(text.find("Beta"), 4, "Gamma");
    session->documents(DocumentKind::Cell).replace("p1", "c1", text);
    EXPECT_EQ(session->documents(DocumentKind::Cell).find("c1")->text, text);
    EXPECT_THAT(idsWhere(R"({"name":"Gamma"})"), ElementsAre("c1"));
    EXPECT_THAT(idsWhere(R"({"name":"Beta"})"), ElementsAre("c3", "c5"));
}

TEST_P(DocumentQueries, RemovedDocumentIsGone)
{
    session->documents(DocumentKind::Cell).remove("p1", "c1");
    EXPECT_FALSE(session->documents(DocumentKind::Cell).find("c1"));
    EXPECT_THAT(idsWhere(R"({"name":"Beta"})"), ElementsAre("c3", "c5"));
}

TEST_P(DocumentQueries, IdentifierIsUniqueOverAllProjects)
{
    EXPECT_EQ(
        failureOf(*session,
                  [this] { insert("p2", "c1", "Other", "Settlement", "2015-12-21T06:30:00.123Z", "m1"); }),
        "conflict");
}

TEST_P(DocumentQueries, WhatIsReferredToMustExist)
{
    EXPECT_EQ(failureOf(*session,
                        [this] { insert("p1", "c9", "Other", "Unheard", "2015-12-21T06:30:00.123Z", "m1"); }),
              "conflict");
}

TEST_P(DocumentQueries, ProjectMustExist)
{
    EXPECT_EQ(
        failureOf(*session,
                  [this] { insert("p9", "c9", "Other", "Settlement", "2015-12-21T06:30:00.123Z", "m1"); }),
        "conflict");
}

TEST_P(DocumentQueries, WhatIsReferredToStays)
{
    session->documents(DocumentKind::SubCategory)
        .insert("p1", "s1", R"({"_id":"s1","projectId":"p1","name":"n","category":"Settlement","alias":""})");
    session->documents(DocumentKind::Group)
        .insert("p1", "g1",
                R"({"_id":"g1","projectId":"p1","cellId":"c1","subCategoryId":"s1","groupName":"G"})");
    session->documents(DocumentKind::Cell).remove("p1", "c2");
    EXPECT_EQ(failureOf(*session, [this] { session->documents(DocumentKind::Cell).remove("p1", "c1"); }),
              "conflict");
}

TEST_P(DocumentQueries, SubCategoryOfOneNameAndCategoryIsThereOnce)
{
    Documents& subCategories = session->documents(DocumentKind::SubCategory);
    const auto add = [&](const std::string& id, const std::string& category) {
        subCategories.insert("p1", id,
                             R"({"_id":")" + id + R"(","projectId":"p1","name":"n","category":")" + category +
                                 R"(","alias":""})");
    };
    add("s1", "Settlement");
    add("s2", "Inclinometer");
    EXPECT_TRUE(subCategories.find("s1") && subCategories.find("s2"));
    EXPECT_EQ(failureOf(*session, [&] { add("s3", "Settlement"); }), "conflict");
}

TEST_P(DocumentQueries, WhatIsNotThereIsNeitherReplacedNorRemoved)
{
    const std::string text = session->documents(DocumentKind::Cell).find("c1")->text;
    session->documents(DocumentKind::Cell).replace("p2", "c1", "{}");
    session->documents(DocumentKind::Cell).remove("p2", "c1");
    session->documents(DocumentKind::Cell).remove("p1", "c9");
    EXPECT_EQ(session->documents(DocumentKind::Cell).find("c1")->text, text);
    EXPECT_EQ(ids(all()).size(), 6U);
}

TEST_P(DocumentQueries, WhatAVisitorThrowsEndsTheVisitAlone)
{
    struct Enough
    {
    };
    for (const char* const condition : {"{}", R"({"name":{"$regex":"."}})"}) {
        const Where where = Where::parse(condition);
        DocumentQuery query = all();
        query.where = &where;
        int seen = 0;
        EXPECT_THROW(session->documents(DocumentKind::Cell)
                         .visit(query,
                                [&seen](std::string_view /*document*/) {
                                    if (++seen == 2) {
                                        throw Enough();
                                    }
                                }),
                     Enough);
        EXPECT_EQ(seen, 2);
        EXPECT_EQ(ids(all()).size(), 6U);
    }
}

TEST_P(DocumentQueries, VisitorMayNotCallIntoTheSession)
{
    session->commit();
    for (const char* const condition : {"{}", R"({"alarmTo":"z"})"}) {
        const Where where = Where::parse(condition);
        DocumentQuery query = all();
        query.where = &where;
        const auto visit = [&](const std::function<void(const Session&)>& call) {
            return failureOf([&] {
                const auto reading = store->read();
                reading->documents(DocumentKind::Cell).visit(query, [&](std::string_view /*document*/) {
                    call(*reading);
                });
            });
        };
        EXPECT_EQ(visit([](const Session& same) { same.documents(DocumentKind::Cell).find("c1"); }),
                  "internal");
        EXPECT_EQ(visit([](const Session& same) { same.categories().list(); }), "internal");
        EXPECT_EQ(visit([this](const Session& /*same*/) { store->read()->categories().list(); }), "none")
            << "in another session";
    }
}

TEST_P(DocumentQueries, RefusedQueryLeavesTheSessionUsable)
{
    DocumentQuery query = all();
    query.order = parseOrder("unheard");
    EXPECT_THROW(ids(query), QueryError);
    insert("p1", "c7", "New", "Settlement", "2015-12-21T06:30:00.123Z", "m1");
    session->commit();
    EXPECT_TRUE(store->read()->documents(DocumentKind::Cell).find("c7"));
}

TEST_P(DocumentQueries, OrderNamesWhatItRefuses)
{
    const auto refusal = [this](const char* order) -> std::string {
        DocumentQuery query = all();
        query.order = parseOrder(order);
        try {
            ids(query);
        } catch (const QueryError& error) {
            EXPECT_EQ(error.status(), 400);
            return error.what();
        }
        return "not refused";
    };
    EXPECT_EQ(refusal("name,-colour"), "order: cannot order by \"colour\"");
    EXPECT_EQ(refusal("--name"), "order: cannot order by \"-name\"");
    EXPECT_EQ(refusal("Name"), "order: cannot order by \"Name\"");
    EXPECT_EQ(refusal("name"), "not refused");
}

TEST_P(DocumentQueries, ManyDifferentConditionsAreAnsweredAlike)
{
    for (int i = 0; i < 500; ++i) {
        std::string list = "\"Beta\"";
        for (int member = 0; member < i; ++member) {
            list += ",\"n" + std::to_string(member) + "\"";
        }
        ASSERT_THAT(idsWhere(R"({"name":{"$in":[)" + list + "]}}"), ElementsAre("c1", "c3", "c5"));
    }
}

RK_EVERY_STORE(DocumentQueries);

} // namespace
} // namespace monitorservice::test
