#include "extensions/ServiceExtensions.h"

ServiceExtensions::ServiceExtensions(const ServiceSession& session)
    : m_baseApi(session.configuration().baseApi), m_tokenFile(session.configuration().tokenFile)
{
}

std::optional<ServiceAbout> ServiceExtensions::knownAbout()
{
    if (!m_hasAsked) {
        m_about = extensions::readAbout(contextOf(QStringLiteral("ask what the service can")));
        m_hasAsked = true;
    }
    return m_about;
}

RequestContext ServiceExtensions::contextOf(const QString& purpose) const
{
    return {purpose, m_baseApi, m_tokenFile};
}

RequestContext ServiceExtensions::needing(Extension extension, const QString& purpose)
{
    if (!has(extension)) {
        throw Failure(
            FailureKind::Other,
            QStringLiteral("cannot %1: the service at %2 cannot do that, it has no %3 (\"%4\" is not "
                           "among its extensions)")
                .arg(purpose, m_baseApi, operationOf(extension), nameOf(extension)));
    }
    return contextOf(purpose);
}

bool ServiceExtensions::has(Extension extension)
{
    const std::optional<ServiceAbout> about = knownAbout();
    return about && about->extensions.contains(nameOf(extension));
}

ServiceAbout ServiceExtensions::about()
{
    needing(Extension::About, QStringLiteral("say what the service can"));
    return knownAbout().value_or(ServiceAbout());
}

QList<ServiceProject> ServiceExtensions::projects()
{
    return extensions::readProjects(needing(Extension::Projects, QStringLiteral("list projects")));
}

ServiceProject ServiceExtensions::project(const QString& id)
{
    return extensions::readProject(needing(Extension::Projects, QStringLiteral("read project %1").arg(id)),
                                   id);
}

QList<MeasuredSubCategory> ServiceExtensions::subCategories(const QString& project)
{
    return extensions::readSubCategories(
        needing(Extension::SubCategoryKinds, QStringLiteral("list the sub-categories")), project);
}

QList<PointSummary> ServiceExtensions::pointSummaries(const QString& project, const PointSummaryQuery& query,
                                                      int skip, int limit)
{
    return extensions::readPointSummaries(needing(Extension::PointSummaries, QStringLiteral("sum up points")),
                                          project, query, skip, limit);
}

int ServiceExtensions::pointSummaryCount(const QString& project, const PointSummaryQuery& query)
{
    return extensions::countPointSummaries(needing(Extension::PointSummaries, QStringLiteral("count points")),
                                           project, query);
}

PointDetails ServiceExtensions::changePoint(const QString& id, const PointChange& change)
{
    return extensions::changePoint(
        needing(Extension::PointChanges, QStringLiteral("change point %1").arg(id)), id, change);
}

DeletedPoint ServiceExtensions::deletePoint(const QString& id)
{
    return extensions::deletePoint(
        needing(Extension::PointDeletion, QStringLiteral("delete point %1").arg(id)), id);
}

DeletedSamples ServiceExtensions::deleteSamples(const QString& pointId, const QJsonObject& where)
{
    return extensions::deleteSamples(
        needing(Extension::PointDeletion, QStringLiteral("delete samples of point %1").arg(pointId)), pointId,
        where);
}

QList<AuditEntry> ServiceExtensions::changes(const QString& project, const AuditQuery& query, int skip,
                                             int limit)
{
    return extensions::readChanges(needing(Extension::Changes, QStringLiteral("list changes")), project,
                                   query, skip, limit);
}

int ServiceExtensions::changeCount(const QString& project, const AuditQuery& query)
{
    return extensions::countChanges(needing(Extension::Changes, QStringLiteral("count changes")), project,
                                    query);
}

QSet<QString> ServiceExtensions::openAlarms(const QString& project)
{
    return extensions::readOpenAlarms(needing(Extension::OpenAlarms, QStringLiteral("list the open alarms")),
                                      project);
}

QList<AlarmReason> ServiceExtensions::alarmReasons(const QString& alarmId)
{
    return extensions::readAlarmReasons(
        needing(Extension::AlarmReasons, QStringLiteral("say why alarm %1 was raised").arg(alarmId)),
        alarmId);
}

GroupSides ServiceExtensions::groupSides(const QString& id)
{
    return extensions::readGroupSides(
        needing(Extension::GroupSides, QStringLiteral("read the sides of group %1").arg(id)), id);
}

ChangedGroupSides ServiceExtensions::changeGroupSides(const QString& id, const GroupSidesChange& change)
{
    return extensions::changeGroupSides(
        needing(Extension::GroupSides, QStringLiteral("change the sides of group %1").arg(id)), id, change);
}

QList<DeliveryEntry> ServiceExtensions::deliveries(const QString& dataManageId, int skip, int limit)
{
    return extensions::readDeliveries(
        needing(Extension::DeliveryUndo, QStringLiteral("list the deliveries of %1").arg(dataManageId)),
        dataManageId, skip, limit);
}

UndoneDelivery ServiceExtensions::undoDelivery(const QString& deliveryId)
{
    return extensions::undoDelivery(
        needing(Extension::DeliveryUndo, QStringLiteral("undo delivery %1").arg(deliveryId)), deliveryId);
}
