#include "datamanage/DataManageJson.h"

#include "../../support/Json.h"
#include "../../support/Text.h"

#include <gtest/gtest.h>

namespace {

const QDateTime eightOClock(QDate(2024, 3, 1), QTime(8, 0), Qt::UTC);

TEST(DataManageJson, ReadsItsMembers)
{
    RKDataManage dataManage;
    rk::dataManageFromJson(
        jsonObject(R"({"_id":"d1","cellId":"c1","subCategoryId":"s1","category":"not this","alias":"nor this",
            "subCategory":{"category":"slope","alias":"SM"},"lastDate":"2024-03-01T08:00:00.000Z","lastCount":672,
            "fileId":"f1","updatedBy":"ann","updatedAt":"2024-03-02T08:00:00.000Z"})"),
        dataManage);
    EXPECT_EQ(dataManage.id, "d1"_q);
    EXPECT_EQ(dataManage.cellId, "c1"_q);
    EXPECT_EQ(dataManage.subCategoryId, "s1"_q);
    EXPECT_EQ(dataManage.category, "slope"_q);
    EXPECT_EQ(dataManage.alias, "SM"_q);
    EXPECT_EQ(dataManage.lastDate, eightOClock);
    EXPECT_EQ(dataManage.lastCount, 672);
    EXPECT_EQ(dataManage.fileId, "f1"_q);
    EXPECT_EQ(dataManage.updatedBy, "ann"_q);
    EXPECT_EQ(dataManage.updatedAt, eightOClock.addDays(1));
}

TEST(DataManageJson, WithoutItsSubCategoryCategoryAndAliasAreEmptied)
{
    for (const char* text : {R"({"_id":"d1"})", R"({"_id":"d1","subCategory":"s1"})"}) {
        RKDataManage dataManage;
        dataManage.category = dataManage.alias = "x"_q;
        rk::dataManageFromJson(jsonObject(text), dataManage);
        EXPECT_EQ(dataManage.id, "d1"_q) << text;
        EXPECT_TRUE(dataManage.category.isEmpty() && dataManage.alias.isEmpty()) << text;
        EXPECT_FALSE(dataManage.lastDate.isValid()) << text;
    }
}

TEST(HistoryJson, ReadsItsMembersButNoIdentifier)
{
    HistoryData history;
    rk::historyFromJson(jsonObject(R"({"_id":"h1","lastDate":"2024-03-01T08:00:00.000Z","lastCount":1344,
            "insertCount":672,"fileId":"f1","createdAt":"2024-03-02T08:00:00.000Z","createdBy":"ann",
            "updatedAt":"2024-03-03T08:00:00.000Z","updatedBy":"bo"})"),
                        history);
    EXPECT_TRUE(history.id.isEmpty());
    EXPECT_EQ(history.lastDate, eightOClock);
    EXPECT_EQ(history.lastCount, 1344);
    EXPECT_EQ(history.insertCount, 672);
    EXPECT_EQ(history.fileId, "f1"_q);
    EXPECT_EQ(history.createdAt, eightOClock.addDays(1));
    EXPECT_EQ(history.createdBy, "ann"_q);
    EXPECT_EQ(history.updatedAt, eightOClock.addDays(2));
    EXPECT_EQ(history.updatedBy, "bo"_q);
}

TEST(HistoryJson, CountsThatAreNoIntegersAreZero)
{
    HistoryData history;
    history.lastCount = history.insertCount = 5;
    rk::historyFromJson(jsonObject(R"({"lastCount":1.5,"insertCount":"7"})"), history);
    EXPECT_EQ(history.lastCount, 0);
    EXPECT_EQ(history.insertCount, 0);
}

} // namespace
