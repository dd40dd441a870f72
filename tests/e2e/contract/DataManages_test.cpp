#include "Contract.h"

// What was delivered, its history, and its deletion.

namespace {

class DataManageContract : public Contract
{
protected:
    DataManageContract() : cellId(created("VH"_q).id) {}

    void deliverSamples(const QString& name, const QList<RKPointLocationData>& samples, const QString& fileId)
    {
        RKPointLocation measured = point(cellId, name);
        measured.data = samples;
        measured.fileId = fileId;
        deliver({measured});
    }

    RKDataManageCondition ofOurCell() const
    {
        RKDataManageCondition condition;
        condition.cellId = cellId;
        return condition;
    }

    RKHistoryDataCondition ofOnly()
    {
        RKHistoryDataCondition condition;
        condition.dataManageId = idsOf(dataManagesOf(cellId)).value(0);
        return condition;
    }

    int countFound(const RKDataManageCondition& condition)
    {
        int count = -1;
        EXPECT_TRUE(data.getDataManageRangeCount(condition, count)) << lastErrorText();
        return count;
    }

    int countFound(const RKHistoryDataCondition& condition)
    {
        int count = -1;
        EXPECT_TRUE(data.getHistoryRangeCount(condition, count)) << lastErrorText();
        return count;
    }

    QList<HistoryData> historyOf(const RKHistoryDataCondition& condition)
    {
        return allPages<HistoryData>(2, [&](int skip, int limit, QList<HistoryData>& page) {
            return data.getHistoryRangeData(condition, skip, limit, page);
        });
    }

    QString cellId;
};

} // namespace

TEST_F(DataManageContract, HoldsTheLatestDelivery)
{
    deliverSamples("S1"_q, {sample(1, december(18), 1), sample(2, december(19), 2)}, "week 1.csv"_q);
    deliverSamples("S1"_q, {sample(3, december(25), 3)}, "week 2.csv"_q);
    const QList<RKDataManage> dataManages = dataManagesOf(cellId);
    ASSERT_EQ(dataManages.size(), 1);
    const RKDataManage& only = dataManages.first();
    EXPECT_EQ(only.id.size(), 24);
    EXPECT_EQ(only.cellId, cellId);
    EXPECT_EQ(only.category, category());
    EXPECT_EQ(only.subCategoryId, subCategories().first().id);
    EXPECT_EQ(only.alias, subCategories().first().alias);
    EXPECT_EQ(only.lastDate, december(25));
    EXPECT_EQ(only.lastCount, 1);
    EXPECT_EQ(only.fileId, "week 2.csv"_q);
    EXPECT_FALSE(only.updatedBy.isEmpty());
    EXPECT_TRUE(only.updatedAt.isValid());

    const int before = requestCount();
    RKDataManage cached;
    ASSERT_TRUE(data.getDataManageById(only.id, cached));
    EXPECT_EQ(cached.id, only.id);
    EXPECT_EQ(cached.fileId, "week 2.csv"_q);
    EXPECT_EQ(requestCount(), before);
    RKDataManage unknown;
    EXPECT_FALSE(data.getDataManageById("000000000000000000000000"_q, unknown));
}

// As many rows as the category has sub-categories: the latest delivery comes first.
TEST_F(DataManageContract, PagesHoldWhatIsCountedOnceLatestFirst)
{
    QStringList expected;
    for (const RKMonitoringSubCategory& subCategory : subCategories()) {
        RKPointLocation measured = point(cellId, "S1"_q);
        measured.subCategoryId = subCategory.id;
        measured.data = {sample(1, december(18), 1)};
        deliver({measured});
        expected.prepend(subCategory.id);
    }
    EXPECT_EQ(countFound(ofOurCell()), expected.size());
    const auto dataManages = allPages<RKDataManage>(1, [&](int skip, int limit, QList<RKDataManage>& page) {
        return data.getDataManageRangeData(ofOurCell(), skip, limit, page);
    });
    QStringList found;
    for (const RKDataManage& dataManage : dataManages) {
        found.append(dataManage.subCategoryId);
    }
    EXPECT_EQ(found, expected);
}

TEST_F(DataManageContract, FindsByCategoryAndTimeOfCreation)
{
    deliverSamples("S1"_q, {sample(1, december(18), 1)}, {});
    RKDataManageCondition condition = ofOurCell();
    condition.category = QLatin1Char('^') + category().left(1).toLower();
    EXPECT_EQ(countFound(condition), 1);
    condition.category = mine("no such category"_q);
    EXPECT_EQ(countFound(condition), 0);

    RKDataManageCondition period = ofOurCell();
    const QDateTime changed = dataManagesOf(cellId).first().updatedAt;
    period.isAllTime = false;
    period.startTime = period.endTime = changed.addDays(-1);
    EXPECT_EQ(countFound(period), 0);
    period.endTime = changed;
    EXPECT_EQ(countFound(period), 1);
}

TEST_F(DataManageContract, HistoryHasEachDeliveryNewestFirst)
{
    deliverSamples("S1"_q, {sample(1, december(18), 1), sample(2, december(19), 2)}, "1.csv"_q);
    deliverSamples("S1"_q, {sample(2, december(19), 2), sample(3, december(25), 3)}, "2.csv"_q);
    deliverSamples("S1"_q, {sample(2, december(19), 2), sample(3, december(25), 3)},
                   "2.csv"_q); // nothing new
    deliverSamples("S2"_q, {sample(1, december(26), 4)}, "3.csv"_q);

    EXPECT_EQ(countFound(ofOnly()), 3);
    const QList<HistoryData> history = historyOf(ofOnly());
    ASSERT_EQ(history.size(), 3);
    const QStringList files{"3.csv"_q, "2.csv"_q, "1.csv"_q};
    const QList<int> inserted{1, 1, 2};
    const QList<int> held{4, 3, 2};
    const QList<QDateTime> dates{december(26), december(25), december(19)};
    for (int i = 0; i < history.size(); ++i) {
        EXPECT_EQ(history[i].fileId, files[i]);
        EXPECT_EQ(history[i].insertCount, inserted[i]) << i;
        EXPECT_EQ(history[i].lastCount, held[i]) << i;
        EXPECT_EQ(history[i].lastDate, dates[i]);
        EXPECT_TRUE(history[i].id.isEmpty());
        EXPECT_FALSE(history[i].createdBy.isEmpty());
        EXPECT_TRUE(history[i].createdAt.isValid());
    }
}

TEST_F(DataManageContract, HistoryByTimeOfDataOrOfChange)
{
    deliverSamples("S1"_q, {sample(1, december(18), 1)}, {});
    deliverSamples("S1"_q, {sample(2, december(25), 2)}, {});
    RKHistoryDataCondition ofData = ofOnly();
    ofData.isAllTime = false;
    ofData.startTime = ofData.endTime = QDateTime(QDate(2015, 12, 25), QTime(0, 0), Qt::UTC);
    EXPECT_EQ(countFound(ofData), 1);

    RKHistoryDataCondition ofChange = ofData;
    ofChange.timeType = 2;
    EXPECT_EQ(countFound(ofChange), 0);
    ofChange.endTime = historyOf(ofOnly()).first().updatedAt;
    EXPECT_EQ(countFound(ofChange), 2);
}

TEST_F(DataManageContract, DeletionTakesAllThatWasDelivered)
{
    deliverSamples("S1"_q, {sample(1, december(18), 1)}, {});
    PointLocSetting group;
    group.cellId = cellId;
    group.subCategoryId = subCategories().first().id;
    group.groupName = "Corner"_q;
    ASSERT_TRUE(data.createGroup(group)) << lastErrorText();
    const RKHistoryDataCondition history = ofOnly();

    ASSERT_TRUE(data.deletePointData(history.dataManageId)) << lastErrorText();
    EXPECT_EQ(countFound(ofOurCell()), 0);
    EXPECT_TRUE(pointsOf(cellId).isEmpty());
    QMap<QDate, QList<RKPointLocationChartData>> chartData;
    EXPECT_TRUE(data.getNormalPointLocation(ofCell(cellId), chartData));
    EXPECT_TRUE(chartData.isEmpty());
    int count = -1;
    EXPECT_FALSE(data.getHistoryRangeCount(history, count));
    EXPECT_EQ(count, 0);

    RKDataManage cached;
    EXPECT_TRUE(data.getDataManageById(history.dataManageId, cached));
    QList<PointLocSetting> groups;
    EXPECT_TRUE(data.getGroupsByCellId(cellId, groups, false));
    EXPECT_EQ(idsOf(groups), QStringList{group.id});
    EXPECT_FALSE(data.deletePointData(history.dataManageId));
}
