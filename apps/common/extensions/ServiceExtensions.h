#pragma once

#include "ServiceSession.h"
#include "extensions/AlarmReasons.h"
#include "extensions/AuditTrail.h"
#include "extensions/DeliveryHistory.h"
#include "extensions/Extension.h"
#include "extensions/GroupSides.h"
#include "extensions/OpenAlarms.h"
#include "extensions/Points.h"
#include "extensions/Projects.h"
#include "extensions/ServiceAbout.h"

#include <QList>
#include <QSet>
#include <QString>

#include <optional>

/// What a service can beyond the operations of the library, for those that can.
///
/// Before the first use it asks the service what it can (GET about), and remembers the answer. A service that
/// knows nothing of that can none of it, which is no failure by itself; a request that fails is one, and is
/// made again at the next use.
///
/// Every member that needs an extension throws a Failure (Other) that names it when the service has it not,
/// before anything of its own is sent. It throws a Failure as well when its request fails, when the answer is
/// not what it should be (BadAnswer), and for what is no identifier (BadInput). Nothing is given or
/// remembered then.
///
/// Waiting runs the application's events, which may use the object, too. The object, and what is passed to a
/// member, must be there until the member returns.
class ServiceExtensions
{
public:
    /// Asks the service that `session` works with, as it asks; nothing is sent yet.
    explicit ServiceExtensions(const ServiceSession& session);

    bool has(Extension extension);

    /// Version, extensions, and who asks, as they were when they were first asked for.
    ServiceAbout about();

    /// The projects that the bearer has any right in. GET projects.
    QList<ServiceProject> projects();
    /// GET projects/{project}.
    ServiceProject project(const QString& id);

    /// The sub-categories of a project with kind, unit and decimals. GET projects/{project}/subCategories.
    QList<MeasuredSubCategory> subCategories(const QString& project);

    /// At most `limit` points from the one at `skip` on, without their series.
    /// GET projects/{project}/pointLocations?samples=latest.
    QList<PointSummary> pointSummaries(const QString& project, const PointSummaryQuery& query, int skip,
                                       int limit);
    /// How many points there are on all pages. The same with only_count=true.
    int pointSummaryCount(const QString& project, const PointSummaryQuery& query);

    /// Gives the point as it is then. PATCH pointLocations/{id}.
    PointDetails changePoint(const QString& id, const PointChange& change);
    /// Deletes a point with its samples. DELETE pointLocations/{id}.
    DeletedPoint deletePoint(const QString& id);
    /// Deletes the samples that meet a condition on count, time, value or timeFlag; one without is refused.
    /// DELETE pointLocations/{id}/samples.
    DeletedSamples deleteSamples(const QString& pointId, const QJsonObject& where);

    /// At most `limit` entries of the audit trail from the one at `skip` on. GET projects/{project}/changes.
    QList<AuditEntry> changes(const QString& project, const AuditQuery& query, int skip, int limit);
    /// How many entries there are on all pages. The same with only_count=true.
    int changeCount(const QString& project, const AuditQuery& query);

    /// The identifiers of a project's alarms that are open: the latest reading of a point stands in them.
    /// GET projects/{project}/alarmManages?open=true.
    QSet<QString> openAlarms(const QString& project);
    /// What the details of an alarm are there for. GET alarmManages/{id}/alarmDetails.
    QList<AlarmReason> alarmReasons(const QString& alarmId);

    /// Which variations the limits of a group are for, and when to warn. GET groupSettings/{id}.
    GroupSides groupSides(const QString& id);
    /// Changes what is set, and gives what is so then. PUT groupSettings/{id}.
    ChangedGroupSides changeGroupSides(const QString& id, const GroupSidesChange& change);

    /// At most `limit` deliveries of a data manage from the one at `skip` on, the latest first, with the
    /// identifiers that the library's history leaves out. GET dataManages/{id}/historyDatas.
    QList<DeliveryEntry> deliveries(const QString& dataManageId, int skip, int limit);
    /// Takes the latest delivery of a data manage back. A Failure (Refused) with the service's words when it
    /// is another one. DELETE historyDatas/{id}.
    UndoneDelivery undoDelivery(const QString& deliveryId);

private:
    std::optional<ServiceAbout> knownAbout();
    RequestContext contextOf(const QString& purpose) const;
    /// The context of a request that needs `extension`; `purpose` completes "cannot ...".
    RequestContext needing(Extension extension, const QString& purpose);

    QString m_baseApi;
    QString m_tokenFile;
    bool m_hasAsked = false;
    std::optional<ServiceAbout> m_about; ///< nothing: the service has no such document
};
