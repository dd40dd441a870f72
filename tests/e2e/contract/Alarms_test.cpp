#include "Contract.h"

// Alarms that deliveries raise, their points, and the depths of these.

namespace {

class AlarmContract : public Contract
{
protected:
    AlarmContract() : cellId(created("VH"_q).id), otherCellId(created("VI"_q).id)
    {
        limit(cellId);
        limit(otherCellId);
    }

    void limit(const QString& cell)
    {
        PointLocSetting group;
        group.cellId = cell;
        group.subCategoryId = subCategories().first().id;
        group.groupName = "Corner"_q;
        group.groupPoint = QStringList{"S1"_q, "I1"_q};
        group.dayVarValue = 2;
        group.totalVar = 5;
        EXPECT_TRUE(data.createGroup(group)) << lastErrorText();
    }

    RKPointLocation measuredIn(const QString& cell, const QString& name, const QString& depth,
                               const RKPointLocationData& sample)
    {
        RKPointLocation measured = point(cell, name, depth);
        measured.initialValue = 1;
        measured.data = {sample};
        return measured;
    }

    RKPointLocation measured(const QString& name, const QString& depth, const RKPointLocationData& sample)
    {
        return measuredIn(cellId, name, depth, sample);
    }

    // A quiet reading and one over the limits; and in the other monitoring one of a point at three depths
    // besides. A monitoring has one alarm a day.
    void raiseTwo()
    {
        deliver({measured("S1"_q, {}, sample(1, december(18), 1))});
        deliver({measured("S1"_q, {}, sample(2, december(20), 8.5))});
        deliver({measuredIn(otherCellId, "S1"_q, {}, sample(3, december(21), 8.5)),
                 measuredIn(otherCellId, "I1"_q, "10"_q, sample(1, december(21, 5), 4)),
                 measuredIn(otherCellId, "I1"_q, "2.5"_q, sample(1, december(21, 5), -8)),
                 measuredIn(otherCellId, "I1"_q, "1"_q, sample(1, december(21, 5), 7))});
    }

    RKAlarmCondition ofOurCells() const
    {
        RKAlarmCondition condition;
        condition.isAllCell = false;
        condition.cellIds = QStringList{cellId, otherCellId};
        return condition;
    }

    int countFound(const RKAlarmCondition& condition)
    {
        int count = -1;
        EXPECT_TRUE(data.getAlarmRangeCount(condition, count)) << lastErrorText();
        return count;
    }

    int countFound(const RKAlarmDetailCondition& condition)
    {
        int count = -1;
        EXPECT_TRUE(data.getAlarmDetailRangeCount(condition, count)) << lastErrorText();
        return count;
    }

    QList<RKAlarm> alarms(const RKAlarmCondition& condition)
    {
        return allPages<RKAlarm>(1, [&](int skip, int limit, QList<RKAlarm>& page) {
            return data.getAlarmRangeData(condition, skip, limit, page);
        });
    }

    QList<RKAlarmDetail> details(const RKAlarmDetailCondition& condition)
    {
        return allPages<RKAlarmDetail>(1, [&](int skip, int limit, QList<RKAlarmDetail>& page) {
            return data.getAlarmDetailRangeData(condition, skip, limit, page);
        });
    }

    // The details of the latest alarm.
    RKAlarmDetailCondition ofLatest()
    {
        RKAlarmDetailCondition condition;
        condition.alarmManId = idsOf(alarms(ofOurCells())).value(0);
        return condition;
    }

    QList<AlarmThree> depths(const QString& detailId, const QString& depth = QString())
    {
        QList<AlarmThree> depths;
        EXPECT_TRUE(data.getAlarmThreeByDetailId(detailId, depth, depths)) << lastErrorText();
        return depths;
    }

    QString cellId;
    QString otherCellId;
};

} // namespace

TEST_F(AlarmContract, NoneWithinTheLimits)
{
    deliver({measured("S1"_q, {}, sample(1, december(18), 1))});
    deliver({measured("S1"_q, {}, sample(2, december(19), 3))});    // both limits are met, not passed
    deliver({measured("S9"_q, {}, sample(1, december(19), 1000))}); // in no group
    EXPECT_EQ(countFound(ofOurCells()), 0);
    EXPECT_TRUE(alarms(ofOurCells()).isEmpty());
}

TEST_F(AlarmContract, PagesHoldWhatIsCountedOnceNewestFirst)
{
    raiseTwo();
    EXPECT_EQ(countFound(ofOurCells()), 2);
    const QList<RKAlarm> found = alarms(ofOurCells());
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].pointCounts, 2);
    EXPECT_EQ(found[1].pointCounts, 1);
    EXPECT_GE(found[0].alarmTime, found[1].alarmTime);
    EXPECT_EQ(found[0].cellId, otherCellId);
    EXPECT_EQ(found[0].cellName, mine("VI"_q));
    EXPECT_EQ(found[1].cellId, cellId);
    EXPECT_EQ(found[1].cellName, mine("VH"_q));
    for (const RKAlarm& alarm : found) {
        EXPECT_EQ(alarm.id.size(), 24);
        EXPECT_EQ(alarm.subCategoryId, subCategories().first().id);
        EXPECT_TRUE(alarm.alarmTime.isValid());
    }
}

TEST_F(AlarmContract, FindsByMonitoringCategoryAndTime)
{
    raiseTwo();
    RKAlarmCondition named;
    named.name = minePattern("vh$"_q);
    EXPECT_EQ(countFound(named), 1);
    named.name = minePattern("other"_q);
    EXPECT_EQ(countFound(named), 0);

    RKAlarmCondition inCategory = ofOurCells();
    inCategory.isAllCategory = false;
    inCategory.categories = QStringList{category()};
    EXPECT_EQ(countFound(inCategory), 2);
    inCategory.subCategories = QStringList{subCategories().first().id};
    EXPECT_EQ(countFound(inCategory), 2);
    inCategory.subCategories = QStringList{mine("no such sub-category"_q)};
    EXPECT_EQ(countFound(inCategory), 0);
    inCategory.subCategories.clear();
    inCategory.categories = QStringList{mine("no such category"_q)};
    EXPECT_EQ(countFound(inCategory), 0);

    RKAlarmCondition period = ofOurCells();
    const QDateTime raised = alarms(ofOurCells()).first().alarmTime;
    period.isAllTime = false;
    period.startTime = period.endTime = raised.addDays(-2);
    EXPECT_EQ(countFound(period), 0);
    period.endTime = raised;
    EXPECT_EQ(countFound(period), 2);
}

TEST_F(AlarmContract, DetailSaysByHowMuch)
{
    deliver({measured("S1"_q, {}, sample(1, december(18), 1))});
    deliver({measured("S1"_q, {}, sample(2, december(20), 8.5))});
    const QList<RKAlarmDetail> found = details(ofLatest());
    ASSERT_EQ(found.size(), 1);
    const RKAlarmDetail& detail = found.first();
    EXPECT_EQ(detail.alarmManId, ofLatest().alarmManId);
    EXPECT_EQ(detail.pointName, "S1"_q);
    EXPECT_EQ(detail.totalVar, "7.5"_q);
    EXPECT_EQ(detail.totalBeyound, 2.5);
    EXPECT_EQ(detail.dayVar, "3.75"_q); // over two days
    EXPECT_EQ(detail.dayBeyound, 1.75);
    EXPECT_FALSE(detail.isThreeVar);
    EXPECT_FALSE(detail.isInclinometer);
    EXPECT_EQ(detail.monitorCount, 2);
    EXPECT_EQ(detail.monitorTime, december(20));
    EXPECT_TRUE(detail.depth.isEmpty());
    EXPECT_TRUE(detail.alarmTime.isValid());
    EXPECT_TRUE(depths(detail.id).isEmpty());
}

TEST_F(AlarmContract, DetailOfSeveralDepthsHasTheWorst)
{
    raiseTwo();
    const RKAlarmDetailCondition condition = ofLatest();
    EXPECT_EQ(countFound(condition), 2);
    const QList<RKAlarmDetail> found = details(condition);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[1].pointName, "S1"_q);
    const RKAlarmDetail& atDepths = found[0];
    EXPECT_EQ(atDepths.pointName, "I1"_q);
    EXPECT_TRUE(atDepths.isThreeVar);
    EXPECT_EQ(atDepths.depth, "2.5"_q);
    EXPECT_EQ(atDepths.totalVar, "-9"_q);
    EXPECT_EQ(atDepths.totalBeyound, 4);
    EXPECT_TRUE(atDepths.dayVar.isEmpty());
    EXPECT_EQ(atDepths.dayBeyound, 0);
}

TEST_F(AlarmContract, DetailsByPointAndTimeOfMeasurement)
{
    raiseTwo();
    RKAlarmDetailCondition condition = ofLatest();
    condition.pointName = "^i"_q;
    EXPECT_EQ(countFound(condition), 1);
    EXPECT_EQ(details(condition).size(), 1);
    condition.pointName = "x"_q;
    EXPECT_EQ(countFound(condition), 0);
    condition.pointName.clear();
    condition.isAllTime = false;
    condition.startTime = condition.endTime = QDateTime(QDate(2015, 12, 21), QTime(0, 0), Qt::UTC);
    EXPECT_EQ(countFound(condition), 2);
    condition.startTime = december(21, 1);
    EXPECT_EQ(countFound(condition), 1);
}

TEST_F(AlarmContract, DepthsRise)
{
    raiseTwo();
    const QString detailId = details(ofLatest()).value(0).id;
    const QList<AlarmThree> all = depths(detailId);
    ASSERT_EQ(all.size(), 3);
    const QStringList expectedDepths{"1"_q, "2.5"_q, "10"_q};
    const QList<double> expectedValues{6, -9, 3};
    for (int i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].depth, expectedDepths[i]);
        EXPECT_EQ(all[i].totalValue, expectedValues[i]);
        EXPECT_EQ(all[i].detailId, detailId);
        EXPECT_EQ(all[i].pointName, "I1"_q);
        EXPECT_EQ(all[i].monitorCount, 1);
        EXPECT_EQ(all[i].monitorTime, december(21, 5));
    }
    const QList<AlarmThree> one = depths(detailId, "2.5"_q);
    ASSERT_EQ(one.size(), 1);
    EXPECT_EQ(one.first().id, all[1].id);
    EXPECT_TRUE(depths(detailId, "7"_q).isEmpty());
}

TEST_F(AlarmContract, GoWithTheirData)
{
    raiseTwo();
    const RKAlarmDetailCondition condition = ofLatest();
    for (const QString& cell : {cellId, otherCellId}) {
        for (const RKDataManage& dataManage : dataManagesOf(cell)) {
            ASSERT_TRUE(data.deletePointData(dataManage.id)) << lastErrorText();
        }
    }
    EXPECT_EQ(countFound(ofOurCells()), 0);
    int count = -1;
    EXPECT_FALSE(data.getAlarmDetailRangeCount(condition, count));
    EXPECT_EQ(count, 0);
}
