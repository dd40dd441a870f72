#include "ApiFixture.h"
#include "domain/Group.h"
#include "store/StoreContents.h"

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string samples = R"([{"count":1,"time":"2015-12-21T12:00:00-08:00","value":1.5,"timeFlag":""}])";

class DeliveryResource : public ApiFixture
{
protected:
    DeliveryResource()
    {
        write([](Session& session) {
            session.documents(DocumentKind::SubCategory)
                .insert("p1", "s1", toDocument(SubCategory{"s1", "p1", "Level", "Settlement", ""}));
        });
        cell = newCell("North");
    }

    std::string point(const std::string& name, const std::string& data = samples) const
    {
        return R"({"cellId":")" + cell + R"(","subCategoryId":"s1","name":")" + name +
               R"(","initialValue":-3,"data":)" + data + "}";
    }
    RawAnswer deliver(const std::string& body) const { return call(editor, "POST", "pointLocations", body); }

    std::size_t number(DocumentKind kind) const { return documentsOf(store, kind).size(); }
    std::size_t numberOfSamples() const { return samplesIn(pointsOf(store)); }
    std::string dataManage() const
    {
        return member(documentsOf(store, DocumentKind::DataManage).at(0), "_id");
    }
    void addGroup()
    {
        write([this](Session& session) {
            Group group;
            group.id = "g1";
            group.project = "p1";
            group.cell = cell;
            group.subCategory = "s1";
            group.name = "G";
            group.points = {"W1"};
            group.totalVariation = 1;
            session.documents(DocumentKind::Group).insert(group.project, group.id, toDocument(group));
        });
    }

    std::string cell;
};

TEST_F(DeliveryResource, DeliveryIsAnsweredWithItsPoints)
{
    const RawAnswer answer = deliver("[" + point("W1") + "," + point("W2", "[]") + "]");
    EXPECT_EQ(answer.status, 200U) << answer.body;
    EXPECT_THAT(membersOf(answer.body, "name"), ::testing::ElementsAre("W1", "W2"));
    EXPECT_THAT(membersOf(answer.body, "lastDate"),
                ::testing::ElementsAre("2015-12-21T12:00:00.000-08:00", ""));
    EXPECT_EQ(answer.body.find("\"data\""), std::string::npos);
    EXPECT_EQ(numberOfSamples(), 1U);
    EXPECT_THAT(answer.body,
                HasSubstr(R"("isNew":true,"inserted":1,"corrected":0,"unchanged":0,"alarmId":"")"));
    const RawAnswer again = deliver("[" + point("W1") + "," + point("W2", "[]") + "]");
    EXPECT_THAT(again.body,
                HasSubstr(R"("isNew":false,"inserted":0,"corrected":0,"unchanged":1,"alarmId":"")"));
    EXPECT_EQ(number(DocumentKind::History), 1U);
}

TEST_F(DeliveryResource, NestedDeliveryIsTakenInLikewise)
{
    const RawAnswer answer = deliver("[[" + point("W1") + "],[],[" + point("W2") + "]]");
    EXPECT_EQ(answer.status, 200U) << answer.body;
    EXPECT_THAT(membersOf(answer.body, "name"), ::testing::ElementsAre("W1", "W2"));
    EXPECT_EQ(numberOfSamples(), 2U);
}

TEST_F(DeliveryResource, EmptyDeliveryIsNothing)
{
    EXPECT_EQ(deliver("[]").body, "[]");
    EXPECT_EQ(deliver("[[]]").body, "[]");
    EXPECT_EQ(number(DocumentKind::DataManage), 0U);
}

TEST_F(DeliveryResource, RefusalSaysWhatIsWrong)
{
    EXPECT_EQ(refusal(deliver("[" + point("W1") + "," + point("W2", R"([{"count":1}])") + "]")),
              R"(400 "[1].data[0].time" is missing)");
    EXPECT_THAT(refusal(deliver("")), StartsWith("400 the body is not a JSON array"));
    EXPECT_THAT(refusal(deliver("[" + point("W1") + R"(,{"cellId":"x","subCategoryId":"s1","name":"W1"}])")),
                StartsWith(R"(400 "[1].cellId": there is no monitoring "x")"));
    EXPECT_THAT(refusal(call(editor, "POST", "pointLocations?where={}", "[]")), StartsWith("400"));
    EXPECT_EQ(number(DocumentKind::PointLocation), 0U);
    EXPECT_EQ(numberOfSamples(), 0U);
}

TEST_F(DeliveryResource, RefusedNestedDeliveryIsAServerErrorWithItsReason)
{
    EXPECT_EQ(refusal(deliver("[[" + point("W1") + "],[" + point("W2", R"([{"count":1}])") + "]]")),
              R"(500 "[1][0].data[0].time" is missing)");
    EXPECT_EQ(
        refusal(deliver("[[" + point("W1") + R"(],[{"cellId":"x","subCategoryId":"s1","name":"W1"}]])")),
        R"(500 "[1][0].cellId": there is no monitoring "x")");
    const std::string reader = newToken("Reader");
    grant(reader, "p1", std::nullopt, Right::Read);
    EXPECT_THAT(refusal(call(reader, "POST", "pointLocations", "[[" + point("W1") + "]]")),
                StartsWith(R"(500 "[0][0]": the token may not create)"));
    EXPECT_THAT(refusal(deliver("[[" + point("W1") + "]")), StartsWith("500 the body is not a JSON array"));
    EXPECT_EQ(number(DocumentKind::PointLocation), 0U);
}

TEST_F(DeliveryResource, TokenNeedsTheRightToCreateInTheCategory)
{
    const std::string reader = newToken("Reader");
    grant(reader, "p1", std::nullopt, Right::Read);
    grant(reader, "p1", "Inclinometer", Rights(Right::Create));
    EXPECT_THAT(refusal(call(reader, "POST", "pointLocations", "[" + point("W1") + "]")),
                StartsWith(R"(403 "[0]": the token may not create in monitorings of category "Settlement")"));
    const std::string stranger = newToken("Stranger");
    grant(stranger, "p2", std::nullopt, Rights(Right::Read) | Right::Create);
    EXPECT_EQ(refusal(call(stranger, "POST", "pointLocations", "[" + point("W1") + "]")),
              R"(400 "[0].cellId": there is no monitoring ")" + cell + "\"");
    EXPECT_EQ(call("", "POST", "pointLocations", "[]").status, 401U);
    EXPECT_EQ(number(DocumentKind::PointLocation), 0U);
    const std::string logger = newToken("Logger");
    grant(logger, "p1", "Settlement", Right::Create);
    EXPECT_EQ(call(logger, "POST", "pointLocations", "[" + point("W1") + "]").status, 200U);
}

TEST_F(DeliveryResource, DataManageIsDeletedWithAllThatCameWithIt)
{
    addGroup();
    deliver("[" + point("W1") + "]");
    const std::string id = dataManage();
    EXPECT_EQ(number(DocumentKind::Alarm), 1U);
    EXPECT_EQ(refusal(call(editor, "DELETE", "dataManages/" + id)),
              "409 the data manage has point locations, history, alarms; cascade=true deletes them together "
              "with it");
    EXPECT_EQ(refusal(call(editor, "DELETE", "dataManages/" + id + "?cascade=perhaps")).substr(0, 3), "400");
    const RawAnswer answer = call(editor, "DELETE", "dataManages/" + id + "?cascade=true");
    EXPECT_EQ(answer.status, 200U);
    EXPECT_EQ(member(answer.body, "_id"), id);
    for (const DocumentKind kind :
         {DocumentKind::PointLocation, DocumentKind::DataManage, DocumentKind::History, DocumentKind::Alarm,
          DocumentKind::AlarmDetail, DocumentKind::AlarmDepth}) {
        EXPECT_EQ(number(kind), 0U) << static_cast<int>(kind);
    }
    EXPECT_EQ(number(DocumentKind::Group), 1U);
    EXPECT_EQ(call(editor, "DELETE", "dataManages/" + id + "?cascade=true").status, 404U);
}

TEST_F(DeliveryResource, DataManageIsDeletedByWhoMayDelete)
{
    deliver("[" + point("W1") + "]");
    const std::string path = "dataManages/" + dataManage() + "?cascade=true";
    const std::string writer = newToken("Writer");
    grant(writer, "p1", std::nullopt, Rights(Right::Read) | Right::Create | Right::Edit);
    EXPECT_THAT(refusal(call(writer, "DELETE", path)), HasSubstr("403 the token may not delete"));
    const std::string stranger = newToken("Stranger");
    grant(stranger, "p1", "Inclinometer", Rights(Right::Read) | Right::Delete);
    EXPECT_EQ(call(stranger, "DELETE", path).status, 404U);
    EXPECT_EQ(numberOfSamples(), 1U);
}

TEST_F(DeliveryResource, OtherDataOfTheMonitoringStay)
{
    write([](Session& session) {
        session.documents(DocumentKind::SubCategory)
            .insert("p1", "s2", toDocument(SubCategory{"s2", "p1", "Tilt", "Settlement", ""}));
    });
    deliver("[" + point("W1") + "]");
    const std::string first = dataManage();
    deliver(R"([{"cellId":")" + cell + R"(","subCategoryId":"s2","name":"W1","data":)" + samples + "}]");
    call(editor, "DELETE", "dataManages/" + first + "?cascade=true");
    EXPECT_EQ(number(DocumentKind::PointLocation), 1U);
    EXPECT_EQ(numberOfSamples(), 1U);
    EXPECT_EQ(number(DocumentKind::History), 1U);
}

TEST_F(DeliveryResource, MonitoringWithDataKeepsItsCategory)
{
    const std::string other = R"({"category":"Inclinometer","name":"Renamed"})";
    addGroup();
    EXPECT_EQ(refusal(call(editor, "PUT", "cells/" + cell, other)),
              "409 the monitoring cannot change its category while it has groups: 1");
    deliver("[" + point("W1") + "]");
    EXPECT_EQ(refusal(call(editor, "PUT", "cells/" + cell, other)),
              "409 the monitoring cannot change its category while it has point locations: 1, groups: 1, "
              "data manages: 1, alarms: 1");
    EXPECT_EQ(call(editor, "PUT", "cells/" + cell, R"({"category":"Settlement","name":"Renamed"})").status,
              200U);
    EXPECT_EQ(deliver("[" + point("W2") + "]").status, 200U) << "later deliveries are taken in";
}

TEST_F(DeliveryResource, MonitoringWithDataIsNotDeleted)
{
    addGroup();
    EXPECT_EQ(refusal(call(editor, "DELETE", "cells/" + cell)),
              "409 the monitoring cannot be deleted while it has groups: 1");
    deliver("[" + point("W1") + "," + point("W2") + "]");
    EXPECT_EQ(
        refusal(call(editor, "DELETE", "cells/" + cell)),
        "409 the monitoring cannot be deleted while it has point locations: 2, groups: 1, data manages: 1, "
        "alarms: 1");
    call(editor, "DELETE", "dataManages/" + dataManage() + "?cascade=true");
    write([](Session& session) { session.documents(DocumentKind::Group).remove("p1", "g1"); });
    EXPECT_EQ(call(editor, "DELETE", "cells/" + cell).status, 200U);
}

} // namespace
} // namespace monitorservice::test
