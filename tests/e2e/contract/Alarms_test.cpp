#include "Contract.h"

// Alarms that deliveries raise, their points, and the depths of these.

namespace {

class AlarmContract : public Contract
{
protected:
    AlarmContract() : cellId(created("VH"_q).id)
    {
        PointLocSetting group;
        group.cellId = cellId;
        group.subCategoryId = subCategories().first().id;
        group.groupName = "Corner"_q;
        group.groupPoint = QStringList{"S1"_q, "I1"_q};
        group.dayVarValue = 2;
        group.totalVar = 5;
        EXPECT_TRUE(data.createGroup(group)) << lastErrorText();
    }

    RKPointLocation measured(const QString& name, const QString& depth, const RKPointLocationData& sample)
    {
        RKPointLocation measured = point(cellId, name, depth);
        measured.initialValue = name == "S1"_q ? 1 : 0;
        measured.data = {sample};
        return measured;
    }

    // A quiet reading, one over the limits, and one of an inclinometer at three depths.
    void raiseTwo()
    {
        deliver({measured("S1"_q, {}, sample(1, december(18), 1))});
        deliver({measured("S1"_q, {}, sample(2, december(20), 8.5))});
        deliver({measured("S1"_q, {}, sample(3, december(21), 8.5)),
                 measured("I1"_q, "10"_q, sample(1, december(21, 5), 3)),
                 measured("I1"_q, "2.5"_q, sample(1, december(21, 5), -9)),
                 measured("I1"_q, "1"_q, sample(1, december(21, 5), 6))});
    }

    RKAlarmCondition ofOurCell() const
    {
        RKAlarmCondition condition;
        condition.isAllCell = false;
        condition.cellIds = QStringList{cellId};
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
        condition.alarmManId = idsOf(alarms(ofOurCell())).value(0);
        return condition;
    }

    QList<AlarmThree> depths(const QString& detailId, const QString& depth = QString())
    {
        QList<AlarmThree> depths;
        EXPECT_TRUE(data.getAlarmThreeByDetailId(detailId, depth, depths)) << lastErrorText();
        return depths;
    }

    QString cellId;
};

} // namespace

TEST_F(AlarmContract, NoneWithinTheLimits)
{
    deliver({measured("S1"_q, {}, sample(1, december(18), 1))});
    deliver({measured("S1"_q, {}, sample(2, december(19), 3))});    // both limits are met, not passed
    deliver({measured("S9"_q, {}, sample(1, december(19), 1000))}); // in no group
    EXPECT_EQ(countFound(ofOurCell()), 0);
    EXPECT_TRUE(alarms(ofOurCell()).isEmpty());
}

TEST_F(AlarmContract, PagesHoldWhatIsCountedOnceNewestFirst)
{
    raiseTwo();
    EXPECT_EQ(countFound(ofOurCell()), 2);
    const QList<RKAlarm> found = alarms(ofOurCell());
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].pointCounts, 2);
    EXPECT_EQ(found[1].pointCounts, 1);
    EXPECT_GE(found[0].alarmTime, found[1].alarmTime);
    for (const RKAlarm& alarm : found) {
        EXPECT_EQ(alarm.id.size(), 24);
        EXPECT_EQ(alarm.cellId, cellId);
        EXPECT_EQ(alarm.cellName, mine("VH"_q));
        EXPECT_EQ(alarm.subCategoryId, subCategories().first().id);
        EXPECT_TRUE(alarm.alarmTime.isValid());
    }
}

TEST_F(AlarmContract, FindsByMonitoringCategoryAndTime)
{
    raiseTwo();
    RKAlarmCondition named;
    named.name = minePattern("vh$"_q);
    EXPECT_EQ(countFound(named), 2);
    named.name = minePattern("other"_q);
    EXPECT_EQ(countFound(named), 0);

    RKAlarmCondition inCategory = ofOurCell();
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

    RKAlarmCondition period = ofOurCell();
    const QDateTime raised = alarms(ofOurCell()).first().alarmTime;
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
    const RKAlarmDetail& inclinometer = found[0];
    EXPECT_EQ(inclinometer.pointName, "I1"_q);
    EXPECT_TRUE(inclinometer.isThreeVar);
    EXPECT_TRUE(inclinometer.isInclinometer);
    EXPECT_EQ(inclinometer.depth, "2.5"_q);
    EXPECT_EQ(inclinometer.totalVar, "-9"_q);
    EXPECT_EQ(inclinometer.totalBeyound, 4);
    EXPECT_TRUE(inclinometer.dayVar.isEmpty());
    EXPECT_EQ(inclinometer.dayBeyound, 0);
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
    for (const RKDataManage& dataManage : dataManagesOf(cellId)) {
        ASSERT_TRUE(data.deletePointData(dataManage.id)) << lastErrorText();
    }
    EXPECT_EQ(countFound(ofOurCell()), 0);
    int count = -1;
    EXPECT_FALSE(data.getAlarmDetailRangeCount(condition, count));
    EXPECT_EQ(count, 0);
}
