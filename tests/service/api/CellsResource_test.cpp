#include "ApiFixture.h"

namespace monitorservice {
namespace {

using test::member;
using test::RawAnswer;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class CellsResource : public test::ApiFixture
{
protected:
    RawAnswer post(const std::string& body) const { return call(editor, "POST", "cells", body); }
    RawAnswer put(const std::string& id, const std::string& body) const
    {
        return call(editor, "PUT", "cells/" + id, body);
    }
    std::string count() const { return member(get("projects/p1/cells?only_count=true").body, "count"); }
};

TEST_F(CellsResource, CreatedMonitoringIsAnsweredWhole)
{
    const RawAnswer answer = post(R"({"projectId":"p1","name":"Säule \"1\"\n","category":"Settlement",)"
                                  R"("alarmTo":["a@b","c"],"links":[{"type":"model","rId":"m1"}]})");
    ASSERT_EQ(answer.status, 201U) << answer.body;
    const std::string id = member(answer.body, "_id");
    EXPECT_EQ(id.size(), 24U);
    EXPECT_EQ(answer.fields.at("location"), "/monitor-service/cells/" + id);
    EXPECT_EQ(answer.body, R"({"_id":")" + id +
                               R"(","projectId":"p1","name":"Säule \"1\"\n","category":"Settlement",)"
                               R"("alarmTo":["a@b","c"],"links":[{"type":"model","rId":"m1"}],)"
                               R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada Editor",)"
                               R"("updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"Ada Editor"})");
    EXPECT_EQ(get("cells/" + id).body, answer.body);
    EXPECT_EQ(get("projects/p1/cells").body, "[" + answer.body + "]");
}

TEST_F(CellsResource, ListsMayBeLeftOutOrEmpty)
{
    for (const char* const more : {"", R"(,"alarmTo":[],"links":[])", R"(,"links":[{"type":"model"}])"}) {
        const std::string id = newCell("a", "Settlement", more);
        const std::string body = get("cells/" + id).body;
        EXPECT_EQ(member(body, "alarmTo"), "[]");
        EXPECT_EQ(member(body, "links"), "[]");
    }
}

TEST_F(CellsResource, EveryCharacterComesBackAsItWasSent)
{
    const std::string name = R"( \u0001\u001f\t\/&#+%?=\\\" é \u00e9 \ud83d\ude00 \u2028 ' )";
    const std::string body = get("cells/" + newCell(name)).body;
    EXPECT_EQ(member(body, "name"), " \x01\x1f\t/&#+%?=\\\" é é \U0001F600 \u2028 ' ");
}

TEST_F(CellsResource, BodiesThatAreWrongNameTheMember)
{
    struct Case
    {
        const char* body;
        const char* message;
    };
    const std::vector<Case> cases{
        {"", "the body is not JSON"},
        {"{", "the body is not JSON"},
        {"{} {}", "the body is not JSON"},
        {"[]", "must be a JSON object"},
        {"\"x\"", "must be a JSON object"},
        {"{\"name\":\"\xff\"}", "the body is not JSON"},
        {R"({"name":"a","category":"Settlement"})", "\"projectId\" is missing"},
        {R"({"projectId":null,"name":"a","category":"Settlement"})", "\"projectId\" must be a text"},
        {R"({"projectId":"","name":"a","category":"Settlement"})", "\"projectId\" must not be empty"},
        {R"({"projectId":7,"name":"a","category":"Settlement"})", "\"projectId\" must be a text"},
        {R"({"projectId":"p1","category":"Settlement"})", "\"name\" is missing"},
        {R"({"projectId":"p1","name":"","category":"Settlement"})", "\"name\" must not be empty"},
        {R"({"projectId":"p1","name":["a"],"category":"Settlement"})", "\"name\" must be a text"},
        {R"({"projectId":"p1","name":"a\u0000","category":"Settlement"})", "\"name\" holds U+0000"},
        {R"({"projectId":"p1","name":"a"})", "\"category\" is missing"},
        {R"({"projectId":"p1","name":"a","category":"Unheard"})",
         "\"category\": there is no category \"Unheard\""},
        {R"({"projectId":"p1","name":"a","category":""})", "\"category\": there is no category"},
        {R"({"projectId":"p1","name":"a","name":"b","category":"Settlement"})", "\"name\" is given twice"},
        {R"({"projectId":"p1","name":"a","category":"Settlement","colour":1})", "\"colour\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","_id":"x"})", "\"_id\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","createdAt":"x"})", "\"createdAt\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","alarmTo":"x"})",
         "\"alarmTo\" must be an array"},
        {R"({"projectId":"p1","name":"a","category":"Settlement","alarmTo":["a",1]})", "\"alarmTo[1]\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":{}})", "\"links\" must be an array"},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":["m"]})",
         "\"links[0]\" must be an object"},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":[{"rId":"m"}]})",
         "\"links[0].type\" is missing"},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":[{"type":"t","rId":1}]})",
         "\"links[0].rId\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":[{"type":"t","rId":""}]})",
         "\"links[0].rId\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":[{"type":"t","x":"y"}]})",
         "\"links[0].x\""},
        {R"({"projectId":"p1","name":"a","category":"Settlement","links":[{"type":"t","type":"t"}]})",
         "\"links[0].type\" is given twice"},
    };
    for (const Case& one : cases) {
        EXPECT_THAT(refusal(post(one.body)), ::testing::AllOf(StartsWith("400 "), HasSubstr(one.message)))
            << one.body;
    }
    EXPECT_EQ(count(), "0");
}

TEST_F(CellsResource, HalfASurrogatePairIsNotStored)
{
    for (const char* const half : {"\\ud800", "\\udc00"}) {
        EXPECT_EQ(
            post(std::string(R"({"projectId":"p1","category":"Settlement","name":")") + half + "\"}").status,
            400U)
            << half;
    }
    EXPECT_EQ(count(), "0");
}

TEST_F(CellsResource, LimitsOfABodyAreKept)
{
    const auto named = [](std::size_t length) {
        return R"({"projectId":"p1","category":"Settlement","name":")" + std::string(length, 'x') + "\"}";
    };
    EXPECT_EQ(post(named(4096)).status, 201U);
    EXPECT_EQ(post(named(4097)).status, 400U);
    EXPECT_EQ(post(named(1024 * 1024)).status, 413U);
    const auto alarming = [](int recipients) {
        std::string list = "\"a\"";
        for (int i = 1; i < recipients; ++i) {
            list += ",\"a\"";
        }
        return R"({"projectId":"p1","category":"Settlement","name":"x","alarmTo":[)" + list + "]}";
    };
    EXPECT_EQ(post(alarming(1000)).status, 201U);
    EXPECT_THAT(refusal(post(alarming(1001))), HasSubstr("\"alarmTo\""));
}

TEST_F(CellsResource, UpdateChangesWhatIsSentAndNothingElse)
{
    const std::string id =
        newCell("a", "Settlement", R"(,"alarmTo":["x"],"links":[{"type":"model","rId":"m1"}])");
    const std::string other = newToken("Bob");
    grant(other, "p1", std::nullopt, Rights(Right::Read) | Right::Edit);
    now += 1000;
    const RawAnswer answer = call(other, "PUT", "cells/" + id, R"({"name":"b"})");
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(answer.body, R"({"_id":")" + id +
                               R"(","projectId":"p1","name":"b","category":"Settlement","alarmTo":["x"],)"
                               R"("links":[{"type":"model","rId":"m1"}],)"
                               R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada Editor",)"
                               R"("updatedAt":"2015-12-21T06:30:01.123Z","updatedBy":"Bob"})");
    EXPECT_EQ(get("cells/" + id).body, answer.body);
}

TEST_F(CellsResource, UpdateOfNothingLeavesTheTimes)
{
    const std::string id = newCell("a");
    const std::string before = get("cells/" + id).body;
    now += 1000;
    for (const char* const body : {"{}", R"({"name":"a"})", R"({"projectId":"p1","category":"Settlement"})",
                                   R"({"alarmTo":[],"links":[]})"}) {
        const RawAnswer answer = put(id, body);
        EXPECT_EQ(answer.status, 200U) << body;
        EXPECT_EQ(answer.body, before) << body;
    }
    EXPECT_EQ(get("cells/" + id).body, before);
}

TEST_F(CellsResource, UpdateIsNeverOlderThanTheOneBefore)
{
    const std::string id = newCell("a");
    now -= 5000;
    EXPECT_EQ(member(put(id, R"({"name":"b"})").body, "updatedAt"), "2015-12-21T06:30:00.123Z");
}

TEST_F(CellsResource, UpdatedLinksReplaceThoseOfTheirTypeAlone)
{
    const std::string id = newCell("a", "Settlement",
                                   R"(,"links":[{"type":"drawing","rId":"d1"},{"type":"model","rId":"m1"},)"
                                   R"({"type":"model","rId":"m2"}])");
    EXPECT_EQ(member(put(id, R"({"links":[{"type":"model","rId":"m3"}]})").body, "links"),
              R"([{"type":"drawing","rId":"d1"},{"type":"model","rId":"m3"}])");
    EXPECT_EQ(member(put(id, R"({"links":[{"type":"model"}]})").body, "links"),
              R"([{"type":"drawing","rId":"d1"}])");
    EXPECT_EQ(member(put(id, R"({"links":[]})").body, "links"), "[]");
}

TEST_F(CellsResource, UpdateNeedsEditInTheOldAndTheNewCategory)
{
    const std::string id = newCell("a", "Settlement");
    const std::string token = newToken("Half");
    grant(token, "p1", "Settlement", Rights(Right::Read) | Right::Edit);
    EXPECT_EQ(call(token, "PUT", "cells/" + id, R"({"category":"Inclinometer"})").status, 403U);
    EXPECT_EQ(member(get("cells/" + id).body, "category"), "Settlement");
    grant(token, "p1", "Inclinometer", Rights(Right::Read) | Right::Edit);
    EXPECT_EQ(call(token, "PUT", "cells/" + id, R"({"category":"Inclinometer"})").status, 200U);
    EXPECT_EQ(member(get("cells/" + id).body, "category"), "Inclinometer");
    EXPECT_THAT(refusal(put(id, R"({"category":"Unheard"})")), StartsWith("400 \"category\""));
}

TEST_F(CellsResource, MonitoringStaysInItsProject)
{
    const std::string id = newCell("a");
    EXPECT_THAT(refusal(put(id, R"({"projectId":"p2"})")), StartsWith("400 \"projectId\""));
    EXPECT_THAT(refusal(put(id, R"({"projectId":null})")), StartsWith("400 \"projectId\""));
    EXPECT_THAT(refusal(put(id, R"({"updatedBy":"x"})")), StartsWith("400 \"updatedBy\""));
}

TEST_F(CellsResource, DeletedMonitoringIsAnsweredAndGone)
{
    const std::string id = newCell("a");
    const std::string before = get("cells/" + id).body;
    const RawAnswer answer = call(editor, "DELETE", "cells/" + id);
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(answer.body, before);
    for (const char* const method : {"GET", "DELETE"}) {
        EXPECT_EQ(call(editor, method, "cells/" + id).status, 404U) << method;
    }
    EXPECT_EQ(put(id, "{}").status, 404U);
    EXPECT_EQ(count(), "0");
}

TEST_F(CellsResource, EachMethodNeedsItsRight)
{
    struct Case
    {
        const char* owner;
        Rights rights;
        unsigned post;
        unsigned get;
        unsigned put;
        unsigned remove;
    };
    const Rights read = Right::Read;
    for (const Case& one :
         {Case{"none", Rights(), 404, 404, 404, 404}, Case{"reads", read, 403, 200, 403, 403},
          Case{"creates", Right::Create, 201, 404, 404, 404},
          Case{"edits", read | Right::Edit, 403, 200, 200, 403},
          Case{"deletes", read | Right::Delete, 403, 200, 403, 200},
          Case{"blind", Rights(Right::Edit) | Right::Delete, 404, 404, 404, 404}}) {
        const std::string token = newToken(one.owner);
        if (!one.rights.empty()) {
            grant(token, "p1", "Settlement", one.rights);
        }
        const std::string path = "cells/" + newCell("a");
        const char* const body = R"({"projectId":"p1","name":"b","category":"Settlement"})";
        EXPECT_EQ(call(token, "POST", "cells", body).status, one.post) << one.owner;
        EXPECT_EQ(call(token, "GET", path).status, one.get) << one.owner;
        EXPECT_EQ(call(token, "PUT", path, R"({"name":"c"})").status, one.put) << one.owner;
        EXPECT_EQ(call(token, "DELETE", path).status, one.remove) << one.owner;
    }
}

TEST_F(CellsResource, RightsEndWithTheCategoryAndTheProject)
{
    const std::string token = newToken("Settlement only");
    grant(token, "p1", "Settlement", Rights(Right::Read) | Right::Create);
    EXPECT_EQ(
        call(token, "POST", "cells", R"({"projectId":"p1","name":"a","category":"Inclinometer"})").status,
        403U);
    EXPECT_EQ(call(token, "POST", "cells", R"({"projectId":"p2","name":"a","category":"Settlement"})").status,
              404U);
    EXPECT_EQ(call(token, "POST", "cells", R"({"projectId":"p9","name":"a","category":"Settlement"})").status,
              404U);
    EXPECT_EQ(call(token, "GET", "cells/" + newCell("a", "Inclinometer")).status, 404U);
}

TEST_F(CellsResource, ParametersAreRefused)
{
    const std::string id = newCell("a");
    EXPECT_THAT(refusal(get("cells/" + id + "?expand=true")), StartsWith("400 parameter \"expand\""));
    EXPECT_EQ(call(editor, "DELETE", "cells/" + id + "?x=").status, 400U);
    EXPECT_EQ(count(), "1");
}

TEST_F(CellsResource, IdentifiersRise)
{
    std::string previous;
    for (int i = 0; i < 5; ++i) {
        now -= i;
        const std::string id = newCell("a");
        EXPECT_LT(previous, id);
        previous = id;
    }
}

} // namespace
} // namespace monitorservice
