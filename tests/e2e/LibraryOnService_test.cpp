#include "ServiceTest.h"
#include "Text.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

namespace {

constexpr std::chrono::seconds usualDeadline{30};

class LibraryOnService : public ServiceTest
{
protected:
    LibraryOnService()
    {
        RKBaseApi::GetInstance().setBaseApi(service().baseAddress());
        GetSoftCache()->setProjectId(project);
        NetworkManager::instance().setDeadline(usualDeadline);
        NetworkManager::instance().setObserver(
            [this](const NetworkExchange& exchange) { m_exchanges.append(exchange); });
        actAs(editor);
        data.clear();
    }

    ~LibraryOnService() override { NetworkManager::instance().setObserver({}); }

    static void actAs(const MonitorService::Token& token)
    {
        EXPECT_TRUE(NetworkManager::instance().setBearerToken(token.text));
    }

    int requestCount() const { return m_exchanges.size(); }
    int lastStatus() const { return m_exchanges.isEmpty() ? -1 : m_exchanges.last().httpStatus; }
    QNetworkReply::NetworkError lastError() const { return m_exchanges.last().error; }

    RKMonitoring created(const QString& name, const QString& category = "Slope"_q,
                         const QString& modelId = QString())
    {
        RKMonitoring monitoring;
        monitoring.name = name;
        monitoring.category = category;
        monitoring.modelId = modelId;
        monitoring.alarmTo = QStringList{"ana"_q, "ben"_q};
        EXPECT_TRUE(data.createMonitoring(monitoring)) << m_exchanges.last().errorText.toStdString();
        return monitoring;
    }

    RKMonitoring stored(const QString& id)
    {
        RKMonitoring monitoring;
        EXPECT_TRUE(data.getMonitoringById(id, monitoring, false));
        return monitoring;
    }

    QStringList namesFound(const RKMonitoringCondition& condition, int skip = 0, int limit = 1000)
    {
        QList<RKMonitoring> monitorings;
        data.getMonitoringRangeData(condition, skip, limit, monitorings);
        EXPECT_EQ(lastStatus(), 200) << m_exchanges.last().errorText.toStdString();
        QStringList names;
        for (const RKMonitoring& monitoring : qAsConst(monitorings))
            names.append(monitoring.name);
        return names;
    }

    int countFound(const RKMonitoringCondition& condition)
    {
        int count = -1;
        EXPECT_TRUE(data.getMonitoringRangeCount(condition, count))
            << m_exchanges.last().errorText.toStdString();
        return count;
    }

    RKMonitoringData& data = *RKMonitoringData::instance();

private:
    QList<NetworkExchange> m_exchanges;
};

RKMonitoringCondition byPattern(const QString& pattern)
{
    RKMonitoringCondition condition;
    condition.name = pattern;
    return condition;
}

RKMonitoringCondition byExactName(const QString& name)
{
    RKMonitoringCondition condition;
    condition.exactName = name;
    return condition;
}

} // namespace

TEST_F(LibraryOnService, CreatesAndShows)
{
    const RKMonitoring monitoring = created("VH"_q, "Slope"_q, "model-1"_q);
    EXPECT_EQ(monitoring.id.size(), 24);
    EXPECT_EQ(monitoring.createdBy, "Ana"_q);
    EXPECT_TRUE(monitoring.createdAt.isValid());

    const RKMonitoring read = stored(monitoring.id);
    EXPECT_EQ(read.id, monitoring.id);
    EXPECT_EQ(read.name, "VH"_q);
    EXPECT_EQ(read.category, "Slope"_q);
    EXPECT_EQ(read.modelId, "model-1"_q);
    EXPECT_EQ(read.alarmTo, (QStringList{"ana"_q, "ben"_q}));
    EXPECT_EQ(read.createdAt, monitoring.createdAt);
    EXPECT_EQ(read.updatedAt, monitoring.updatedAt);
    EXPECT_EQ(read.updatedBy, "Ana"_q);
}

TEST_F(LibraryOnService, UpdateSendsOnlyWhatChanged)
{
    RKMonitoring mine = created("VH"_q);
    // Somebody else changes another member meanwhile; the cache here does not know.
    const QString url = "%1monitor-service/cells/%2"_q.arg(service().baseAddress(), mine.id);
    NetworkEventLoop theirs(NetworkManager::instance().putJson(url, {{"alarmTo"_q, QJsonArray{"eve"_q}}}));
    theirs.exec();
    ASSERT_TRUE(theirs.isSuccessful());

    mine.name = "VH upper"_q;
    ASSERT_TRUE(data.updateMonitoring(mine));
    EXPECT_EQ(mine.alarmTo, QStringList{"eve"_q}); // the service's view came back
    const RKMonitoring read = stored(mine.id);
    EXPECT_EQ(read.name, "VH upper"_q);
    EXPECT_EQ(read.alarmTo, QStringList{"eve"_q});
    EXPECT_GE(read.updatedAt, read.createdAt);
}

TEST_F(LibraryOnService, UnchangedUpdateSendsNothing)
{
    RKMonitoring monitoring = created("VH"_q);
    const int before = requestCount();
    EXPECT_TRUE(data.updateMonitoring(monitoring));
    EXPECT_EQ(requestCount(), before);
}

TEST_F(LibraryOnService, DeletedIsGoneThoughStillCached)
{
    const RKMonitoring monitoring = created("VH"_q);
    EXPECT_TRUE(data.deleteMonitoring(monitoring.id));
    EXPECT_EQ(data.getMonitoringName(monitoring.id), "VH"_q);
    data.clear();
    EXPECT_TRUE(data.getMonitoringName(monitoring.id).isNull());
    EXPECT_EQ(lastStatus(), 404);
    EXPECT_FALSE(data.deleteMonitoring(monitoring.id));
    EXPECT_EQ(lastStatus(), 404);
}

TEST_F(LibraryOnService, PagesHoldEveryMonitoringOnce)
{
    QStringList names;
    for (int i = 0; i < 12; ++i) {
        names.append("M%1"_q.arg(i));
        created(names.last());
    }
    const RKMonitoringCondition everything;
    EXPECT_EQ(countFound(everything), 12);
    EXPECT_EQ(namesFound(everything), names);

    QStringList paged;
    for (int skip = 0; skip < 15; skip += 5)
        paged += namesFound(everything, skip, 5);
    EXPECT_EQ(paged, names);
    EXPECT_EQ(namesFound(everything, 12, 5), QStringList());
    EXPECT_EQ(namesFound(everything, 0, 0), QStringList());
}

TEST_F(LibraryOnService, ListsIdentifiersAndNames)
{
    const RKMonitoring first = created("VH"_q);
    const RKMonitoring second = created("LS-a"_q);
    QList<QPair<QString, QString>> cells;
    ASSERT_TRUE(data.getCellIdAndName(cells));
    EXPECT_EQ(cells, (QList<QPair<QString, QString>>{{first.id, "VH"_q}, {second.id, "LS-a"_q}}));
}

TEST_F(LibraryOnService, FindsByModel)
{
    created("without"_q);
    const RKMonitoring linked = created("linked"_q, "Slope"_q, "model \"7\" & more"_q);
    QList<RKMonitoring> monitorings;
    ASSERT_TRUE(data.getMonitoringByModelId("model \"7\" & more"_q, monitorings));
    ASSERT_EQ(monitorings.size(), 1);
    EXPECT_EQ(monitorings.first().id, linked.id);

    RKMonitoringCondition condition;
    condition.modelId = "model \"7\" & more"_q;
    EXPECT_EQ(namesFound(condition), QStringList{"linked"_q});
    EXPECT_EQ(countFound(condition), 1);
}

TEST_F(LibraryOnService, FindsByPattern)
{
    const QStringList names{"VH"_q,           "LS-a"_q,   "LS-b"_q,   "a.b"_q,
                            "aXb"_q,          "50 % &"_q, "x+y=z?"_q, "say \"hi\" \\ #"_q,
                            "Böschung 边坡"_q};
    for (const QString& name : names)
        created(name);
    EXPECT_EQ(namesFound(byPattern("^ls-"_q)), (QStringList{"LS-a"_q, "LS-b"_q}));
    EXPECT_EQ(namesFound(byPattern("a.b"_q)), (QStringList{"a.b"_q, "aXb"_q}));
    EXPECT_EQ(namesFound(byPattern("a\\.b"_q)), QStringList{"a.b"_q});
    EXPECT_EQ(namesFound(byPattern("50 % &"_q)), QStringList{"50 % &"_q});
    EXPECT_EQ(namesFound(byPattern("x\\+y=z\\?"_q)), QStringList{"x+y=z?"_q});
    EXPECT_EQ(namesFound(byPattern("\"hi\" \\\\ #"_q)), QStringList{"say \"hi\" \\ #"_q});
    EXPECT_EQ(namesFound(byPattern("böSCHUNG 边"_q)), QStringList{"Böschung 边坡"_q});
    EXPECT_EQ(countFound(byPattern("^ls-"_q)), 2);
    EXPECT_EQ(countFound(byPattern("no such"_q)), 0);
}

TEST_F(LibraryOnService, FindsByExactNameInSeveralScripts)
{
    const QStringList names{"Slope"_q,  "slope"_q, "Slope 1"_q,        "Böschung"_q,        "边坡监测"_q,
                            "مراقبة"_q, "склон"_q, "😀 & ?#+%/\\\"'"_q, "{\"$gt\": \"\"}"_q, " blank "_q};
    for (const QString& name : names)
        created(name);
    for (const QString& name : names) {
        EXPECT_EQ(namesFound(byExactName(name)), QStringList{name});
        EXPECT_EQ(countFound(byExactName(name)), 1);
    }
}

TEST_F(LibraryOnService, RefusedPatternLeavesListAndCacheAlone)
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
    EXPECT_EQ(data.getMonitoringName(monitoring.id), "VH"_q);
    EXPECT_EQ(requestCount(), before);
}

TEST_F(LibraryOnService, FindsByTimeOfCreation)
{
    const RKMonitoring monitoring = created("VH"_q);
    const QDateTime midnight(monitoring.createdAt.date(), QTime(0, 0), Qt::UTC);
    RKMonitoringCondition thatDay;
    thatDay.isAllTime = false;
    thatDay.startTime = midnight;
    thatDay.endTime = midnight;
    EXPECT_EQ(countFound(thatDay), 1);
    EXPECT_EQ(namesFound(thatDay), QStringList{"VH"_q});

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

TEST_F(LibraryOnService, CategoriesAreTheServices)
{
    QStringList found;
    EXPECT_TRUE(data.getMonitoringCategory(found));
    EXPECT_EQ(found, categories());
}

TEST_F(LibraryOnService, SubCategoriesOfOneCategory)
{
    for (const QString& category : categories())
        service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, category,
                         "--name"_q, "Rain"_q, "--alias"_q, "R"_q});
    for (const QString& category : categories()) {
        QList<RKMonitoringSubCategory> subCategories;
        ASSERT_TRUE(data.getMonitoringSubCategory(category, subCategories));
        ASSERT_EQ(subCategories.size(), 1) << category.toStdString();
        EXPECT_EQ(subCategories.first().category, category);
        EXPECT_EQ(subCategories.first().alias, "R"_q);

        data.clear();
        RKMonitoringSubCategory subCategory;
        ASSERT_TRUE(data.getSubCategoryById(subCategories.first().id, subCategory));
        EXPECT_EQ(subCategory.name, "Rain"_q);
        EXPECT_EQ(subCategory.category, category);
    }
}

TEST_F(LibraryOnService, PermissionsFollowTheToken)
{
    const QString odd = categories().last();
    for (const QString& category : categories()) {
        EXPECT_TRUE(data.canCreateMonitoring(category)) << category.toStdString();
        EXPECT_TRUE(data.canEditMonitoring(category));
        EXPECT_TRUE(data.canDeleteMonitoring(category));
    }
    EXPECT_FALSE(data.canCreateMonitoring("no such category"_q));

    actAs(reader);
    EXPECT_FALSE(data.canCreateMonitoring("Slope"_q));
    EXPECT_FALSE(data.canEditMonitoring("Slope"_q));
    EXPECT_FALSE(data.canDeleteMonitoring("Slope"_q));

    actAs(service().createToken("Eve"_q, project, "editor"_q, odd));
    EXPECT_TRUE(data.canCreateMonitoring(odd));
    EXPECT_FALSE(data.canCreateMonitoring("Slope"_q));
}

TEST_F(LibraryOnService, ReaderReadsAndIsRefusedTheRest)
{
    RKMonitoring monitoring = created("VH"_q);
    const QString id = monitoring.id;
    actAs(reader);
    EXPECT_EQ(stored(id).name, "VH"_q);

    RKMonitoring refused;
    refused.name = "LS-a"_q;
    refused.category = "Slope"_q;
    EXPECT_FALSE(data.createMonitoring(refused));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_TRUE(refused.id.isEmpty());

    monitoring.name = "changed"_q;
    EXPECT_FALSE(data.updateMonitoring(monitoring));
    EXPECT_EQ(lastStatus(), 403);
    EXPECT_FALSE(data.deleteMonitoring(id));
    EXPECT_EQ(lastStatus(), 403);

    actAs(editor);
    EXPECT_EQ(namesFound({}), QStringList{"VH"_q});
}

TEST_F(LibraryOnService, ReaderOfOneCategorySeesNoOther)
{
    created("VH"_q, "Slope"_q);
    const RKMonitoring hidden = created("Deep"_q, "Pit"_q);
    actAs(service().createToken("Eve"_q, project, "reader"_q, "Slope"_q));
    EXPECT_EQ(namesFound({}), QStringList{"VH"_q});
    EXPECT_EQ(countFound({}), 1);
    data.clear();
    EXPECT_TRUE(data.getMonitoringName(hidden.id).isNull());
    EXPECT_EQ(lastStatus(), 404);
}

TEST_F(LibraryOnService, RevokedTokenIsRefusedAtOnce)
{
    created("VH"_q);
    service().admin({"token"_q, "revoke"_q, editor.id});
    int count = -1;
    EXPECT_FALSE(data.getMonitoringRangeCount({}, count));
    EXPECT_EQ(lastStatus(), 401);
}

TEST_F(LibraryOnService, OtherProjectIsHidden)
{
    const RKMonitoring monitoring = created("VH"_q);
    const QString otherProject = service().createProject("Other"_q);
    actAs(service().createToken("Eve"_q, otherProject, "editor"_q));
    data.clear();
    EXPECT_TRUE(data.getMonitoringName(monitoring.id).isNull());
    EXPECT_EQ(lastStatus(), 404);
    EXPECT_FALSE(data.canCreateMonitoring("Slope"_q));
}

TEST_F(LibraryOnService, WhatWasAnsweredSurvivesAKill)
{
    MonitorService restarted;
    restarted.admin({"category"_q, "add"_q, "Slope"_q});
    const QString itsProject = restarted.createProject("Bluff"_q);
    ASSERT_TRUE(restarted.start());
    RKBaseApi::GetInstance().setBaseApi(restarted.baseAddress());
    GetSoftCache()->setProjectId(itsProject);
    actAs(restarted.createToken("Ana"_q, itsProject, "editor"_q));
    const RKMonitoring monitoring = created("VH"_q);
    restarted.kill();

    ASSERT_TRUE(restarted.start());
    RKBaseApi::GetInstance().setBaseApi(restarted.baseAddress());
    data.clear();
    EXPECT_EQ(data.getMonitoringName(monitoring.id), "VH"_q);
}

#ifdef Q_OS_UNIX
TEST_F(LibraryOnService, ServiceKilledWhileOperationsWait)
{
    MonitorService doomed;
    doomed.admin({"category"_q, "add"_q, "Slope"_q});
    const QString itsProject = doomed.createProject("Bluff"_q);
    ASSERT_TRUE(doomed.start());
    RKBaseApi::GetInstance().setBaseApi(doomed.baseAddress());
    GetSoftCache()->setProjectId(itsProject);
    actAs(doomed.createToken("Ana"_q, itsProject, "editor"_q));
    const RKMonitoring monitoring = created("VH"_q);

    // The request reaches a process that no longer works, and dies with it.
    doomed.freeze();
    QTimer end;
    end.setSingleShot(true);
    QObject::connect(&end, &QTimer::timeout, &end, [&] { doomed.kill(); });
    end.start(50);
    RKMonitoring changed = monitoring;
    changed.name = "changed"_q;
    EXPECT_FALSE(data.updateMonitoring(changed));
    EXPECT_NE(lastError(), QNetworkReply::NoError);
    EXPECT_EQ(lastStatus(), 0);

    QList<RKMonitoring> page;
    EXPECT_TRUE(data.getMonitoringRangeData({}, 0, 10, page));
    EXPECT_EQ(lastError(), QNetworkReply::ConnectionRefusedError);
    EXPECT_TRUE(page.isEmpty());

    // The cache is as it was before.
    RKMonitoring cached;
    EXPECT_TRUE(data.getMonitoringById(monitoring.id, cached, true));
    EXPECT_EQ(cached.name, "VH"_q);
}

TEST_F(LibraryOnService, DeadlineEndsAnOperation)
{
    const RKMonitoring monitoring = created("VH"_q);
    service().freeze();
    NetworkManager::instance().setDeadline(std::chrono::milliseconds(200));
    int count = -1;
    EXPECT_FALSE(data.getMonitoringRangeCount({}, count));
    EXPECT_EQ(lastError(), QNetworkReply::TimeoutError);
    EXPECT_EQ(count, 0);
    RKMonitoring cached;
    EXPECT_TRUE(data.getMonitoringById(monitoring.id, cached, true));
    EXPECT_EQ(cached.name, "VH"_q);

    service().resume();
    NetworkManager::instance().setDeadline(usualDeadline);
    EXPECT_EQ(countFound({}), 1);
}
#endif
