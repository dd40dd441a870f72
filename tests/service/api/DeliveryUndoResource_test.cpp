#include "MeasuredFixture.h"
#include "store/StoreContents.h"

namespace monitorservice {
namespace {

using test::contentsOf;
using test::member;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DeliveryUndoResource : public test::MeasuredFixture
{
protected:
    static std::string sample(const std::string& day, const std::string& value)
    {
        return R"({"count":1,"time":"2015-12-)" + day + R"(T06:00:00Z","value":)" + value + "}";
    }

    // The identifier of the delivery; it changes something.
    std::string deliver(const std::string& name, const std::string& samples, const std::string& more = {})
    {
        now += 1000;
        const RawAnswer answer = call(editor, "POST", "pointLocations",
                                      R"([{"cellId":")" + tower + R"(","subCategoryId":"ground","name":")" +
                                          name + R"(","data":[)" + samples + "]" + more + "}]");
        EXPECT_EQ(answer.status, 200U) << answer.body;
        return test::membersOf(answer.body, "deliveryId").at(0);
    }

    RawAnswer undo(const std::string& delivery)
    {
        now += 1000;
        return call(editor, "DELETE", "historyDatas/" + delivery);
    }

    // The point of this name without what tells of times.
    std::string point(const std::string& name)
    {
        std::string text = where("projects/p1/pointLocations", R"({"name":")" + name + "\"}").body;
        const std::size_t stamp = text.find("\"createdAt\"");
        return stamp == std::string::npos ? text : text.erase(stamp, text.find("\"category\"") - stamp);
    }

    std::vector<std::string> changes() { return members(get("projects/p1/changes"), "action"); }
};

TEST_F(DeliveryUndoResource, TakesSamplesAndPointsOfTheLatestDeliveryBack)
{
    deliver("S1", sample("20", "1"), R"(,"fileId":"week1.csv")");
    const std::string before = point("S1");
    const std::string latest = deliver("S1", sample("20", "2") + "," + sample("21", "3"),
                                       R"(,"fileId":"week2.csv","alias":"north","initialValue":5)");
    const RawAnswer answer = undo(latest);
    ASSERT_EQ(answer.status, 200U) << answer.body;
    EXPECT_EQ(member(answer.body, "_id"), latest);
    EXPECT_EQ(member(answer.body, "number"), "2");
    EXPECT_EQ(member(answer.body, "fileId"), "week2.csv");
    EXPECT_EQ(member(answer.body, "removed"), "1");
    EXPECT_EQ(member(answer.body, "restored"), "1");
    EXPECT_EQ(member(answer.body, "removedPoints"), "0");
    EXPECT_EQ(member(answer.body, "alarms"), "[]");
    EXPECT_EQ(point("S1"), before);
    EXPECT_EQ(undo(latest).status, 404U);
}

TEST_F(DeliveryUndoResource, TheFirstOneLeavesNothingButTheAuditTrail)
{
    const std::string first = deliver("S1", sample("20", "1") + "," + sample("21", "3"));
    const RawAnswer answer = undo(first);
    EXPECT_EQ(member(answer.body, "removed"), "2");
    EXPECT_EQ(member(answer.body, "removedPoints"), "1");
    EXPECT_EQ(point("S1"), "[]");
    EXPECT_EQ(get("projects/p1/dataManages").body, "[]");
    EXPECT_EQ(get("projects/p1/normal_statistics").body, "[]");
    EXPECT_THAT(changes(), ElementsAre("delivery.undone", "pointLocation.deleted", "sample.deleted"));
    const std::string body = get("projects/p1/changes").body;
    simdjson::dom::parser parser;
    const simdjson::dom::array entries = parser.parse(body);
    EXPECT_EQ(simdjson::minify(entries.at(2)["before"].at(1)),
              R"({"count":1,"time":"2015-12-21T06:00:00.000Z","value":3,"timeFlag":""})");
    EXPECT_EQ(std::string_view(entries.at(0)["subject"]), first);
    EXPECT_EQ(std::string_view(entries.at(0)["before"]["_id"]), first);
    EXPECT_EQ(std::string_view(entries.at(1)["before"]["name"]), "S1");
}

TEST_F(DeliveryUndoResource, OlderOnesStayUntilTheLaterOnesAreTakenBack)
{
    const std::string first = deliver("S1", sample("20", "1"));
    const std::string second = deliver("S2", sample("20", "1"));
    const std::vector<std::string> before = contentsOf(store);
    EXPECT_EQ(refusal(undo(first)),
              "409 delivery 1 is not the latest of its data manage: that is delivery 2");
    EXPECT_EQ(contentsOf(store), before);
    EXPECT_EQ(undo(second).status, 200U);
    EXPECT_EQ(undo(first).status, 200U);
    EXPECT_EQ(deliver("S1", sample("20", "1")).empty(), false);
    EXPECT_EQ(members(get("projects/p1/dataManages"), "fileId").size(), 1U);
}

TEST_F(DeliveryUndoResource, WhatWasDeliveredBeforeDeliveriesWereCountedStays)
{
    deliver("S1", sample("20", "1"));
    write([](Session& session) {
        const std::string text = test::documentsOf(session, "p1", DocumentKind::History).front();
        const std::string id = member(text, "_id");
        std::string old = text;
        old.replace(old.find("\"number\":1"), 10, "\"number\":0");
        session.documents(DocumentKind::History).replace("p1", id, old);
    });
    const std::string id = member(test::documentsOf(store, DocumentKind::History).front(), "_id");
    EXPECT_THAT(refusal(undo(id)), HasSubstr("409 this delivery cannot be taken back"));
}

TEST_F(DeliveryUndoResource, WhatWasChangedSinceStaysAsItIs)
{
    deliver("S1", sample("20", "1"), R"(,"alias":"a")");
    const std::string second =
        deliver("S1", sample("21", "2"), R"(,"alias":"b","initialValue":5,"dataType":2)");
    const std::string id = members(get("projects/p1/pointLocations"), "_id").front();
    EXPECT_EQ(call(editor, "PATCH", "pointLocations/" + id, R"({"alias":"c","initialValue":6})").status,
              200U);
    EXPECT_EQ(undo(second).status, 200U);
    const std::string after = get("pointLocations/" + id).body;
    EXPECT_EQ(member(after, "alias"), "c");
    EXPECT_EQ(member(after, "initialValue"), "6");
    EXPECT_EQ(member(after, "dataType"), "0");
    EXPECT_EQ(member(after, "insertCount"), "1");
}

TEST_F(DeliveryUndoResource, AlarmsOfTheDeliveryGoAndAreNamed)
{
    EXPECT_EQ(call(editor, "POST", "groupSettings",
                   R"({"projectId":"p1","cellId":")" + tower +
                       R"(","subCategoryId":"ground","groupName":"G","groupPoint":["S1"],"totalVar":10})")
                  .status,
              201U);
    deliver("S1", sample("20", "1"));
    const std::string second = deliver("S1", sample("21", "50"));
    const std::vector<std::string> alarms = members(get("projects/p1/alarmManages"), "_id");
    ASSERT_EQ(alarms.size(), 1U);
    EXPECT_EQ(member(undo(second).body, "alarms"), "[\"" + alarms.front() + "\"]");
    EXPECT_EQ(get("projects/p1/alarmManages").body, "[]");
    EXPECT_THAT(changes(), ::testing::Contains("alarm.withdrawn"));
}

TEST_F(DeliveryUndoResource, NeedsBothRights)
{
    const std::string delivery = deliver("S1", sample("20", "1"));
    const auto status = [&](Rights rights) {
        return call(newTokenFor("Settlement", rights), "DELETE", "historyDatas/" + delivery).status;
    };
    EXPECT_EQ(status(Rights(Right::Read) | Right::Delete), 403U);
    EXPECT_EQ(status(Rights(Right::Read) | Right::Edit), 403U);
    EXPECT_EQ(status(Rights(Right::Edit) | Right::Delete), 404U);
    EXPECT_EQ(status(Rights(Right::Read) | Right::Edit | Right::Delete), 200U);
}

} // namespace
} // namespace monitorservice
