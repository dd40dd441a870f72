#include "MeasuredFixture.h"
#include "domain/DataManage.h"
#include "domain/History.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class DataManagesResource : public test::MeasuredFixture
{
protected:
    std::string newDataManage(const std::string& cell, const std::string& subCategory)
    {
        std::string id;
        write([&](Session& session) {
            id = session.newIdentifier();
            session.documents(DocumentKind::DataManage)
                .insert(projectOf(session, cell), id, document(session, id, cell, subCategory));
        });
        return id;
    }

    // A later delivery.
    void touch(const std::string& id, const std::string& cell, const std::string& subCategory)
    {
        write([&](Session& session) {
            session.documents(DocumentKind::DataManage)
                .replace(projectOf(session, cell), id, document(session, id, cell, subCategory));
        });
    }

    static std::string projectOf(const Session& session, const std::string& cell)
    {
        return session.documents(DocumentKind::Cell).find(cell)->project;
    }

    static std::string document(const Session& session, const std::string& id, const std::string& cell,
                                const std::string& subCategory)
    {
        DataManage dataManage{
            id, projectOf(session, cell), cell, subCategory, "2015-12-21T05:00:00.000Z", 3, 3, 1, {}, {}};
        dataManage.stamp = Stamp::of({"Ada", "2015-12-20T00:00:00.000Z"});
        dataManage.stamp.change({"Ada", isoText(session.now())});
        return toDocument(dataManage);
    }

    std::string newHistory(const std::string& dataManage, const std::string& lastDate)
    {
        std::string id;
        write([&](Session& session) {
            id = session.newIdentifier();
            session.documents(DocumentKind::History)
                .insert(session.documents(DocumentKind::DataManage).find(dataManage)->project, id,
                        toDocument(History{id,
                                           dataManage,
                                           1,
                                           lastDate,
                                           2,
                                           2,
                                           2,
                                           0,
                                           {},
                                           Stamp::of({"Ada", isoText(session.now())})}));
        });
        return id;
    }

    const std::string list = "projects/p1/dataManages";
};

TEST_F(DataManagesResource, ComeWithTheLatestDeliveryFirst)
{
    const std::string first = newDataManage(tower, "ground");
    now += 1000;
    const std::string second = newDataManage(wall, "casing");
    EXPECT_THAT(members(get(list), "_id"), ElementsAre(second, first));
    now += 1000;
    touch(first, tower, "ground");
    EXPECT_THAT(members(get(list), "_id"), ElementsAre(first, second));
    EXPECT_THAT(members(get(list + "?order=_id"), "_id"), ElementsAre(first, second));
    EXPECT_THAT(members(get(list + "?skip=1&limit=5"), "_id"), ElementsAre(second));
    EXPECT_EQ(get(list + "?only_count=true").body, R"({"count":2})");
}

TEST_F(DataManagesResource, OfOneMillisecondComeNewestFirst)
{
    const std::string first = newDataManage(tower, "ground");
    const std::string second = newDataManage(wall, "casing");
    EXPECT_THAT(members(get(list), "_id"), ElementsAre(second, first));
}

TEST_F(DataManagesResource, ExpandAddsTheSubCategory)
{
    const std::string id = newDataManage(wall, "casing");
    EXPECT_THAT(get(list).body, Not(HasSubstr(R"("subCategory":)")));
    const std::string whole = get(list).body;
    EXPECT_EQ(get(list + "?expand=true").body,
              whole.substr(0, whole.size() - 2) +
                  R"(,"subCategory":{"category":"Inclinometer","alias":"INC","name":"Casing"}}])");
    newDataManage(tower, "ground");
    simdjson::dom::parser parser;
    const std::string both = get(list + "?expand=true&order=_id").body;
    EXPECT_EQ(std::string(parser.parse(both).at(1)["subCategory"]["alias"].get_string().value()), "GL");
}

TEST_F(DataManagesResource, CategoryIsThatOfTheSubCategory)
{
    const std::string ofTower = newDataManage(tower, "ground");
    const std::string ofWall = newDataManage(wall, "casing");
    EXPECT_THAT(members(where(list, R"({"category":{"$regex":"INCLINO","$options":"i"}})"), "_id"),
                ElementsAre(ofWall));
    EXPECT_EQ(count(list, R"({"category":{"$regex":"INCLINO","$options":"i"}})"), "1");
    EXPECT_THAT(members(where(list, R"({"category":"Settlement"})"), "_id"), ElementsAre(ofTower));
    EXPECT_THAT(members(where(list, R"({"category":"Settlement","lastCount":{"$gt":3}})"), "_id"), IsEmpty());
    EXPECT_THAT(members(where(list, R"({"cellId":")" + wall + "\"}"), "_id"), ElementsAre(ofWall));
}

TEST_F(DataManagesResource, HistoryComesNewestFirst)
{
    const std::string id = newDataManage(tower, "ground");
    const std::string other = newDataManage(wall, "casing");
    const std::string first = newHistory(id, "2015-12-20T05:00:00.000Z");
    newHistory(other, "2015-12-20T05:00:00.000Z");
    now += 1000;
    const std::string second = newHistory(id, "2015-12-19T05:00:00.000Z");
    const std::string history = "dataManages/" + id + "/historyDatas";
    EXPECT_THAT(members(get(history), "_id"), ElementsAre(second, first));
    EXPECT_THAT(members(get(history + "?skip=1&limit=1"), "_id"), ElementsAre(first));
    EXPECT_EQ(get(history + "?only_count=true").body, R"({"count":2})");
    EXPECT_THAT(members(where(history, R"({"lastDate":{"$gte":"2015-12-20T00:00:00.000Z"}})"), "_id"),
                ElementsAre(first));
    EXPECT_THAT(members(where(history, R"({"updatedAt":{"$gte":"2015-12-21T06:30:01.000Z"}})"), "_id"),
                ElementsAre(second));
}

TEST_F(DataManagesResource, WhatMayNotBeReadIsNotThere)
{
    const std::string hidden = newDataManage(tower, "ground");
    const std::string seen = newDataManage(wall, "casing");
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_THAT(members(call(reader, "GET", list), "_id"), ElementsAre(seen));
    EXPECT_EQ(call(reader, "GET", list + "?only_count=true").body, R"({"count":1})");
    EXPECT_EQ(refusal(call(reader, "GET", "dataManages/" + hidden + "/historyDatas")),
              "404 there is no data manage \"" + hidden + "\"");
    EXPECT_EQ(call(reader, "GET", "dataManages/" + seen + "/historyDatas").body, "[]");
    EXPECT_EQ(get("dataManages/nowhere/historyDatas").status, 404U);
    const std::string foreign = newDataManage(tunnel, "tube");
    EXPECT_EQ(call(reader, "GET", "dataManages/" + foreign + "/historyDatas").status, 404U);
    EXPECT_EQ(call(reader, "GET", "projects/vienna/dataManages").status, 404U);
}

} // namespace
} // namespace monitorservice
