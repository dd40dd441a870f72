#include "../../support/Json.h"
#include "../../support/Text.h"
#include "RKAlarm.h"

#include <gtest/gtest.h>

namespace {

const QDateTime eightOClock(QDate(2024, 3, 1), QTime(8, 0), Qt::UTC);

TEST(AlarmJson, ReadsItsMembers)
{
    const RKAlarm alarm(jsonObject(R"({"_id":"a1","cellId":"c1","cellName":"Pit K1","subCategoryId":"s1",
        "alarmTime":"2024-03-01T08:00:00.000Z","pointCounts":3})"));
    EXPECT_EQ(alarm.id, "a1"_q);
    EXPECT_EQ(alarm.cellId, "c1"_q);
    EXPECT_EQ(alarm.cellName, "Pit K1"_q);
    EXPECT_EQ(alarm.subCategoryId, "s1"_q);
    EXPECT_EQ(alarm.alarmTime, eightOClock);
    EXPECT_EQ(alarm.pointCounts, 3);
}

TEST(AlarmJson, WhatIsMissingIsEmpty)
{
    const RKAlarm alarm{QJsonObject()};
    EXPECT_TRUE(alarm.id.isEmpty() && alarm.cellId.isEmpty() && alarm.cellName.isEmpty());
    EXPECT_FALSE(alarm.alarmTime.isValid());
    EXPECT_EQ(alarm.pointCounts, 0);
}

TEST(AlarmDetailJson, ReadsItsMembers)
{
    const RKAlarmDetail detail(jsonObject(R"({"_id":"d1","alarmManId":"a1","pointName":"W1","totalVar":"12.5",
        "dayVar":"2.5","totalBeyound":2.5,"dayBeyound":0.5,"isThreeVar":true,"isInclinometer":true,
        "monitorCount":9,"monitorTime":"2024-03-01T08:00:00.000Z","depth":"2.5",
        "alarmTime":"2024-03-02T08:00:00.000Z","updatedAt":"2024-03-04T08:00:00.000Z","updatedBy":"bo",
        "createdAt":"2024-03-03T08:00:00.000Z","createdBy":"ann"})"));
    EXPECT_EQ(detail.id, "d1"_q);
    EXPECT_EQ(detail.alarmManId, "a1"_q);
    EXPECT_EQ(detail.pointName, "W1"_q);
    EXPECT_EQ(detail.totalVar, "12.5"_q);
    EXPECT_EQ(detail.dayVar, "2.5"_q);
    EXPECT_EQ(detail.totalBeyound, 2.5);
    EXPECT_EQ(detail.dayBeyound, 0.5);
    EXPECT_TRUE(detail.isThreeVar);
    EXPECT_TRUE(detail.isInclinometer);
    EXPECT_EQ(detail.monitorCount, 9);
    EXPECT_EQ(detail.monitorTime, eightOClock);
    EXPECT_EQ(detail.depth, "2.5"_q);
    EXPECT_EQ(detail.alarmTime, eightOClock.addDays(1));
    EXPECT_EQ(detail.updatedAt, eightOClock.addDays(3));
    EXPECT_EQ(detail.updatedBy, "bo"_q);
    EXPECT_EQ(detail.createdAt, eightOClock.addDays(2));
    EXPECT_EQ(detail.createdBy, "ann"_q);
}

TEST(AlarmDetailJson, ANumericVariationIsNoTextButANumericExcessIsRead)
{
    const RKAlarmDetail detail(
        jsonObject(R"({"totalVar":12.5,"dayVar":2.5,"totalBeyound":2.5,"dayBeyound":"0.5","isThreeVar":1})"));
    EXPECT_TRUE(detail.totalVar.isEmpty() && detail.dayVar.isEmpty());
    EXPECT_EQ(detail.totalBeyound, 2.5);
    EXPECT_EQ(detail.dayBeyound, 0.0);
    EXPECT_FALSE(detail.isThreeVar);
    EXPECT_FALSE(detail.isInclinometer);
}

TEST(AlarmThreeJson, ReadsItsMembers)
{
    const AlarmThree three(jsonObject(R"({"_id":"t1","detailId":"d1","pointName":"I1","monitorCount":9,
        "monitorTime":"2024-03-01T08:00:00.000Z","totalValue":-3.25,"depth":"2.5"})"));
    EXPECT_EQ(three.id, "t1"_q);
    EXPECT_EQ(three.detailId, "d1"_q);
    EXPECT_EQ(three.pointName, "I1"_q);
    EXPECT_EQ(three.monitorCount, 9);
    EXPECT_EQ(three.monitorTime, eightOClock);
    EXPECT_EQ(three.totalValue, -3.25);
    EXPECT_EQ(three.depth, "2.5"_q);
}

TEST(AlarmThreeJson, ANumericDepthIsNoText)
{
    EXPECT_TRUE(AlarmThree(jsonObject(R"({"depth":2.5})")).depth.isEmpty());
}

} // namespace
