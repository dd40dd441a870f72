#include "MeasuredFixture.h"
#include "domain/Alarm.h"
#include "domain/AlarmDepth.h"
#include "domain/AlarmDetail.h"

namespace monitorservice {
namespace {

using test::member;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AlarmsResource : public test::MeasuredFixture
{
protected:
    std::string newAlarm(const std::string& cell, const std::string& subCategory)
    {
        std::string id;
        write([&](Session& session) {
            const StoredDocument stored = *session.documents(DocumentKind::Cell).find(cell);
            id = session.newIdentifier();
            const std::string time = isoText(session.now());
            Alarm alarm;
            alarm.id = id;
            alarm.project = stored.project;
            alarm.cell = cell;
            alarm.cellName = test::member(stored.text, "name");
            alarm.subCategory = subCategory;
            alarm.raisedAt = time;
            alarm.pointCount = 1;
            alarm.stamp = Stamp::of({"Ada Editor", time});
            session.documents(DocumentKind::Alarm).insert(alarm.project, id, toDocument(alarm));
        });
        return id;
    }

    std::string newDetail(const std::string& alarm, const std::string& point, const std::string& time)
    {
        std::string id;
        write([&](Session& session) {
            id = session.newIdentifier();
            AlarmDetail detail;
            detail.id = id;
            detail.alarm = alarm;
            detail.point = point;
            detail.total = "12.5";
            detail.count = 1;
            detail.time = time;
            session.documents(DocumentKind::AlarmDetail)
                .insert(session.documents(DocumentKind::Alarm).find(alarm)->project, id, toDocument(detail));
        });
        return id;
    }

    std::string newDepth(const std::string& detail, const std::string& depth)
    {
        std::string id;
        write([&](Session& session) {
            id = session.newIdentifier();
            session.documents(DocumentKind::AlarmDepth)
                .insert(session.documents(DocumentKind::AlarmDetail).find(detail)->project, id,
                        toDocument(AlarmDepth{id, detail, "I1", 1, "", 0, depth}));
        });
        return id;
    }

    const std::string alarms = "projects/p1/alarmManages";
};

TEST_F(AlarmsResource, ComeNewestFirstWhateverTheClockDoes)
{
    const std::string first = newAlarm(tower, "ground");
    now -= 3600 * 1000;
    const std::string second = newAlarm(wall, "casing");
    const std::string third = newAlarm(tower, "ground");
    EXPECT_THAT(members(get(alarms), "_id"), ElementsAre(third, second, first));
    EXPECT_THAT(members(get(alarms + "?order=_id"), "_id"), ElementsAre(first, second, third));
    EXPECT_THAT(members(get(alarms + "?skip=1&limit=1"), "_id"), ElementsAre(second));
    EXPECT_EQ(get(alarms + "?only_count=true").body, R"({"count":3})");
    EXPECT_THAT(members(get("projects/vienna/alarmManages"), "_id"), IsEmpty());
}

TEST_F(AlarmsResource, AnswerTheDocumentAsItIsStored)
{
    const std::string id = newAlarm(tower, "ground");
    EXPECT_EQ(
        get(alarms + "?expand=true").body,
        R"([{"_id":")" + id + R"(","projectId":"p1","cellId":")" + tower +
            R"(","cellName":"Tower 1","subCategoryId":"ground","alarmTime":"2015-12-21T06:30:00.123Z",)"
            R"("alarmDay":"","pointCounts":1,"createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada Editor",)"
            R"("updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"Ada Editor"}])");
}

TEST_F(AlarmsResource, NameIsTheMonitorings)
{
    const std::string ofTower = newAlarm(tower, "ground");
    const std::string ofWall = newAlarm(wall, "casing");
    EXPECT_THAT(members(where(alarms, R"({"name":{"$regex":"tower","$options":"i"}})"), "_id"),
                ElementsAre(ofTower));
    EXPECT_EQ(count(alarms, R"({"name":{"$regex":"tower","$options":"i"}})"), "1");
    EXPECT_THAT(members(where(alarms, R"({"name":"Wall"})"), "_id"), ElementsAre(ofWall));
    ASSERT_EQ(call(editor, "PUT", "cells/" + wall, R"({"name":"Front"})").status, 200U);
    EXPECT_THAT(members(where(alarms, R"({"name":"Wall"})"), "_id"), IsEmpty());
    EXPECT_THAT(members(where(alarms, R"({"name":"Front"})"), "_id"), ElementsAre(ofWall));
}

TEST_F(AlarmsResource, SubCategoryIsItsIdentifierNameOrAlias)
{
    const std::string ofTower = newAlarm(tower, "ground");
    const std::string ofWall = newAlarm(wall, "casing");
    for (const char* const text : {"casing", "Casing", "INC"}) {
        const std::string condition = R"({"subCategory":{"$in":[")" + std::string(text) + R"("]}})";
        EXPECT_THAT(members(where(alarms, condition), "_id"), ElementsAre(ofWall)) << text;
        EXPECT_EQ(count(alarms, condition), "1");
    }
    EXPECT_THAT(members(where(alarms, R"({"subCategory":{"$nin":["Casing"]}})"), "_id"),
                ElementsAre(ofTower));
    EXPECT_THAT(members(where(alarms, R"({"subCategory":"casin"})"), "_id"), IsEmpty());
}

TEST_F(AlarmsResource, CategoryIsTheMonitorings)
{
    const std::string ofTower = newAlarm(tower, "ground");
    const std::string ofWall = newAlarm(wall, "casing");
    EXPECT_THAT(members(where(alarms, R"({"category":{"$in":["Inclinometer"]}})"), "_id"),
                ElementsAre(ofWall));
    EXPECT_THAT(
        members(where(alarms, R"({"category":{"$in":["Inclinometer"]},"subCategory":"Ground level"})"),
                "_id"),
        IsEmpty());
    EXPECT_THAT(members(where(alarms, R"({"cellId":{"$in":[")" + tower + R"("]}})"), "_id"),
                ElementsAre(ofTower));
}

TEST_F(AlarmsResource, PeriodIsThatOfCreation)
{
    const std::string first = newAlarm(tower, "ground");
    now += 24LL * 3600 * 1000;
    const std::string second = newAlarm(tower, "ground");
    EXPECT_THAT(members(where(alarms, R"({"createdAt":{"$gte":"2015-12-22T00:00:00.000+01:00"}})"), "_id"),
                ElementsAre(second));
    EXPECT_THAT(members(where(alarms, R"({"createdAt":{"$lt":"2015-12-22T06:30:00.123Z"}})"), "_id"),
                ElementsAre(first));
}

TEST_F(AlarmsResource, DetailsComeByName)
{
    const std::string alarm = newAlarm(tower, "ground");
    const std::string other = newAlarm(tower, "ground");
    newDetail(alarm, "S2", "2015-12-21T05:00:00.000Z");
    newDetail(other, "S3", "2015-12-21T05:00:00.000Z");
    newDetail(alarm, "S10", "2015-12-20T05:00:00.000Z");
    const std::string details = "alarmManages/" + alarm + "/alarmDetails";
    EXPECT_THAT(members(get(details), "pointName"), ElementsAre("S10", "S2"));
    EXPECT_THAT(members(get(details + "?order=-pointName&limit=1"), "pointName"), ElementsAre("S2"));
    EXPECT_THAT(members(where(details, R"({"pointName":{"$regex":"s1","$options":"i"}})"), "pointName"),
                ElementsAre("S10"));
    EXPECT_EQ(count(details, R"({"monitorTime":{"$gte":"2015-12-21T00:00:00.000Z"}})"), "1");
    EXPECT_EQ(member(get(details).body.substr(1, get(details).body.find('}')), "totalVar"), "12.5");
}

TEST_F(AlarmsResource, DepthsGoDownwardsAsNumbers)
{
    const std::string detail = newDetail(newAlarm(wall, "casing"), "I1", "2015-12-21T05:00:00.000Z");
    for (const char* const depth : {"10", "2.5", "0.5", "10.5"}) {
        newDepth(detail, depth);
    }
    const std::string depths = "alarmDetails/" + detail + "/threeDetails";
    EXPECT_THAT(members(get(depths), "depth"), ElementsAre("0.5", "2.5", "10", "10.5"));
    EXPECT_THAT(members(where(depths, R"({"depth":"2.5"})"), "depth"), ElementsAre("2.5"));
    EXPECT_THAT(members(where(depths, R"({"depth":2.5})"), "depth"), IsEmpty());
    EXPECT_EQ(get(depths + "?only_count=true").body, R"({"count":4})");
}

TEST_F(AlarmsResource, WhatMayNotBeReadIsNotThere)
{
    const std::string hidden = newAlarm(tower, "ground");
    const std::string hiddenDetail = newDetail(hidden, "S1", "2015-12-21T05:00:00.000Z");
    newDepth(hiddenDetail, "1");
    const std::string seen = newAlarm(wall, "casing");
    const std::string reader = newTokenFor("Inclinometer", Right::Read);
    EXPECT_THAT(members(call(reader, "GET", alarms), "_id"), ElementsAre(seen));
    EXPECT_EQ(call(reader, "GET", alarms + "?only_count=true").body, R"({"count":1})");
    EXPECT_EQ(refusal(call(reader, "GET", "alarmManages/" + hidden + "/alarmDetails")),
              "404 there is no alarm \"" + hidden + "\"");
    EXPECT_EQ(refusal(call(reader, "GET", "alarmDetails/" + hiddenDetail + "/threeDetails")),
              "404 there is no alarm detail \"" + hiddenDetail + "\"");
    EXPECT_EQ(call(reader, "GET", "alarmManages/" + seen + "/alarmDetails").body, "[]");
    EXPECT_EQ(get("alarmManages/nowhere/alarmDetails").status, 404U);
    EXPECT_EQ(get("alarmManages//alarmDetails").status, 404U);
    EXPECT_EQ(call(reader, "GET", "projects/vienna/alarmManages").status, 404U);
}

} // namespace
} // namespace monitorservice
