#include "Contract.h"
#include "ExportedOperations.h"
#include "Operations.h"

// What a token may not do is refused, and changes nothing.

namespace {

class RefusalContract : public ReaderContract
{
protected:
    void SetUp() override
    {
        ReaderContract::SetUp();
        if (IsSkipped()) {
            return;
        }
        monitoring = created("VH"_q);
        group.cellId = monitoring.id;
        group.subCategoryId = subCategories().first().id;
        group.groupName = "Corner"_q;
        group.groupPoint = QStringList{"S1"_q};
        group.totalVar = 5;
        ASSERT_TRUE(data.createGroup(group)) << lastErrorText();
        measured = point(monitoring.id, "S1"_q, "1"_q);
        measured.initialValue = 1;
        measured.data = {sample(1, december(18), 9)};
        deliver({measured});
        dataManageId = idsOf(dataManagesOf(monitoring.id)).value(0);
        actAsReader();
    }

    void TearDown() override
    {
        if (!IsSkipped()) {
            expectUnchanged();
        }
        ReaderContract::TearDown();
    }

    void expectUnchanged()
    {
        data.clear();
        EXPECT_EQ(data.getMonitoringName(monitoring.id), monitoring.name);
        QList<PointLocSetting> groups;
        EXPECT_TRUE(data.getGroupsByCellId(monitoring.id, groups, false));
        EXPECT_EQ(idsOf(groups), QStringList{group.id});
        EXPECT_EQ(groups.value(0).groupName, "Corner"_q);
        const QList<RKPointLocation> points = pointsOf(monitoring.id);
        EXPECT_EQ(namesOf(points), QStringList{"S1"_q});
        EXPECT_EQ(points.value(0).data, measured.data);
        EXPECT_TRUE(points.value(0).links.isEmpty());
        EXPECT_EQ(idsOf(dataManagesOf(monitoring.id)), QStringList{dataManageId});
        RKMonitoringCondition ours;
        ours.name = deployment().run;
        int count = -1;
        EXPECT_TRUE(data.getMonitoringRangeCount(ours, count));
        EXPECT_EQ(count, 1);
    }

    RKMonitoring monitoring;
    PointLocSetting group;
    RKPointLocation measured;
    QString dataManageId;
};

using WrongTokenContract = Contract;

} // namespace

TEST_F(WrongTokenContract, EveryOperationIsRefused)
{
    const std::vector<Operation> operations = allOperations();
    // getDataManageById sends nothing that could be refused.
    EXPECT_EQ(operations.size() + 1, exportedOperations().size());
    ASSERT_TRUE(NetworkManager::instance().setBearerToken("x"_q + deployment().editorToken));
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        const int before = requestCount();
        EXPECT_TRUE(operation.fails(*RKMonitoringData::instance()));
        EXPECT_EQ(requestCount(), before + 1);
        EXPECT_EQ(lastStatus(), 401);
    }
}

TEST_F(WrongTokenContract, CachesStayAsTheyWere)
{
    const RKMonitoring monitoring = created("VH"_q);
    ASSERT_TRUE(NetworkManager::instance().setBearerToken("x"_q + deployment().editorToken));
    QList<RKMonitoring> page;
    EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 10, page));
    EXPECT_TRUE(page.isEmpty());
    EXPECT_EQ(data.getMonitoringName(monitoring.id), monitoring.name);
}

TEST_F(RefusalContract, ReaderReadsWhatTheEditorWrote)
{
    expectUnchanged();
    RKMonitoring read;
    EXPECT_TRUE(data.getMonitoringById(monitoring.id, read, false));
    EXPECT_EQ(read.alarmTo, monitoring.alarmTo);
    RKAlarmCondition alarms;
    alarms.isAllCell = false;
    alarms.cellIds = QStringList{monitoring.id};
    int count = -1;
    EXPECT_TRUE(data.getAlarmRangeCount(alarms, count));
    EXPECT_EQ(count, 1);
    QMap<QDate, QList<RKPointLocationChartData>> chartData;
    EXPECT_TRUE(data.getDepthPointLocation(ofCell(monitoring.id), chartData));
    EXPECT_EQ(chartData.size(), 1);
}

TEST_F(RefusalContract, ReaderChangesNoMonitoring)
{
    RKMonitoring refused;
    refused.name = mine("LS-a"_q);
    refused.category = category();
    EXPECT_FALSE(data.createMonitoring(refused));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_TRUE(refused.id.isEmpty());
    EXPECT_TRUE(refused.name.isEmpty());

    RKMonitoring changed = monitoring;
    changed.name = mine("changed"_q);
    EXPECT_FALSE(data.updateMonitoring(changed));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_TRUE(changed.name.isEmpty());
    EXPECT_EQ(data.getMonitoringName(monitoring.id), monitoring.name); // from the cache

    EXPECT_FALSE(data.deleteMonitoring(monitoring.id));
    EXPECT_EQ(lastStatus(), 403);
}

TEST_F(RefusalContract, ReaderDeliversAndLinksNothing)
{
    RKPointLocation more = measured;
    more.data = {sample(2, december(19), 10)};
    EXPECT_FALSE(data.createPointLocation({more}));
    EXPECT_EQ(lastStatus(), 403);
    QString message;
    EXPECT_FALSE(data.createPointLocation({{more}}, message));
    EXPECT_FALSE(message.isEmpty());
    RKPointLocationCondition condition = ofCell(monitoring.id);
    condition.names = QStringList{"S1"_q};
    EXPECT_FALSE(data.updatePointLocation(condition, {{"model"_q, {"m"_q}}}));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_FALSE(data.deletePointData(dataManageId));
    EXPECT_EQ(lastStatus(), 403);
}

TEST_F(RefusalContract, ReaderChangesNoGroup)
{
    PointLocSetting refused = group;
    refused.id.clear();
    refused.groupName = "Edge"_q;
    EXPECT_FALSE(data.createGroup(refused));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_TRUE(refused.groupName.isEmpty());

    PointLocSetting changed = group;
    changed.groupName = "changed"_q;
    EXPECT_FALSE(data.updateGroup(group, changed));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_TRUE(changed.groupName.isEmpty());

    EXPECT_FALSE(data.deleteGroup(group.id));
    EXPECT_EQ(lastStatus(), 403);
}
