#include "../../support/LibraryTest.h"

namespace {

class DataManageOperations : public LibraryTest
{
protected:
    // Reads one page of data manages into the cache.
    QList<RKDataManage> readPage(const QByteArray& answer, QList<RKDataManage> dataManages = {})
    {
        server.answerJson(200, answer);
        EXPECT_TRUE(data.getDataManageRangeData({}, 0, 20, dataManages));
        return dataManages;
    }
};

TEST_F(DataManageOperations, ByIdKnowsNothingBeforeAPage)
{
    RKDataManage dataManage;
    dataManage.id = "before"_q;
    EXPECT_FALSE(data.getDataManageById("d1"_q, dataManage));
    EXPECT_EQ(dataManage.id, "before"_q);
    EXPECT_EQ(server.requestCount(), 0);
}

TEST_F(DataManageOperations, CountAsksWithTheCondition)
{
    RKDataManageCondition condition;
    condition.cellId = "c1"_q;
    condition.category = "slope"_q;
    int count = -1;
    server.answerJson(200, R"({"count":22})");
    EXPECT_TRUE(data.getDataManageRangeCount(condition, count));
    EXPECT_EQ(count, 22);
    EXPECT_EQ(lastPath(), "projects/p7/dataManages"_q);
    EXPECT_EQ(lastQuery(),
              (Query{{"where"_q, R"({"category":{"$options":"i","$regex":"slope"},"cellId":"c1"})"_q},
                     {"only_count"_q, "true"_q}}));
}

TEST_F(DataManageOperations, ACountIsZeroWhenTheReplyHasNoneOrFailed)
{
    int count = -1;
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.getDataManageRangeCount({}, count));
    EXPECT_EQ(count, 0);
    count = -1;
    server.answerJson(500, "{}");
    EXPECT_FALSE(data.getDataManageRangeCount({}, count));
    EXPECT_EQ(count, 0);
}

TEST_F(DataManageOperations, APageAsksToExpandAndIsCached)
{
    RKDataManageCondition condition;
    condition.cellId = "c1"_q;
    QList<RKDataManage> dataManages;
    server.answerJson(200, R"([{"_id":"d1","cellId":"c1","subCategory":{"category":"slope","alias":"SM"}},
                               {"_id":"d2"}])");
    EXPECT_TRUE(data.getDataManageRangeData(condition, 20, 10, dataManages));
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"cellId":"c1"})"_q},
                                  {"skip"_q, "20"_q},
                                  {"limit"_q, "10"_q},
                                  {"expand"_q, "true"_q}}));
    ASSERT_EQ(dataManages.size(), 2);
    EXPECT_EQ(dataManages.at(0).alias, "SM"_q);
    RKDataManage dataManage;
    EXPECT_TRUE(data.getDataManageById("d1"_q, dataManage));
    EXPECT_EQ(dataManage.category, "slope"_q);
    EXPECT_TRUE(data.getDataManageById("d2"_q, dataManage))
        << "without a sub-category, but cached all the same";
    EXPECT_TRUE(dataManage.category.isEmpty() && dataManage.alias.isEmpty());
    EXPECT_EQ(server.requestCount(), 1);
}

TEST_F(DataManageOperations, PagesAddToTheCache)
{
    readPage(R"([{"_id":"d1"}])");
    readPage(R"([{"_id":"d2","fileId":"f1"},{"_id":"d2","fileId":"f2"}])");
    RKDataManage dataManage;
    EXPECT_TRUE(data.getDataManageById("d1"_q, dataManage));
    EXPECT_TRUE(data.getDataManageById("d2"_q, dataManage));
    EXPECT_EQ(dataManage.fileId, "f2"_q) << "the later of two rows wins";
}

TEST_F(DataManageOperations, APageCachesWhatTheCallerHadInTheList)
{
    QList<RKDataManage> dataManages{RKDataManage()};
    dataManages.first().id = "mine"_q;
    EXPECT_EQ(readPage(R"([{"_id":"d1"}])", dataManages).size(), 2);
    RKDataManage dataManage;
    EXPECT_TRUE(data.getDataManageById("mine"_q, dataManage));
}

TEST_F(DataManageOperations, AFailedPageCachesNothing)
{
    QList<RKDataManage> dataManages{RKDataManage()};
    dataManages.first().id = "mine"_q;
    server.answerJson(500, R"({"message":"no","status":500})");
    EXPECT_FALSE(data.getDataManageRangeData({}, 0, 20, dataManages));
    EXPECT_EQ(dataManages.size(), 1);
    RKDataManage dataManage;
    EXPECT_FALSE(data.getDataManageById("mine"_q, dataManage));
}

TEST_F(DataManageOperations, DeleteCascadesAndKeepsTheCache)
{
    readPage(R"([{"_id":"d1","fileId":"f1"}])");
    server.answerJson(200, "{}");
    EXPECT_TRUE(data.deletePointData("d1"_q));
    EXPECT_EQ(lastMethod(), "DELETE");
    EXPECT_EQ(lastPath(), "dataManages/d1"_q);
    EXPECT_EQ(lastQuery(), (Query{{"cascade"_q, "true"_q}}));
    RKDataManage dataManage;
    EXPECT_TRUE(data.getDataManageById("d1"_q, dataManage));
    EXPECT_EQ(dataManage.fileId, "f1"_q);
    data.clear();
    EXPECT_FALSE(data.getDataManageById("d1"_q, dataManage));
}

TEST_F(DataManageOperations, ARefusedDeleteIsAFailure)
{
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_FALSE(data.deletePointData("d1"_q));
}

TEST_F(DataManageOperations, HistoryIsCountedAndPagedUnderItsDataManage)
{
    RKHistoryDataCondition condition;
    condition.dataManageId = "d1"_q;
    int count = -1;
    server.answerJson(200, R"({"count":2})");
    EXPECT_TRUE(data.getHistoryRangeCount(condition, count));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(lastPath(), "dataManages/d1/historyDatas"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"only_count"_q, "true"_q}}));

    QList<HistoryData> history{HistoryData()};
    server.answerJson(200, R"([{"_id":"h1","insertCount":672},{"_id":"h2","insertCount":671}])");
    EXPECT_TRUE(data.getHistoryRangeData(condition, 0, 10, history));
    EXPECT_EQ(lastPath(), "dataManages/d1/historyDatas"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"skip"_q, "0"_q}, {"limit"_q, "10"_q}}));
    ASSERT_EQ(history.size(), 3);
    EXPECT_EQ(history.at(2).insertCount, 671);
    EXPECT_TRUE(history.at(1).id.isEmpty() && history.at(2).id.isEmpty());
}

TEST_F(DataManageOperations, AMarkerInTheDataManageTakesTheDocumentOfItsHistory)
{
    RKHistoryDataCondition condition;
    condition.dataManageId = "d%2"_q;
    int count = -1;
    server.answerJson(200, R"({"count":2})");
    EXPECT_TRUE(data.getHistoryRangeCount(condition, count));
    EXPECT_EQ(lastPath(), "dataManages/d{}/historyDatas"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"only_count"_q, "true"_q}}));

    QList<HistoryData> history;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getHistoryRangeData(condition, 40, 20, history));
    EXPECT_EQ(lastPath(), "dataManages/d{}/historyDatas"_q);
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"skip"_q, "40"_q}, {"limit"_q, "20"_q}}));

    condition.dataManageId = "d%3"_q;
    server.answerJson(200, "[]");
    EXPECT_TRUE(data.getHistoryRangeData(condition, 40, 20, history));
    EXPECT_EQ(lastPath(), "dataManages/d40/historyDatas"_q);
}

TEST_F(DataManageOperations, HistoryOfNoDataManageHasAnEmptySegment)
{
    QList<HistoryData> history;
    server.answerJson(404, "{}");
    EXPECT_FALSE(data.getHistoryRangeData({}, 0, 10, history));
    EXPECT_EQ(lastPath(), "dataManages//historyDatas"_q);
    int count = -1;
    server.answerJson(404, "{}");
    EXPECT_FALSE(data.getHistoryRangeCount({}, count));
    EXPECT_EQ(count, 0);
}

} // namespace
