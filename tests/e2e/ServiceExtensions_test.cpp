#include "extensions/ServiceExtensions.h"

#include "DailyLimit.h"
#include "DeploymentWithoutExtensions.h"
#include "ServiceTest.h"
#include "Text.h"

#include <QJsonArray>

#include <gmock/gmock.h>

#include <memory>

// What the service can beyond the operations of the library, and a deployment that cannot.

namespace {

class ServiceExtensionsOnService : public ServiceTest
{
protected:
    ServiceExtensionsOnService()
    {
        subCategory =
            service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, "Slope"_q,
                             "--name"_q, "Ground level"_q, "--alias"_q, "GL"_q, "--kind"_q, "settlement"_q,
                             "--unit"_q, "mm"_q, "--decimals"_q, "1"_q});
        workAs(editor, service().baseAddress());
        monitoring.name = "VH"_q;
        monitoring.category = "Slope"_q;
        EXPECT_TRUE(session->projectData().createMonitoring(monitoring));
    }

    // Begins anew, as another program would.
    void workAs(const MonitorService::Token& token, const QString& baseAddress)
    {
        Configuration configuration;
        configuration.baseApi = baseAddress;
        configuration.project = project;
        configuration.token = token.text;
        configuration.tokenFile = "token.txt"_q;
        extensions.reset();
        session.reset(); // first: it ends the observation that the next one begins
        session = std::make_unique<ServiceSession>(configuration);
        session->data().clear();
        extensions = std::make_unique<ServiceExtensions>(*session);
    }

    RKPointLocation point(const QString& name, const QList<double>& values, double initialValue = 0) const
    {
        RKPointLocation point;
        point.cellId = monitoring.id;
        point.subCategoryId = subCategory;
        point.name = name;
        point.initialValue = initialValue;
        for (const double value : values) {
            RKPointLocationData sample;
            sample.count = point.data.size() + 1;
            sample.time = QDateTime(QDate(2026, 3, 2), QTime(16, 0), Qt::UTC).addDays(point.data.size());
            sample.value = value;
            sample.timeFlag = "A"_q;
            point.data.append(sample);
        }
        return point;
    }

    void deliver(const QList<RKPointLocation>& points)
    {
        session->ask("deliver"_q, [&] { return session->data().createPointLocation(points); });
    }

    QString limited(const QStringList& points, double totalLimit)
    {
        PointLocSetting group;
        group.cellId = monitoring.id;
        group.subCategoryId = subCategory;
        group.groupName = "North edge"_q;
        group.groupPoint = points;
        group.totalVar = totalLimit;
        session->ask("limit"_q, [&] { return session->projectData().createGroup(group); });
        return group.id;
    }

    QList<PointSummary> summaries(const PointSummaryQuery& query = {})
    {
        return extensions->pointSummaries(project, query, 0, 100);
    }

    template <typename Work>
    static std::string messageOf(Work work)
    {
        try {
            work();
        } catch (const Failure& failure) {
            return failure.message().toStdString();
        }
        return "no failure";
    }

    QString subCategory;
    RKMonitoring monitoring;
    std::unique_ptr<ServiceSession> session;
    std::unique_ptr<ServiceExtensions> extensions;
};

} // namespace

TEST_F(ServiceExtensionsOnService, AboutTellsWhatTheServiceCanAndWhoAsks)
{
    const ServiceAbout about = extensions->about();
    EXPECT_FALSE(about.version.isEmpty());
    EXPECT_EQ(about.owner, "Ana"_q);
    ASSERT_EQ(about.rights.size(), 1);
    EXPECT_EQ(about.rights[0].project, project);
    EXPECT_EQ(about.rights[0].category, std::nullopt);
    EXPECT_EQ(about.rights[0].rights, (QStringList{"read"_q, "create"_q, "edit"_q, "delete"_q}));
    for (const Extension extension :
         {Extension::About, Extension::AlarmReasons, Extension::Changes, Extension::GroupSides,
          Extension::DeliveryUndo, Extension::OpenAlarms, Extension::PointChanges, Extension::PointDeletion,
          Extension::PointSummaries, Extension::Projects, Extension::SubCategoryKinds}) {
        EXPECT_TRUE(extensions->has(extension)) << nameOf(extension).toStdString();
    }
    workAs(service().createToken("Cleo"_q, project, "reader"_q, "Pit"_q), service().baseAddress());
    ASSERT_EQ(extensions->about().rights.size(), 1);
    EXPECT_EQ(extensions->about().rights[0].category, "Pit"_q);
    EXPECT_EQ(extensions->about().rights[0].rights, QStringList{"read"_q});
}

TEST_F(ServiceExtensionsOnService, AboutTellsAnAdministratorSo)
{
    const MonitorService::Token token = service().createToken("Cleo"_q, project, "reader"_q, "Pit"_q);
    service().admin({"grant"_q, "--token"_q, token.id, "--role"_q, "administrator"_q});
    workAs(token, service().baseAddress());
    const ServiceAbout about = extensions->about();
    ASSERT_EQ(about.rights.size(), 2);
    EXPECT_EQ(about.rights[0].project, std::nullopt);
    EXPECT_EQ(about.rights[0].rights, QStringList{"administer"_q});
    EXPECT_EQ(about.rights[1].project, project);
    EXPECT_EQ(extensions->project(project).id, project);
}

TEST_F(ServiceExtensionsOnService, AboutOfATokenThatIsNotKnownIsAFailure)
{
    workAs({QString(), "rkm_unknown"_q}, service().baseAddress());
    EXPECT_THAT(
        messageOf([&] { extensions->has(Extension::About); }),
        testing::StartsWith("cannot ask what the service can: the service does not accept the token"));
}

TEST_F(ServiceExtensionsOnService, ProjectsHaveNamesAndTimeZones)
{
    const QList<ServiceProject> projects = extensions->projects();
    ASSERT_EQ(projects.size(), 1);
    EXPECT_EQ(projects[0].id, project);
    EXPECT_EQ(projects[0].name, "Bluff"_q);
    EXPECT_EQ(projects[0].timeZone, "America/Los_Angeles"_q);
    EXPECT_EQ(extensions->project(project).name, "Bluff"_q);
    EXPECT_THAT(messageOf([&] { extensions->project("0123456789abcdef01234567"_q); }),
                testing::HasSubstr("not found (there is no project"));
}

TEST_F(ServiceExtensionsOnService, SubCategoriesSayWhatTheyMeasure)
{
    service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, "Pit"_q, "--name"_q,
                     "Anything"_q});
    const QList<MeasuredSubCategory> found = extensions->subCategories(project);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].id, subCategory);
    EXPECT_EQ(found[0].alias, "GL"_q);
    EXPECT_EQ(found[0].kind, "settlement"_q);
    EXPECT_EQ(found[0].unit, "mm"_q);
    EXPECT_EQ(found[0].decimals, 1);
    EXPECT_EQ(found[1].name, "Anything"_q);
    EXPECT_EQ(found[1].kind, "other"_q);
    EXPECT_EQ(found[1].unit, QString());
    EXPECT_EQ(found[1].decimals, std::nullopt);
}

TEST_F(ServiceExtensionsOnService, PointsAreSummedUpInPages)
{
    deliver({point("S1"_q, {100.5, 101.5, 99.5}, 100), point("S2"_q, {7, 8}), point("S3"_q, {})});
    PointSummaryQuery query;
    query.order = "name"_q;
    query.withExtremes = true;
    const QList<PointSummary> all = summaries(query);
    ASSERT_EQ(all.size(), 3);
    EXPECT_EQ(all[0].name, "S1"_q);
    EXPECT_EQ(all[0].cellId, monitoring.id);
    EXPECT_EQ(all[0].subCategoryId, subCategory);
    EXPECT_EQ(all[0].category, "Slope"_q);
    EXPECT_EQ(all[0].samples, 3);
    EXPECT_EQ(all[0].initialValue, 100.0);
    EXPECT_EQ(all[0].reference, 100.0);
    EXPECT_EQ(all[0].minimum, 99.5);
    EXPECT_EQ(all[0].maximum, 101.5);
    ASSERT_TRUE(all[0].latest);
    EXPECT_EQ(all[0].latest->value, 99.5);
    EXPECT_EQ(all[0].latest->count, 3);
    EXPECT_EQ(all[0].latest->time, all[0].latestTime);
    EXPECT_EQ(all[1].initialValue, std::nullopt);
    EXPECT_EQ(all[1].reference, 7.0);
    EXPECT_EQ(all[2].reference, std::nullopt);
    EXPECT_EQ(all[2].minimum, std::nullopt);
    EXPECT_FALSE(all[2].latest);

    const QList<PointSummary> page = extensions->pointSummaries(project, query, 1, 1);
    ASSERT_EQ(page.size(), 1);
    EXPECT_EQ(page[0].name, "S2"_q);
    EXPECT_EQ(extensions->pointSummaryCount(project, query), 3);
    query.where = QJsonObject{{"name"_q, QJsonObject{{"$in"_q, QJsonArray{"S1"_q, "S3"_q}}}}};
    EXPECT_EQ(extensions->pointSummaryCount(project, query), 2);
    EXPECT_EQ(summaries(query).size(), 2);
}

TEST_F(ServiceExtensionsOnService, PointsAreChanged)
{
    deliver({point("S1"_q, {100.5}, 100)});
    const QString id = summaries().constFirst().id;
    PointChange change;
    change.initialValue = 0.0;
    EXPECT_EQ(extensions->changePoint(id, change).initialValue, 0.0);
    EXPECT_EQ(summaries()[0].reference, 0.0);
    change = PointChange();
    change.removesInitialValue = true;
    EXPECT_EQ(extensions->changePoint(id, change).initialValue, std::nullopt);
    EXPECT_EQ(summaries()[0].reference, 100.5);
    change = PointChange();
    change.alias = "corner"_q;
    change.dataType = 3;
    change.offsetDirection = "N"_q;
    const PointDetails changed = extensions->changePoint(id, change);
    EXPECT_EQ(changed.alias, "corner"_q);
    EXPECT_EQ(changed.dataType, 3);
    EXPECT_EQ(changed.offsetDirection, "N"_q);
    EXPECT_EQ(changed.initialValue, std::nullopt);
    EXPECT_EQ(changed.samples, 1);

    workAs(reader, service().baseAddress());
    EXPECT_THAT(messageOf([&] { extensions->changePoint(id, change); }),
                testing::StartsWith("cannot change point " + id.toStdString() + ": not permitted ("));
}

TEST_F(ServiceExtensionsOnService, ChangesAreListedNewestFirst)
{
    deliver({point("S1"_q, {100.5}, 100)});
    const QString group = limited({"S1"_q}, 10);
    const QString id = summaries().constFirst().id;
    PointChange change;
    change.initialValue = 100.25;
    extensions->changePoint(id, change);
    const QList<AuditEntry> entries = extensions->changes(project, {}, 0, 100);
    ASSERT_GE(entries.size(), 4);
    EXPECT_EQ(entries[0].action, "initialValue.changed"_q);
    EXPECT_EQ(entries[0].subject, id);
    EXPECT_EQ(entries[0].name, "S1"_q);
    EXPECT_EQ(entries[0].category, "Slope"_q);
    EXPECT_EQ(entries[0].cellId, monitoring.id);
    EXPECT_EQ(entries[0].subCategoryId, subCategory);
    EXPECT_EQ(entries[0].before.toDouble(), 100.0);
    EXPECT_EQ(entries[0].after.toDouble(), 100.25);
    EXPECT_EQ(entries[0].author, "Ana"_q);
    EXPECT_EQ(entries[1].action, "group.created"_q);
    EXPECT_TRUE(entries[1].before.isNull());
    EXPECT_EQ(entries[1].after.toObject().value("_id"_q), group);
    EXPECT_GE(entries[0].time, entries[1].time);
    EXPECT_EQ(entries[2].action, "cell.created"_q);
    EXPECT_EQ(entries.constLast().action, "project.created"_q);

    AuditQuery query;
    query.order = "_id"_q;
    EXPECT_EQ(extensions->changes(project, query, 0, 1).constFirst().id, entries.constLast().id);
    query.where = QJsonObject{{"action"_q, "group.created"_q}};
    EXPECT_EQ(extensions->changeCount(project, query), 1);
}

TEST_F(ServiceExtensionsOnService, GroupsHaveSidesAndAWarningLevel)
{
    deliver({point("S1"_q, {100})});
    const QString group = limited({"S1"_q}, 10);
    GroupSides sides = extensions->groupSides(group);
    EXPECT_EQ(sides.daySide, LimitSide::Both);
    EXPECT_EQ(sides.totalSide, LimitSide::Both);
    EXPECT_EQ(sides.warningLevel, 80.0);
    GroupSidesChange change;
    change.totalSide = LimitSide::Falling;
    change.warningLevel = 62.5;
    EXPECT_EQ(extensions->changeGroupSides(group, change).totalSide, LimitSide::Falling);
    sides = extensions->groupSides(group);
    EXPECT_EQ(sides.daySide, LimitSide::Both);
    EXPECT_EQ(sides.totalSide, LimitSide::Falling);
    EXPECT_EQ(sides.warningLevel, 62.5);
    change.warningLevel = 120.0;
    EXPECT_THAT(messageOf([&] { extensions->changeGroupSides(group, change); }),
                testing::HasSubstr("\"warningLevel\" is in percent"));
    const ChangedGroupSides doubtful = extensions->changeGroupSides(limited({"S9"_q}, 10), {});
    ASSERT_EQ(doubtful.warnings.size(), 1);
    EXPECT_TRUE(doubtful.warnings[0].contains("\"S9\""_q)) << doubtful.warnings[0].toStdString();
}

TEST_F(ServiceExtensionsOnService, AlarmsHaveReasons)
{
    const QString group = limited({"S1"_q, "S2"_q}, 10);
    deliver({point("S1"_q, {100, 110.5}), point("S2"_q, {5, 25}), point("S3"_q, {5, 500})});
    QList<RKAlarm> alarms;
    session->ask("list alarms"_q, [&] { return session->projectData().getAlarmRangeData({}, 0, 9, alarms); });
    ASSERT_EQ(alarms.size(), 1);
    const QList<AlarmReason> reasons = extensions->alarmReasons(alarms[0].id);
    ASSERT_EQ(reasons.size(), 2);
    EXPECT_EQ(reasons[0].pointName, "S1"_q);
    EXPECT_EQ(reasons[0].value, 110.5);
    EXPECT_EQ(reasons[0].reference, 100.0);
    EXPECT_EQ(reasons[0].unit, "mm"_q);
    EXPECT_EQ(reasons[0].groupId, group);
    EXPECT_EQ(reasons[0].groupName, "North edge"_q);
    EXPECT_EQ(reasons[0].totalLimit, 10.0);
    EXPECT_EQ(reasons[0].dayLimit, 0.0);
    EXPECT_EQ(reasons[0].totalSide, LimitSide::Both);
    EXPECT_EQ(reasons[0].daySide, LimitSide::Both);
    EXPECT_EQ(reasons[0].dayVarType, daily::inUnits);
    EXPECT_EQ(reasons[1].pointName, "S2"_q);

    RKAlarmDetailCondition condition;
    condition.alarmManId = alarms[0].id;
    QList<RKAlarmDetail> details;
    session->ask("read details"_q,
                 [&] { return session->data().getAlarmDetailRangeData(condition, 0, 9, details); });
    ASSERT_EQ(details.size(), 2);
    EXPECT_EQ(details[0].id, reasons[0].id);
    EXPECT_EQ(details[1].id, reasons[1].id);
}

TEST_F(ServiceExtensionsOnService, DeliveriesAreTakenBack)
{
    deliver({point("S1"_q, {100, 101})});
    deliver({point("S1"_q, {100, 107, 109}), point("S2"_q, {7})});
    const QString id = summaries().constFirst().id;
    RKDataManageCondition condition;
    QList<RKDataManage> dataManages;
    session->ask("list data"_q,
                 [&] { return session->projectData().getDataManageRangeData(condition, 0, 9, dataManages); });
    ASSERT_EQ(dataManages.size(), 1);
    const QList<DeliveryEntry> history = extensions->deliveries(dataManages[0].id, 0, 9);
    ASSERT_EQ(history.size(), 2);
    EXPECT_THAT(messageOf([&] { extensions->undoDelivery(history[1].id); }),
                testing::HasSubstr("delivery 1 is not the latest of its data manage: that is delivery 2"));
    const UndoneDelivery undone = extensions->undoDelivery(history[0].id);
    EXPECT_EQ(undone.delivery.id, history[0].id);
    EXPECT_EQ(undone.delivery.dataManageId, dataManages[0].id);
    EXPECT_EQ(undone.delivery.number, 2);
    EXPECT_EQ(undone.delivery.sentCount, 4);
    EXPECT_EQ(undone.delivery.correctCount, 1);
    EXPECT_EQ(undone.removed, 2);
    EXPECT_EQ(undone.restored, 1);
    EXPECT_EQ(undone.removedPoints, 1);
    EXPECT_EQ(undone.alarms, QStringList());
    const QList<PointSummary> left = summaries();
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(left[0].samples, 2);
    EXPECT_EQ(left[0].latest->value, 101.0);
    AuditQuery corrections;
    corrections.where = QJsonObject{{"subject"_q, id}, {"action"_q, "sample.corrected"_q}};
    const QList<AuditEntry> entries = extensions->changes(project, corrections, 0, 10);
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[1].deliveryId, history[0].id);
    EXPECT_EQ(entries[0].deliveryId, QString());
}

TEST_F(ServiceExtensionsOnService, PointsAndSingleReadingsAreDeleted)
{
    limited({"S1"_q, "S2"_q}, 10);
    deliver({point("S1"_q, {100, 101, 150}), point("S2"_q, {7, 70})});
    PointSummaryQuery query;
    query.order = "name"_q;
    const QList<PointSummary> before = summaries(query);
    ASSERT_EQ(before.size(), 2);
    const DeletedSamples reading =
        extensions->deleteSamples(before[0].id, QJsonObject{{"value"_q, QJsonObject{{"$gt"_q, 149}}}});
    EXPECT_EQ(reading.pointId, before[0].id);
    EXPECT_EQ(reading.removed, 1);
    EXPECT_EQ(reading.alarms.size(), 1);
    EXPECT_EQ(summaries(query)[0].latest->value, 101.0);
    EXPECT_THAT(messageOf([&] { extensions->deleteSamples(before[0].id, {}); }),
                testing::HasSubstr("must have a condition"));
    const DeletedPoint point = extensions->deletePoint(before[1].id);
    EXPECT_EQ(point.name, "S2"_q);
    EXPECT_EQ(point.removedSamples, 2);
    EXPECT_EQ(point.alarms, reading.alarms);
    ASSERT_EQ(summaries(query).size(), 1);
    QList<RKAlarm> alarms;
    session->ask("list alarms"_q, [&] { return session->projectData().getAlarmRangeData({}, 0, 9, alarms); });
    EXPECT_EQ(alarms.size(), 0);
}

TEST_F(ServiceExtensionsOnService, ADeploymentWithoutThemSaysWhatItCannot)
{
    DeploymentWithoutExtensions deployment(service().baseAddress());
    workAs(editor, deployment.baseAddress());
    EXPECT_FALSE(extensions->has(Extension::About));
    EXPECT_FALSE(extensions->has(Extension::Changes));
    EXPECT_EQ(messageOf([&] { extensions->changePoint("0123456789abcdef01234567"_q, {}); }),
              "cannot change point 0123456789abcdef01234567: the service at " +
                  deployment.baseAddress().toStdString() +
                  " cannot do that, it has no PATCH pointLocations/{id} (\"pointChanges\" is not among its "
                  "extensions)");
    EXPECT_THAT(messageOf([&] { extensions->undoDelivery("0123456789abcdef01234567"_q); }),
                testing::HasSubstr("it has no DELETE historyDatas/{id}"));
    EXPECT_THAT(messageOf([&] { summaries(); }), testing::HasSubstr("it has no GET projects/{project}/poin"));
    EXPECT_EQ(deployment.passedOn(), 0);
    QList<RKMonitoring> monitorings;
    session->ask("list monitorings"_q,
                 [&] { return session->projectData().getMonitoringRangeData({}, 0, 9, monitorings); });
    EXPECT_EQ(monitorings.size(), 1);
    EXPECT_EQ(deployment.passedOn(), 1);
}
