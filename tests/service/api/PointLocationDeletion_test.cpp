#include "MeasuredFixture.h"
#include "store/StoreContents.h"

namespace monitorservice {
namespace {

using test::contentsOf;
using test::member;
using test::percentEncoded;
using test::RawAnswer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PointLocationDeletion : public test::MeasuredFixture
{
protected:
    PointLocationDeletion()
    {
        const RawAnswer answer =
            call(editor, "POST", "pointLocations",
                 R"([{"cellId":")" + tower +
                     R"(","subCategoryId":"ground","name":"S1","data":[)"
                     R"({"count":1,"time":"2015-12-19T06:00:00Z","value":1,"timeFlag":"A"},)"
                     R"({"count":2,"time":"2015-12-20T06:00:00Z","value":2,"timeFlag":"B"},)"
                     R"({"count":3,"time":"2015-12-21T06:00:00Z","value":50,"timeFlag":"A"}]},)"
                     R"({"cellId":")" +
                     tower +
                     R"(","subCategoryId":"ground","name":"S2","data":[)"
                     R"({"count":1,"time":"2015-12-18T06:00:00Z","value":1}]}])");
        EXPECT_EQ(answer.status, 200U) << answer.body;
        id = test::membersOf(answer.body, "_id").at(0);
    }

    RawAnswer deleteSamples(const std::string& condition)
    {
        now += 1000;
        return call(editor, "DELETE", "pointLocations/" + id + "/samples?where=" + percentEncoded(condition));
    }

    std::string dataManage(std::string_view name)
    {
        return member(test::documentsOf(store, DocumentKind::DataManage).front(), name);
    }

    std::string id;
};

TEST_F(PointLocationDeletion, SingleReadingsGoAndWhatFollowsFromThem)
{
    const RawAnswer answer = deleteSamples(R"({"time":{"$gte":"2015-12-21T07:00:00+01:00"}})");
    EXPECT_EQ(answer.body,
              R"({"_id":")" + id + R"(","removed":1,"restored":0,"removedPoints":0,"alarms":[]})");
    const std::string point = get("pointLocations/" + id).body;
    EXPECT_EQ(member(point, "insertCount"), "2");
    EXPECT_EQ(member(point, "lastCount"), "2");
    EXPECT_EQ(member(point, "lastDate"), "2015-12-20T06:00:00.000Z");
    EXPECT_EQ(dataManage("sampleCount"), "3");
    EXPECT_EQ(dataManage("lastDate"), "2015-12-20T06:00:00.000Z");
    EXPECT_THAT(members(get("projects/p1/changes"), "action"), ElementsAre("sample.deleted"));
    deleteSamples(R"({"timeFlag":{"$in":["A","B"]}})");
    EXPECT_EQ(member(get("pointLocations/" + id).body, "data"), "[]");
    EXPECT_EQ(member(get("pointLocations/" + id).body, "lastDate"), "");
    EXPECT_EQ(dataManage("lastDate"), "2015-12-18T06:00:00.000Z");
}

TEST_F(PointLocationDeletion, ReadingsThatDoNotMatchStay)
{
    const std::vector<std::string> before = contentsOf(store);
    EXPECT_EQ(member(deleteSamples(R"({"value":{"$gt":50}})").body, "removed"), "0");
    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(PointLocationDeletion, WithoutAConditionOnAMemberOfSamplesNothingIsDeleted)
{
    const std::vector<std::string> before = contentsOf(store);
    EXPECT_THAT(refusal(deleteSamples("{}")), HasSubstr("400 parameter \"where\" must have a condition"));
    EXPECT_THAT(refusal(call(editor, "DELETE", "pointLocations/" + id + "/samples")), HasSubstr("400"));
    // Unequal to everything, were it asked.
    EXPECT_EQ(refusal(deleteSamples(R"({"timeflag":{"$ne":"A"}})")),
              "400 parameter \"where\": a sample has no \"timeflag\", but count, time, value and timeFlag");
    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(PointLocationDeletion, PointGoesWithItsReadingsAndTheAuditTrailKeepsThem)
{
    const std::string whole = get("pointLocations/" + id).body;
    now += 1000;
    const RawAnswer answer = call(editor, "DELETE", "pointLocations/" + id);
    ASSERT_EQ(answer.status, 200U) << answer.body;
    EXPECT_EQ(member(answer.body, "name"), "S1");
    EXPECT_EQ(member(answer.body, "removed"), "3");
    EXPECT_EQ(member(answer.body, "removedPoints"), "1");
    EXPECT_EQ(get("pointLocations/" + id).status, 404U);
    EXPECT_EQ(call(editor, "DELETE", "pointLocations/" + id).status, 404U);
    EXPECT_EQ(dataManage("sampleCount"), "1");
    EXPECT_EQ(dataManage("lastDate"), "2015-12-18T06:00:00.000Z");
    const std::string body = get("projects/p1/changes").body;
    simdjson::dom::parser parser;
    const simdjson::dom::array entries = parser.parse(body);
    EXPECT_EQ(std::string_view(entries.at(0)["action"]), "pointLocation.deleted");
    EXPECT_EQ(std::string_view(entries.at(1)["action"]), "sample.deleted");
    EXPECT_EQ(simdjson::minify(entries.at(1)["before"]), member(whole, "data"));
    EXPECT_EQ(std::string_view(entries.at(1)["subject"]), id);
}

TEST_F(PointLocationDeletion, ReadingsTakenAwayLeaveTheAlarms)
{
    EXPECT_EQ(call(editor, "POST", "groupSettings",
                   R"({"projectId":"p1","cellId":")" + tower +
                       R"(","subCategoryId":"ground","groupName":"G","groupPoint":["S1"],"totalVar":10})")
                  .status,
              201U);
    EXPECT_EQ(call(editor, "PATCH", "pointLocations/" + id, R"({"initialValue":1})").status, 200U);
    ASSERT_EQ(members(get("projects/p1/alarmManages"), "_id").size(), 1U);
    EXPECT_NE(member(deleteSamples(R"({"count":3})").body, "alarms"), "[]");
    EXPECT_EQ(get("projects/p1/alarmManages").body, "[]");
}

TEST_F(PointLocationDeletion, WithManySamplesHasEntriesOfAThousand)
{
    std::string samples;
    for (int number = 0; number < 2'500; ++number) {
        samples += (number > 0 ? "," : "") + (R"({"count":)" + std::to_string(number)) +
                   R"(,"time":"2016-01-01T00:00:00Z","value":)" + std::to_string(number) + "}";
    }
    const RawAnswer delivered = call(
        editor, "POST", "pointLocations",
        R"([{"cellId":")" + tower + R"(","subCategoryId":"ground","name":"S3","data":[)" + samples + "]}]");
    const std::string many = test::membersOf(delivered.body, "_id").at(0);
    EXPECT_EQ(member(call(editor, "DELETE", "pointLocations/" + many).body, "removed"), "2500");
    std::size_t kept = 0;
    for (const std::string& change : test::documentsOf(store, DocumentKind::Change)) {
        if (member(change, "action") == "sample.deleted") {
            simdjson::dom::parser parser;
            const std::size_t size = simdjson::dom::array(parser.parse(change)["before"]).size();
            EXPECT_LE(size, 1'000U);
            kept += size;
        }
    }
    EXPECT_EQ(kept, 2'500U);
}

} // namespace
} // namespace monitorservice
