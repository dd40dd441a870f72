#include "group/GroupJson.h"

#include "../../support/Json.h"
#include "../../support/Text.h"

#include <RKSoftCache.h>

#include <gtest/gtest.h>

namespace {

class GroupJson : public testing::Test
{
protected:
    GroupJson() { GetSoftCache()->setProjectId("p7"_q); }
};

TEST_F(GroupJson, ReadsItsMembers)
{
    PointLocSetting group;
    rk::groupFromJson(jsonObject(R"({"_id":"g1","projectId":"p9","cellId":"c1","subCategoryId":"s1",
        "groupName":"North wall","groupPoint":["W1","W2",3],"dayVarType":1,"dayVarValue":2.5,"totalVar":30,
        "viewPortId":"v1","createdAt":"2024-03-01T08:00:00.000Z","createdBy":"ann",
        "updatedAt":"2024-03-02T08:00:00.000Z","updatedBy":"bo"})"),
                      group);
    EXPECT_EQ(group.id, "g1"_q);
    EXPECT_EQ(group.projectId, "p9"_q);
    EXPECT_EQ(group.cellId, "c1"_q);
    EXPECT_EQ(group.subCategoryId, "s1"_q);
    EXPECT_EQ(group.groupName, "North wall"_q);
    EXPECT_EQ(group.groupPoint, (QStringList{"W1"_q, "W2"_q, "3"_q}));
    EXPECT_EQ(group.dayVarType, 1);
    EXPECT_EQ(group.dayVarValue, 2.5);
    EXPECT_EQ(group.totalVar, 30.0);
    EXPECT_EQ(group.viewPortId, "v1"_q);
    EXPECT_EQ(group.createdAt, QDateTime(QDate(2024, 3, 1), QTime(8, 0), Qt::UTC));
    EXPECT_EQ(group.createdBy, "ann"_q);
    EXPECT_EQ(group.updatedAt, QDateTime(QDate(2024, 3, 2), QTime(8, 0), Qt::UTC));
    EXPECT_EQ(group.updatedBy, "bo"_q);
}

TEST_F(GroupJson, WhatIsMissingOrOfAnotherTypeIsEmptied)
{
    for (const char* text :
         {"{}", R"({"_id":1,"cellId":[],"groupPoint":"W1","dayVarType":"1","dayVarValue":"2",
                                       "totalVar":null,"createdAt":7})"}) {
        PointLocSetting group;
        group.id = group.projectId = group.cellId = group.groupName = group.viewPortId = "x"_q;
        group.groupPoint = QStringList{"x"_q};
        group.dayVarType = 1;
        group.dayVarValue = group.totalVar = 1.0;
        group.createdAt = QDateTime(QDate(2024, 3, 1), QTime(8, 0), Qt::UTC);
        rk::groupFromJson(jsonObject(text), group);
        EXPECT_TRUE(group.id.isEmpty() && group.projectId.isEmpty() && group.cellId.isEmpty()) << text;
        EXPECT_TRUE(group.groupName.isEmpty() && group.viewPortId.isEmpty()) << text;
        EXPECT_TRUE(group.groupPoint.isEmpty()) << text;
        EXPECT_EQ(group.dayVarType, 0) << text;
        EXPECT_EQ(group.dayVarValue + group.totalVar, 0.0) << text;
        EXPECT_FALSE(group.createdAt.isValid()) << text;
    }
}

TEST_F(GroupJson, WritesExactlyEightMembers)
{
    PointLocSetting group;
    group.id = group.projectId = group.viewPortId = group.createdBy = group.updatedBy = "x"_q;
    group.cellId = "c1"_q;
    group.subCategoryId = "s1"_q;
    group.groupName = "North wall"_q;
    group.groupPoint = QStringList{"W1"_q, "W2"_q};
    group.dayVarType = 1;
    group.dayVarValue = 2.5;
    group.totalVar = 30;
    QJsonObject body;
    rk::groupToJson(group, body);
    EXPECT_EQ(compact(body),
              R"({"cellId":"c1","dayVarType":1,"dayVarValue":2.5,"groupName":"North wall",)"
              R"("groupPoint":["W1","W2"],"projectId":"p7","subCategoryId":"s1","totalVar":30})"_q);
}

TEST_F(GroupJson, WithoutAProjectTheBodySaysNull)
{
    GetSoftCache()->setProjectId(QString());
    QJsonObject body;
    rk::groupToJson({}, body);
    EXPECT_TRUE(body.contains("projectId"_q) && body.value("projectId"_q).isNull());
}

} // namespace
