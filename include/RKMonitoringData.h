#pragma once

#include "PointLocSetting.h"
#include "RKAlarm.h"
#include "RKConditions.h"
#include "RKDataManage.h"
#include "RKMonitoring.h"
#include "RKMonitoringDataExport.h"
#include "RKMonitoringSubCategory.h"
#include "RKPointLocation.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>

/// The monitoring data of the current project, held by the monitoring service.
///
/// Every operation is synchronous: it sends at most one request through the application's HTTP client and
/// waits for the answer in a local event loop, so the application's own events run meanwhile. A timer may
/// call `clear()`, another operation, or quit the application during the wait; the operation then still
/// answers correctly or fails. Paths below stand after the base address and "monitor-service/"; {p} is the
/// current project's identifier, asked anew for every request.
///
/// Unless said otherwise
/// - the result is true when the exchange succeeded;
/// - outputs are filled from the reply whether or not it succeeded: after a failure a record holds empty
///   texts, zeros and null times, a count is 0, and a list holds what it held before;
/// - lists and maps are appended to, never cleared: pass empty ones;
/// - caches change only after a success.
///
/// One thread at a time: the thread that runs the application's event loop. Only the construction of the
/// object is safe from several threads.
class RKMONITORINGDATA_EXPORT RKMonitoringData
{
public:
    /// The one object of the process: made on the first call, destroyed at exit. Never null.
    static RKMonitoringData* instance();

    /// An independent object with the same cached records (shared until one of the two changes them).
    RKMonitoringData(const RKMonitoringData& other);
    RKMonitoringData& operator=(const RKMonitoringData& other);

    /// Empties all six caches. Sends nothing; the next look-ups ask the service again.
    void clear();

    // ---- Permissions ------------------------------------------------------------------------------------

    /// Whether the current user may create monitorings of `category` in the current project.
    /// GET projects/{p}/auth?category={category}&key=create. A failure reads as a refusal.
    bool canCreateMonitoring(const QString& category);
    /// As canCreateMonitoring, for deleting: key=delete.
    bool canDeleteMonitoring(const QString& category);
    /// As canCreateMonitoring, for editing: key=edit.
    bool canEditMonitoring(const QString& category);

    // ---- Monitorings ------------------------------------------------------------------------------------

    /// Creates `monitoring` in the current project. POST cells.
    /// On success `monitoring` is the service's view of it, with `id` and audit members, and is cached.
    /// On failure its texts, recipients and times are emptied; `modelId` and `projectId` stay.
    bool createMonitoring(RKMonitoring& monitoring);

    /// Deletes a monitoring. DELETE cells/{id}.
    /// The monitoring cache keeps it until the next range read or `clear()`.
    bool deleteMonitoring(const QString& id);

    /// Sends what `monitoring` changes against the cached record of its `id` (an empty record when there is
    /// none, which stays in the cache). PUT cells/{id} with the changed members only.
    /// Nothing changed: no request, `monitoring` becomes the cached record, true.
    /// An emptied `modelId` is not sent: a model link cannot be removed this way.
    /// On success `monitoring` is the service's view of it and is cached; on failure as createMonitoring.
    bool updateMonitoring(RKMonitoring& monitoring);

    /// Reads one monitoring. GET cells/{id}, and caches it under `id`.
    /// `useCache`: answers from the monitoring cache alone, without a request and always true; an `id` that
    /// was never cached gives an empty record and leaves an empty entry.
    /// `modelId` is kept when the reply has no model link: pass a fresh record.
    bool getMonitoringById(const QString& id, RKMonitoring& monitoring, bool useCache);

    /// Appends the monitorings that are linked to a model. GET
    /// projects/{p}/cells?where={"links.rId":modelId}. The cache is not touched.
    bool getMonitoringByModelId(const QString& modelId, QList<RKMonitoring>& monitorings);

    /// Name of a monitoring: from the monitoring cache, else by GET cells/{id}, which caches it.
    /// Empty after a failure, which caches nothing.
    QString getMonitoringName(const QString& id);

    /// Counts. GET projects/{p}/cells?where=…&only_count=true. `count` is 0 after a failure.
    bool getMonitoringRangeCount(const RKMonitoringCondition& condition, int& count);

    /// Appends one page. GET projects/{p}/cells?where=…&skip={skip}&limit={limit}; numbers are sent as given.
    /// On success the monitoring cache is emptied and filled with every record then in `monitorings`.
    /// Returns true even when the request failed: a failure shows in an unchanged list.
    bool getMonitoringRangeData(const RKMonitoringCondition& condition, int skip, int limit,
                                QList<RKMonitoring>& monitorings);

    /// Appends identifier and name of every monitoring of the project. GET projects/{p}/cells.
    /// The cache is not touched.
    bool getCellIdAndName(QList<QPair<QString, QString>>& cells);

    // ---- Categories and sub-categories ------------------------------------------------------------------

    /// Replaces `categories` by the service's list. GET categories.
    /// True when the list is not empty: a failure, and an empty list, give false.
    bool getMonitoringCategory(QStringList& categories);

    /// Replaces `subCategories` by those of exactly `category`. GET projects/{p}/subCategories?where=….
    /// Always asks the service; on success fills the sub-category list cache under `category` and the
    /// sub-category cache. Empty after a failure.
    bool getMonitoringSubCategory(const QString& category, QList<RKMonitoringSubCategory>& subCategories);

    /// One sub-category: from the sub-category cache, else by GET subCategories/{id}, which caches it under
    /// the identifier that the reply carries.
    bool getSubCategoryById(const QString& id, RKMonitoringSubCategory& subCategory);

private:
    RKMonitoringData();
    ~RKMonitoringData();

    QMap<QString, RKMonitoring> m_monitorings;                        // by monitoring id
    QMap<QString, QList<RKMonitoringSubCategory>> m_subCategoryLists; // by category
    QMap<QString, RKMonitoringSubCategory> m_subCategories;           // by sub-category id
    QMap<QString, RKDataManage> m_dataManages;                        // by data manage id
    QMap<QString, QList<PointLocSetting>> m_groups;                   // by cell id
    QMap<QString, QList<RKPointLocation>> m_pointLocations;           // by cell id
};
