#pragma once

#include "PointLocSetting.h"
#include "RKAlarm.h"
#include "RKConditions.h"
#include "RKDataManage.h"
#include "RKMonitoring.h"
#include "RKMonitoringDataExport.h"
#include "RKMonitoringSubCategory.h"
#include "RKPointLocation.h"

#include <QDate>
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
/// - lists and maps are appended to, never cleared: pass empty ones;
/// - caches change only after a success.
///
/// Outputs after a failure: they are filled from the reply's body before anything asks whether the exchange
/// succeeded, so what an error reply (HTTP 4xx or 5xx) holds reaches them like the content of any other:
/// - a record takes every member that is read from the reply's object; a member that the object lacks becomes
///   empty text, an empty list, 0, false or a null time, unless its operation says that it is kept;
/// - a list gets the rows of the reply's array, a map its days; without rows it stays as it was;
/// - a count becomes the reply's "count", or 0.
/// An error reply such as {"message":"…","status":403} thus empties a record, leaves a list and gives the
/// count 0, but {"count":5} gives 5 and [{"_id":"c1"}] a row. No reply, and one that was cut, damaged or no
/// JSON, count as a reply without a body. Rely on no output when the result is false.
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
    /// GET projects/{p}/auth?category={category}&key=create.
    /// True when the reply's "value" is the text "true", whatever became of the exchange: a failure reads as
    /// a refusal, unless its reply says otherwise.
    bool canCreateMonitoring(const QString& category);
    /// As canCreateMonitoring, for deleting: key=delete.
    bool canDeleteMonitoring(const QString& category);
    /// As canCreateMonitoring, for editing: key=edit.
    bool canEditMonitoring(const QString& category);

    // ---- Monitorings ------------------------------------------------------------------------------------

    /// Creates `monitoring` in the current project. POST cells.
    /// `monitoring` becomes the service's view of it, with `id` and audit members; `projectId` is kept, and
    /// so is `modelId` when the reply has no model link. On success it is cached.
    bool createMonitoring(RKMonitoring& monitoring);

    /// Deletes a monitoring. DELETE cells/{id}.
    /// The monitoring cache keeps it until the next range read or `clear()`.
    bool deleteMonitoring(const QString& id);

    /// Sends what `monitoring` changes against the cached record of its `id` (an empty record when there is
    /// none, which stays in the cache). PUT cells/{id} with the changed members only.
    /// Nothing changed: no request, `monitoring` becomes the cached record, true.
    /// An emptied `modelId` is not sent: a model link cannot be removed this way.
    /// Otherwise `monitoring` becomes what createMonitoring() says, and is cached on success.
    bool updateMonitoring(RKMonitoring& monitoring);

    /// Reads one monitoring. GET cells/{id}, and caches it under `id`.
    /// `useCache`: answers from the monitoring cache alone, without a request and always true; an `id` that
    /// was never cached gives an empty record and leaves an empty entry.
    /// `projectId` is kept, and so is `modelId` when the reply has no model link: pass a fresh record.
    bool getMonitoringById(const QString& id, RKMonitoring& monitoring, bool useCache);

    /// Appends the monitorings that are linked to a model. GET
    /// projects/{p}/cells?where={"links.rId":modelId}. The cache is not touched.
    bool getMonitoringByModelId(const QString& modelId, QList<RKMonitoring>& monitorings);

    /// Name of a monitoring: from the monitoring cache, else by GET cells/{id}, which caches it.
    /// Empty after a failure, whatever its reply holds; nothing is cached then.
    QString getMonitoringName(const QString& id);

    /// Counts. GET projects/{p}/cells?where=…&only_count=true.
    bool getMonitoringRangeCount(const RKMonitoringCondition& condition, int& count);

    /// Appends one page. GET projects/{p}/cells?where=…&skip={skip}&limit={limit}; numbers are sent as
    /// given.
    /// On success the monitoring cache is emptied and filled with every record then in `monitorings`.
    /// Returns true even when the request failed, and leaves the cache then: a failure shows in an unchanged
    /// list, unless its reply has rows.
    bool getMonitoringRangeData(const RKMonitoringCondition& condition, int skip, int limit,
                                QList<RKMonitoring>& monitorings);

    /// Appends identifier and name of every monitoring of the project. GET projects/{p}/cells.
    /// The cache is not touched.
    bool getCellIdAndName(QList<QPair<QString, QString>>& cells);

    // ---- Categories and sub-categories ------------------------------------------------------------------

    /// Replaces `categories` by the texts of the reply's array, or by none. GET categories.
    /// True when the list is then not empty, whatever became of the exchange: an empty list gives false, and
    /// so does a failure, unless its reply is a list.
    bool getMonitoringCategory(QStringList& categories);

    /// Replaces `subCategories` by those of exactly `category`, or by none when the reply has no rows.
    /// GET projects/{p}/subCategories?where=…. Always asks the service; on success fills the sub-category
    /// list cache under `category` and the sub-category cache.
    bool getMonitoringSubCategory(const QString& category, QList<RKMonitoringSubCategory>& subCategories);

    /// One sub-category: from the sub-category cache, else by GET subCategories/{id}, which caches it under
    /// the identifier that the reply carries.
    bool getSubCategoryById(const QString& id, RKMonitoringSubCategory& subCategory);

    // ---- Point locations --------------------------------------------------------------------------------

    /// Sends points with their samples. POST pointLocations with an array.
    /// On success each point, as passed (the reply is not read, so without the service's identifier), is
    /// appended to the point location cache under its `cellId`.
    bool createPointLocation(const QList<RKPointLocation>& points);

    /// Sends batches of points in one delivery. POST pointLocations with an array of arrays.
    /// `message` becomes the service's own words, the reply's "message", when it refused the delivery (HTTP
    /// 500; empty when that is no text), "Connection closed prematurely" after an unknown server error, and
    /// is left alone otherwise, also on success. Caches as the other form.
    bool createPointLocation(const QList<QList<RKPointLocation>>& batches, QString& message);

    /// Appends the points that match, with their samples. GET
    /// projects/{p}/pointLocations?where=…&expand=true. `useCache`: when the point location cache has the
    /// condition's `cellId`, `points` is replaced by that entry without a request, whatever else the
    /// condition asks. On success of a request every point then in `points` is appended to the cache under
    /// its `cellId`: a second uncached read of a cell doubles its entry.
    bool getPointLocation(RKPointLocationCondition& condition, QList<RKPointLocation>& points, bool useCache);

    /// Appends the points that have `uuid` among their relations.
    /// GET projects/{p}/pointLocations?expand=true&where={"uuid":uuid}. The cache is not touched.
    bool getPointLocationByGuid(const QString& uuid, QList<RKPointLocation>& points);

    /// Reads one point. GET pointLocations/{pointId}. Pass a fresh record: samples are appended, and
    /// `subCategoryId`, `alias` and `fileId` are kept. The cache is not touched.
    bool getPointLocationByPointId(const QString& pointId, RKPointLocation& point);

    /// Reads the point with the newest measured time among those that match.
    /// GET projects/{p}/pointLocations?where=…&expand=true&order=-data.time&limit=1&skip=0.
    /// `point` takes the first row of the reply, as getPointLocationByPointId() does, and is left alone when
    /// there is none: when no point matches, with the result true. The cache is not touched.
    bool getPointLocationByTimeOrder(RKPointLocationCondition& condition, RKPointLocation& point);

    /// Replaces the relations of every matching point. PUT pointLocations?where=….
    /// On success the cached points of the condition's `cellId` whose name is in its `names` get `links`;
    /// the entry of that cell is made when there is none.
    bool updatePointLocation(const RKPointLocationCondition& condition,
                             const QMap<QString, QStringList>& links);

    // ---- Statistics -------------------------------------------------------------------------------------

    /// Reads the statistic over time, by calendar day. GET
    /// projects/{p}/normal_statistics?where=…&expand=true. A day of the reply replaces that day of
    /// `chartData`, of two equal days the later one stands; days that the reply lacks stay. A day whose time
    /// cannot be read is the null date.
    bool getNormalPointLocation(const RKPointLocationCondition& condition,
                                QMap<QDate, QList<RKPointLocationChartData>>& chartData);

    /// The same over depth. GET projects/{p}/depth_statistics?where=…&type=depth&expand=true.
    bool getDepthPointLocation(const RKPointLocationCondition& condition,
                               QMap<QDate, QList<RKPointLocationChartData>>& chartData);

    // ---- Groups -----------------------------------------------------------------------------------------

    /// Creates a group in the current project. POST groupSettings.
    /// `group` becomes the service's view of it; on success it is appended to the group cache under its
    /// `cellId`.
    bool createGroup(PointLocSetting& group);

    /// Deletes a group. DELETE groupSettings/{id}.
    /// On success it is removed from the cached list of the cell that the reply names.
    bool deleteGroup(const QString& id);

    /// Sends what `updated` changes against `old`. PUT groupSettings/{id of updated} with the changed
    /// members. Nothing changed: no request, `updated` becomes `old`, true. Otherwise `updated` becomes the
    /// service's view of it. When the result is true it replaces the first cached group of its `id` in the
    /// list of its `cellId`, if there is one.
    bool updateGroup(const PointLocSetting& old, PointLocSetting& updated);

    /// Appends the groups of a category. GET projects/{p}/groupSettings?where={"category":category}.
    /// The cache is not touched.
    bool getGroupsByCategory(const QString& category, QList<PointLocSetting>& groups);

    /// Appends the groups of a monitoring. GET cells/{cellId}/groupSettings.
    /// `useCache`: when the group cache has `cellId`, `groups` is replaced by that entry without a request.
    /// On success of a request the cache entry becomes what is then in `groups`.
    bool getGroupsByCellId(const QString& cellId, QList<PointLocSetting>& groups, bool useCache);

    // ---- Data manages and their history -----------------------------------------------------------------

    /// One data manage, from the data manage cache alone: nothing is sent. False, and `dataManage` left
    /// alone, when no range read has returned it.
    bool getDataManageById(QString id, RKDataManage& dataManage);

    /// Counts. GET projects/{p}/dataManages?where=…&only_count=true.
    bool getDataManageRangeCount(const RKDataManageCondition& condition, int& count);

    /// Appends one page. GET projects/{p}/dataManages?where=…&skip={skip}&limit={limit}&expand=true.
    /// On success every record then in `dataManages` is cached under its `id`.
    bool getDataManageRangeData(const RKDataManageCondition& condition, int skip, int limit,
                                QList<RKDataManage>& dataManages);

    /// Deletes a data manage with the points, samples, history and alarms that came with it.
    /// DELETE dataManages/{id}?cascade=true. The data manage cache keeps it.
    bool deletePointData(const QString& dataManageId);

    /// Counts deliveries. GET dataManages/{dataManageId}/historyDatas?where=…&only_count=true.
    bool getHistoryRangeCount(const RKHistoryDataCondition& condition, int& count);

    /// Appends one page of deliveries.
    /// GET dataManages/{dataManageId}/historyDatas?where=…&skip={skip}&limit={limit}.
    bool getHistoryRangeData(const RKHistoryDataCondition& condition, int skip, int limit,
                             QList<HistoryData>& history);

    // ---- Alarms -----------------------------------------------------------------------------------------

    /// Counts. GET projects/{p}/alarmManages?where=…&only_count=true.
    bool getAlarmRangeCount(const RKAlarmCondition& condition, int& count);

    /// Appends one page. GET projects/{p}/alarmManages?where=…&skip={skip}&limit={limit}.
    bool getAlarmRangeData(const RKAlarmCondition& condition, int skip, int limit, QList<RKAlarm>& alarms);

    /// Counts the details of the alarm `alarmManId`.
    /// GET alarmManages/{alarmManId}/alarmDetails?where=…&only_count=true.
    bool getAlarmDetailRangeCount(const RKAlarmDetailCondition& condition, int& count);

    /// Appends one page of details.
    /// GET alarmManages/{alarmManId}/alarmDetails?where=…&skip={skip}&limit={limit}.
    bool getAlarmDetailRangeData(const RKAlarmDetailCondition& condition, int skip, int limit,
                                 QList<RKAlarmDetail>& details);

    /// Appends the values per depth of one alarm detail: all, or those of `depth` when it is not empty.
    /// GET alarmDetails/{detailId}/threeDetails, with ?where={"depth":"{depth}"} for one depth.
    bool getAlarmThreeByDetailId(const QString& detailId, const QString& depth, QList<AlarmThree>& depths);

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
