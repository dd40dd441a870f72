#include "monitoring/MonitoringJson.h"

#include "../../support/Json.h"
#include "../../support/Text.h"

#include <RKSoftCache.h>

#include <gtest/gtest.h>

namespace {

RKMonitoring read(const char* text, RKMonitoring record = {})
{
    rk::monitoringFromJson(jsonObject(text), record);
    return record;
}

QString written(const RKMonitoring& record)
{
    QJsonObject body;
    rk::monitoringToJson(record, body);
    return compact(body);
}

class MonitoringJson : public testing::Test
{
protected:
    MonitoringJson() { GetSoftCache()->setProjectId("p7"_q); }
};

TEST_F(MonitoringJson, ReadsEveryMember)
{
    const RKMonitoring record = read(R"({"_id":"c1","projectId":"other","name":"Pit K1","category":"pit",
        "alarmTo":["a@x","b@x"],"createdAt":"2024-03-01T08:00:00.000Z","createdBy":"ann",
        "updatedAt":"2024-03-02T08:00:00.250+08:00","updatedBy":"bo",
        "links":[{"type":"model","rId":"m1"}]})");
    EXPECT_EQ(record.id, "c1"_q);
    EXPECT_TRUE(record.projectId.isEmpty());
    EXPECT_EQ(record.name, "Pit K1"_q);
    EXPECT_EQ(record.category, "pit"_q);
    EXPECT_EQ(record.modelId, "m1"_q);
    EXPECT_EQ(record.alarmTo, (QStringList{"a@x"_q, "b@x"_q}));
    EXPECT_EQ(record.createdAt, QDateTime(QDate(2024, 3, 1), QTime(8, 0), Qt::UTC));
    EXPECT_EQ(record.createdBy, "ann"_q);
    EXPECT_EQ(record.updatedAt, QDateTime(QDate(2024, 3, 2), QTime(0, 0, 0, 250), Qt::UTC));
    EXPECT_EQ(record.updatedBy, "bo"_q);
}

TEST_F(MonitoringJson, TakesTheModelLinkAmongOthers)
{
    EXPECT_EQ(read(R"({"links":[{"type":"drawing","rId":"d"},{"type":"model","rId":"m"}]})").modelId, "m"_q);
}

TEST_F(MonitoringJson, TakesTheFirstOfTwoModelLinks)
{
    EXPECT_EQ(read(R"({"links":[{"type":"model","rId":"m1"},{"type":"model","rId":"m2"}]})").modelId, "m1"_q);
}

TEST_F(MonitoringJson, TheTypeOfALinkIsCaseSensitive)
{
    EXPECT_TRUE(read(R"({"links":[{"type":"Model","rId":"m"}]})").modelId.isEmpty());
}

TEST_F(MonitoringJson, AModelLinkWithoutTextEmptiesTheModel)
{
    RKMonitoring record;
    record.modelId = "old"_q;
    EXPECT_TRUE(read(R"({"links":[{"type":"model","rId":5},{"type":"model","rId":"m2"}]})", record)
                    .modelId.isEmpty());
}

TEST_F(MonitoringJson, WithoutAModelLinkTheModelStays)
{
    RKMonitoring record;
    record.modelId = "old"_q;
    for (const char* text :
         {"{}", R"({"links":[]})", R"({"links":"model"})", R"({"links":[7,{"type":"x","rId":"m"}]})"}) {
        EXPECT_EQ(read(text, record).modelId, "old"_q) << text;
    }
}

TEST_F(MonitoringJson, MissingMembersAreEmptiedButNotTheCallersOwn)
{
    RKMonitoring record;
    record.id = record.projectId = record.name = record.category = record.modelId = "x"_q;
    record.createdBy = record.updatedBy = "x"_q;
    record.alarmTo = QStringList{"x"_q};
    record.createdAt = record.updatedAt = QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
    record = read("{}", record);
    EXPECT_EQ(record.projectId, "x"_q);
    EXPECT_EQ(record.modelId, "x"_q);
    EXPECT_TRUE(record.id.isEmpty() && record.name.isEmpty() && record.category.isEmpty());
    EXPECT_TRUE(record.createdBy.isEmpty() && record.updatedBy.isEmpty() && record.alarmTo.isEmpty());
    EXPECT_FALSE(record.createdAt.isValid() || record.updatedAt.isValid());
}

TEST_F(MonitoringJson, MembersOfAnotherTypeReadAsEmpty)
{
    const RKMonitoring record = read(R"({"_id":1,"name":true,"category":null,"alarmTo":"a","createdAt":5,
        "updatedBy":["x"]})");
    EXPECT_TRUE(record.id.isEmpty() && record.name.isEmpty() && record.category.isEmpty());
    EXPECT_TRUE(record.alarmTo.isEmpty() && record.updatedBy.isEmpty());
    EXPECT_FALSE(record.createdAt.isValid());
}

TEST_F(MonitoringJson, RecipientsThatAreNoTextsGoThroughTheStringListConversion)
{
    EXPECT_EQ(read(R"({"alarmTo":["a",7,true,null]})").alarmTo, (QStringList{"a"_q, "7"_q, "true"_q, ""_q}));
}

TEST_F(MonitoringJson, WritesFourMembersWithoutAModel)
{
    RKMonitoring record;
    record.id = "c1"_q;
    record.projectId = "mine"_q;
    record.name = "Pit K1"_q;
    record.category = "pit"_q;
    record.createdBy = record.updatedBy = "ann"_q;
    EXPECT_EQ(written(record), R"({"alarmTo":[],"category":"pit","name":"Pit K1","projectId":"p7"})"_q);
}

TEST_F(MonitoringJson, WritesTheModelAsALink)
{
    RKMonitoring record;
    record.modelId = "m1"_q;
    record.alarmTo = QStringList{"a@x"_q, "b@x"_q};
    EXPECT_EQ(written(record),
              R"({"alarmTo":["a@x","b@x"],"category":"","links":[{"rId":"m1","type":"model"}],)"
              R"("name":"","projectId":"p7"})"_q);
}

TEST_F(MonitoringJson, WithoutAProjectTheBodySaysNull)
{
    GetSoftCache()->setProjectId(QString());
    EXPECT_EQ(written({}), R"({"alarmTo":[],"category":"","name":"","projectId":null})"_q);
}

} // namespace
