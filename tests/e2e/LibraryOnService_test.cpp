#include "ServiceTest.h"
#include "Text.h"

#include <NetworkManager.h>
#include <QTimer>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

#include <gtest/gtest.h>

#include <chrono>

// The library while the service's rights change, and while it dies. What holds against any service is in
// contract/.

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
        actAs(editor);
        data.clear();
    }

    static void actAs(const MonitorService::Token& token)
    {
        EXPECT_TRUE(NetworkManager::instance().setBearerToken(token.text));
    }

    int lastStatus() const { return m_exchanges.isEmpty() ? -1 : m_exchanges.last().httpStatus; }
    QNetworkReply::NetworkError lastError() const { return m_exchanges.last().error; }

    RKMonitoring created(const QString& name, const QString& category = "Slope"_q)
    {
        RKMonitoring monitoring;
        monitoring.name = name;
        monitoring.category = category;
        EXPECT_TRUE(data.createMonitoring(monitoring)) << m_exchanges.last().errorText.toStdString();
        return monitoring;
    }

    QStringList namesFound(const RKMonitoringCondition& condition)
    {
        QList<RKMonitoring> monitorings;
        data.getMonitoringRangeData(condition, 0, 1000, monitorings);
        EXPECT_EQ(lastStatus(), 200) << m_exchanges.last().errorText.toStdString();
        QStringList names;
        for (const RKMonitoring& monitoring : qAsConst(monitorings)) {
            names.append(monitoring.name);
        }
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
    const NetworkObservation m_observation = NetworkManager::instance().addObserver(
        [this](const NetworkExchange& exchange) { m_exchanges.append(exchange); });
};

} // namespace

TEST_F(LibraryOnService, CategoriesAreTheServices)
{
    QStringList found;
    EXPECT_TRUE(data.getMonitoringCategory(found));
    EXPECT_EQ(found, categories());
}

TEST_F(LibraryOnService, SubCategoriesAreTheOperators)
{
    for (const QString& category : categories()) {
        service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, category,
                         "--name"_q, "Rain"_q, "--alias"_q, "R"_q});
    }
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

TEST_F(LibraryOnService, PermissionsFollowTheTokensCategory)
{
    const QString odd = categories().last();
    for (const QString& category : categories()) {
        EXPECT_TRUE(data.canCreateMonitoring(category)) << category.toStdString();
        EXPECT_TRUE(data.canEditMonitoring(category));
        EXPECT_TRUE(data.canDeleteMonitoring(category));
    }
    actAs(service().createToken("Eve"_q, project, "editor"_q, odd));
    EXPECT_TRUE(data.canCreateMonitoring(odd));
    EXPECT_FALSE(data.canCreateMonitoring("Slope"_q));
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
