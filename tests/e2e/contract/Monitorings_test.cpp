#include "Contract.h"

#include <NetworkEventLoop.h>
#include <QJsonArray>

// Monitorings are created, read, found, counted, paged, changed and deleted.

namespace {

class MonitoringContract : public Contract
{
protected:
    RKMonitoring stored(const QString& id)
    {
        RKMonitoring monitoring;
        EXPECT_TRUE(data.getMonitoringById(id, monitoring, false)) << lastErrorText();
        return monitoring;
    }

    QStringList namesFound(const RKMonitoringCondition& condition, int skip = 0, int limit = 1000)
    {
        QList<RKMonitoring> monitorings;
        data.getMonitoringRangeData(condition, skip, limit, monitorings);
        EXPECT_EQ(lastStatus(), 200) << lastErrorText();
        return namesOf(monitorings);
    }

    int countFound(const RKMonitoringCondition& condition)
    {
        int count = -1;
        EXPECT_TRUE(data.getMonitoringRangeCount(condition, count)) << lastErrorText();
        return count;
    }

    static RKMonitoringCondition byPattern(const QString& pattern)
    {
        RKMonitoringCondition condition;
        condition.name = minePattern(pattern);
        return condition;
    }

    static RKMonitoringCondition byExactName(const QString& name)
    {
        RKMonitoringCondition condition;
        condition.exactName = name;
        return condition;
    }

    static QStringList mineAll(QStringList names)
    {
        for (QString& name : names) {
            name = mine(name);
        }
        return names;
    }
};

} // namespace

TEST_F(MonitoringContract, WhatIsCreatedComesBack)
{
    const RKMonitoring monitoring = created("VH"_q, "model-1"_q);
    EXPECT_EQ(monitoring.id.size(), 24);
    EXPECT_EQ(monitoring.name, mine("VH"_q));
    EXPECT_FALSE(monitoring.createdBy.isEmpty());
    EXPECT_TRUE(monitoring.createdAt.isValid());

    const RKMonitoring read = stored(monitoring.id);
    EXPECT_EQ(read.id, monitoring.id);
    EXPECT_EQ(read.name, mine("VH"_q));
    EXPECT_EQ(read.category, category());
    EXPECT_EQ(read.modelId, "model-1"_q);
    EXPECT_EQ(read.alarmTo, (QStringList{"ana"_q, "ben"_q}));
    EXPECT_EQ(read.createdAt, monitoring.createdAt);
    EXPECT_EQ(read.createdBy, monitoring.createdBy);
    EXPECT_EQ(read.updatedAt, monitoring.updatedAt);
    EXPECT_EQ(read.updatedBy, monitoring.createdBy);
}

TEST_F(MonitoringContract, CreatedIsCached)
{
    const RKMonitoring monitoring = created("VH"_q);
    const int before = requestCount();
    RKMonitoring cached;
    EXPECT_TRUE(data.getMonitoringById(monitoring.id, cached, true));
    EXPECT_EQ(cached.name, mine("VH"_q));
    EXPECT_EQ(data.getMonitoringName(monitoring.id), mine("VH"_q));
    EXPECT_EQ(requestCount(), before);
}

TEST_F(MonitoringContract, UnknownCategoryIsRefusedAndTheRecordEmptied)
{
    RKMonitoring monitoring;
    monitoring.name = mine("VH"_q);
    monitoring.category = mine("no such category"_q);
    monitoring.alarmTo = QStringList{"ana"_q};
    EXPECT_FALSE(data.createMonitoring(monitoring));
    EXPECT_TRUE(monitoring.id.isEmpty());
    EXPECT_TRUE(monitoring.name.isEmpty());
    EXPECT_TRUE(monitoring.alarmTo.isEmpty());
    EXPECT_EQ(countFound(byPattern(QString())), 0);
}

TEST_F(MonitoringContract, UpdateSendsOnlyWhatChanged)
{
    RKMonitoring monitoring = created("VH"_q);
    // Somebody else changes another member meanwhile; the cache here does not know.
    const QString url = "%1monitor-service/cells/%2"_q.arg(deployment().baseAddress, monitoring.id);
    NetworkEventLoop theirs(NetworkManager::instance().putJson(url, {{"alarmTo"_q, QJsonArray{"eve"_q}}}));
    theirs.exec();
    ASSERT_TRUE(theirs.isSuccessful());

    monitoring.name = mine("VH upper"_q);
    ASSERT_TRUE(data.updateMonitoring(monitoring)) << lastErrorText();
    EXPECT_EQ(monitoring.alarmTo, QStringList{"eve"_q}); // the service's view came back
    const RKMonitoring read = stored(monitoring.id);
    EXPECT_EQ(read.name, mine("VH upper"_q));
    EXPECT_EQ(read.alarmTo, QStringList{"eve"_q});
    EXPECT_GE(read.updatedAt, read.createdAt);
}

TEST_F(MonitoringContract, UnchangedUpdateSendsNothing)
{
    RKMonitoring monitoring = created("VH"_q);
    const int before = requestCount();
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(requestCount(), before);
}

TEST_F(MonitoringContract, DeletedIsGoneThoughStillCached)
{
    const RKMonitoring monitoring = created("VH"_q);
    EXPECT_TRUE(data.deleteMonitoring(monitoring.id));
    EXPECT_EQ(data.getMonitoringName(monitoring.id), mine("VH"_q));
    data.clear();
    EXPECT_TRUE(data.getMonitoringName(monitoring.id).isNull());
    EXPECT_EQ(lastStatus(), 404);
    EXPECT_EQ(countFound(byPattern(QString())), 0);
    EXPECT_FALSE(data.deleteMonitoring(monitoring.id));
    EXPECT_EQ(lastStatus(), 404);
}

TEST_F(MonitoringContract, NotDeletedWhileItHoldsData)
{
    const RKMonitoring monitoring = created("VH"_q);
    RKPointLocation measured = point(monitoring.id, "S1"_q);
    measured.data = {sample(1, december(18), 1)};
    deliver({measured});
    EXPECT_FALSE(data.deleteMonitoring(monitoring.id));
    EXPECT_EQ(stored(monitoring.id).name, mine("VH"_q));
}

TEST_F(MonitoringContract, PagesHoldWhatIsCountedOnceInOrder)
{
    QStringList names;
    for (int i = 0; i < 12; ++i) {
        names.append(created("M%1"_q.arg(i)).name);
    }
    const RKMonitoringCondition ours = byPattern("M"_q);
    EXPECT_EQ(countFound(ours), 12);
    EXPECT_EQ(namesFound(ours), names);

    QStringList paged;
    for (int skip = 0; skip < 15; skip += 5) {
        paged += namesFound(ours, skip, 5);
    }
    EXPECT_EQ(paged, names);
    EXPECT_EQ(namesFound(ours, 12, 5), QStringList());
    EXPECT_EQ(namesFound(ours, 0, 0), QStringList());
}

TEST_F(MonitoringContract, ListsIdentifiersAndNames)
{
    const RKMonitoring first = created("VH"_q);
    const RKMonitoring second = created("LS-a"_q);
    QList<QPair<QString, QString>> cells;
    ASSERT_TRUE(data.getCellIdAndName(cells));
    QList<QPair<QString, QString>> ours;
    for (const auto& cell : qAsConst(cells)) {
        if (cell.first == first.id || cell.first == second.id) {
            ours.append(cell);
        }
    }
    EXPECT_EQ(ours, (QList<QPair<QString, QString>>{{first.id, first.name}, {second.id, second.name}}));
}

TEST_F(MonitoringContract, FindsByModel)
{
    const QString model = mine("model \"7\" & more"_q);
    created("without"_q);
    const RKMonitoring linked = created("linked"_q, model);
    QList<RKMonitoring> monitorings;
    ASSERT_TRUE(data.getMonitoringByModelId(model, monitorings));
    EXPECT_EQ(idsOf(monitorings), QStringList{linked.id});

    RKMonitoringCondition condition;
    condition.modelId = model;
    EXPECT_EQ(namesFound(condition), QStringList{linked.name});
    EXPECT_EQ(countFound(condition), 1);
}

TEST_F(MonitoringContract, FindsByPattern)
{
    for (const QString& name : {"VH"_q, "LS-a"_q, "LS-b"_q, "a.b"_q, "aXb"_q, "50 % &"_q, "x+y=z?"_q,
                                "say \"hi\" \\ #"_q, "Böschung 边坡"_q}) {
        created(name);
    }
    EXPECT_EQ(namesFound(byPattern("ls-"_q)), mineAll({"LS-a"_q, "LS-b"_q}));
    EXPECT_EQ(namesFound(byPattern("a.b"_q)), mineAll({"a.b"_q, "aXb"_q}));
    EXPECT_EQ(namesFound(byPattern("a\\.b"_q)), mineAll({"a.b"_q}));
    EXPECT_EQ(namesFound(byPattern("50 % &"_q)), mineAll({"50 % &"_q}));
    EXPECT_EQ(namesFound(byPattern("x\\+y=z\\?"_q)), mineAll({"x+y=z?"_q}));
    EXPECT_EQ(namesFound(byPattern("say \"hi\" \\\\ #"_q)), mineAll({"say \"hi\" \\ #"_q}));
    EXPECT_EQ(namesFound(byPattern("böSCHUNG 边"_q)), mineAll({"Böschung 边坡"_q}));
    EXPECT_EQ(countFound(byPattern("ls-"_q)), 2);
    EXPECT_EQ(countFound(byPattern("no such"_q)), 0);
}

TEST_F(MonitoringContract, FindsByExactNameInSeveralScripts)
{
    const QString run = deployment().run;
    const QStringList names{mine("Slope"_q),    mine("slope"_q),          mine("Slope 1"_q),
                            mine("Böschung"_q), mine("边坡监测"_q),       mine("مراقبة"_q),
                            mine("склон"_q),    mine("😀 & ?#+%/\\\"'"_q), "{\"$gt\": \"\"} "_q + run,
                            " blank "_q + run,  mine(" blank "_q)};
    for (const QString& name : names) {
        RKMonitoring monitoring;
        monitoring.name = name;
        monitoring.category = category();
        ASSERT_TRUE(data.createMonitoring(monitoring)) << lastErrorText();
    }
    for (const QString& name : names) {
        EXPECT_EQ(namesFound(byExactName(name)), QStringList{name});
        EXPECT_EQ(countFound(byExactName(name)), 1);
    }
}

TEST_F(MonitoringContract, RefusedPatternLeavesListAndCacheAlone)
{
    const RKMonitoring monitoring = created("VH"_q);
    QList<RKMonitoring> monitorings;
    EXPECT_TRUE(data.getMonitoringRangeData(byPattern("(x"_q), 0, 10, monitorings));
    EXPECT_EQ(lastStatus(), 400);
    EXPECT_TRUE(monitorings.isEmpty());
    int count = 7;
    EXPECT_FALSE(data.getMonitoringRangeCount(byPattern("(x"_q), count));
    EXPECT_EQ(count, 0);

    const int before = requestCount();
    EXPECT_EQ(data.getMonitoringName(monitoring.id), monitoring.name);
    EXPECT_EQ(requestCount(), before);
}

TEST_F(MonitoringContract, FindsByTimeOfCreation)
{
    const RKMonitoring monitoring = created("VH"_q);
    const QDateTime midnight(monitoring.createdAt.toUTC().date(), QTime(0, 0), Qt::UTC);
    RKMonitoringCondition thatDay = byPattern(QString());
    thatDay.isAllTime = false;
    thatDay.startTime = midnight;
    thatDay.endTime = midnight;
    EXPECT_EQ(countFound(thatDay), 1);
    EXPECT_EQ(namesFound(thatDay), QStringList{monitoring.name});

    // The same instants, written in another zone.
    RKMonitoringCondition elsewhere = thatDay;
    elsewhere.startTime = midnight.toOffsetFromUtc(5 * 3600 + 1800);
    elsewhere.endTime = elsewhere.startTime;
    EXPECT_EQ(countFound(elsewhere), 1);

    RKMonitoringCondition dayBefore = thatDay;
    dayBefore.startTime = dayBefore.endTime = midnight.addDays(-1);
    EXPECT_EQ(countFound(dayBefore), 0);

    RKMonitoringCondition atTheInstant = thatDay;
    atTheInstant.startTime = atTheInstant.endTime = monitoring.createdAt;
    EXPECT_EQ(countFound(atTheInstant), 1);
    atTheInstant.startTime = monitoring.createdAt.addMSecs(1);
    EXPECT_EQ(countFound(atTheInstant), 0);
}
