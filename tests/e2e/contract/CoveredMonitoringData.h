#pragma once

#include <RKMonitoringData.h>

#include <set>
#include <string>
#include <vector>

/// The library's operations, each noted when it has succeeded, so that a suite can tell what it left out. The
/// notes are common to all objects and stay to the end of the process.
class CoveredMonitoringData
{
public:
    bool canCreateMonitoring(const QString& category)
    {
        return note("canCreateMonitoring(QString const&)", m_data.canCreateMonitoring(category));
    }
    bool canDeleteMonitoring(const QString& category)
    {
        return note("canDeleteMonitoring(QString const&)", m_data.canDeleteMonitoring(category));
    }
    bool canEditMonitoring(const QString& category)
    {
        return note("canEditMonitoring(QString const&)", m_data.canEditMonitoring(category));
    }
    bool createGroup(PointLocSetting& group)
    {
        return note("createGroup(PointLocSetting&)", m_data.createGroup(group));
    }
    bool createMonitoring(RKMonitoring& monitoring)
    {
        return note("createMonitoring(RKMonitoring&)", m_data.createMonitoring(monitoring));
    }
    bool createPointLocation(const QList<QList<RKPointLocation>>& batches, QString& message)
    {
        return note("createPointLocation(QList<QList<RKPointLocation> > const&, QString&)",
                    m_data.createPointLocation(batches, message));
    }
    bool createPointLocation(const QList<RKPointLocation>& points)
    {
        return note("createPointLocation(QList<RKPointLocation> const&)", m_data.createPointLocation(points));
    }
    bool deleteGroup(const QString& id)
    {
        return note("deleteGroup(QString const&)", m_data.deleteGroup(id));
    }
    bool deleteMonitoring(const QString& id)
    {
        return note("deleteMonitoring(QString const&)", m_data.deleteMonitoring(id));
    }
    bool deletePointData(const QString& dataManageId)
    {
        return note("deletePointData(QString const&)", m_data.deletePointData(dataManageId));
    }
    bool getAlarmDetailRangeCount(const RKAlarmDetailCondition& condition, int& count)
    {
        return note("getAlarmDetailRangeCount(RKAlarmDetailCondition const&, int&)",
                    m_data.getAlarmDetailRangeCount(condition, count));
    }
    bool getAlarmDetailRangeData(const RKAlarmDetailCondition& condition, int skip, int limit,
                                 QList<RKAlarmDetail>& details)
    {
        return note("getAlarmDetailRangeData(RKAlarmDetailCondition const&, int, int, QList<RKAlarmDetail>&)",
                    m_data.getAlarmDetailRangeData(condition, skip, limit, details));
    }
    bool getAlarmRangeCount(const RKAlarmCondition& condition, int& count)
    {
        return note("getAlarmRangeCount(RKAlarmCondition const&, int&)",
                    m_data.getAlarmRangeCount(condition, count));
    }
    bool getAlarmRangeData(const RKAlarmCondition& condition, int skip, int limit, QList<RKAlarm>& alarms)
    {
        return note("getAlarmRangeData(RKAlarmCondition const&, int, int, QList<RKAlarm>&)",
                    m_data.getAlarmRangeData(condition, skip, limit, alarms));
    }
    bool getAlarmThreeByDetailId(const QString& detailId, const QString& depth, QList<AlarmThree>& depths)
    {
        return note("getAlarmThreeByDetailId(QString const&, QString const&, QList<AlarmThree>&)",
                    m_data.getAlarmThreeByDetailId(detailId, depth, depths));
    }
    bool getCellIdAndName(QList<QPair<QString, QString>>& cells)
    {
        return note("getCellIdAndName(QList<QPair<QString, QString> >&)", m_data.getCellIdAndName(cells));
    }
    bool getDataManageById(QString id, RKDataManage& dataManage)
    {
        return note("getDataManageById(QString, RKDataManage&)", m_data.getDataManageById(id, dataManage));
    }
    bool getDataManageRangeCount(const RKDataManageCondition& condition, int& count)
    {
        return note("getDataManageRangeCount(RKDataManageCondition const&, int&)",
                    m_data.getDataManageRangeCount(condition, count));
    }
    bool getDataManageRangeData(const RKDataManageCondition& condition, int skip, int limit,
                                QList<RKDataManage>& dataManages)
    {
        return note("getDataManageRangeData(RKDataManageCondition const&, int, int, QList<RKDataManage>&)",
                    m_data.getDataManageRangeData(condition, skip, limit, dataManages));
    }
    bool getDepthPointLocation(const RKPointLocationCondition& condition,
                               QMap<QDate, QList<RKPointLocationChartData>>& chartData)
    {
        return note("getDepthPointLocation(RKPointLocationCondition const&, QMap<QDate, "
                    "QList<RKPointLocationChartData> >&)",
                    m_data.getDepthPointLocation(condition, chartData));
    }
    bool getGroupsByCategory(const QString& category, QList<PointLocSetting>& groups)
    {
        return note("getGroupsByCategory(QString const&, QList<PointLocSetting>&)",
                    m_data.getGroupsByCategory(category, groups));
    }
    bool getGroupsByCellId(const QString& cellId, QList<PointLocSetting>& groups, bool useCache)
    {
        return note("getGroupsByCellId(QString const&, QList<PointLocSetting>&, bool)",
                    m_data.getGroupsByCellId(cellId, groups, useCache));
    }
    bool getHistoryRangeCount(const RKHistoryDataCondition& condition, int& count)
    {
        return note("getHistoryRangeCount(RKHistoryDataCondition const&, int&)",
                    m_data.getHistoryRangeCount(condition, count));
    }
    bool getHistoryRangeData(const RKHistoryDataCondition& condition, int skip, int limit,
                             QList<HistoryData>& history)
    {
        return note("getHistoryRangeData(RKHistoryDataCondition const&, int, int, QList<HistoryData>&)",
                    m_data.getHistoryRangeData(condition, skip, limit, history));
    }
    bool getMonitoringById(const QString& id, RKMonitoring& monitoring, bool useCache)
    {
        return note("getMonitoringById(QString const&, RKMonitoring&, bool)",
                    m_data.getMonitoringById(id, monitoring, useCache));
    }
    bool getMonitoringByModelId(const QString& modelId, QList<RKMonitoring>& monitorings)
    {
        return note("getMonitoringByModelId(QString const&, QList<RKMonitoring>&)",
                    m_data.getMonitoringByModelId(modelId, monitorings));
    }
    bool getMonitoringCategory(QStringList& categories)
    {
        return note("getMonitoringCategory(QStringList&)", m_data.getMonitoringCategory(categories));
    }
    QString getMonitoringName(const QString& id)
    {
        const QString found = m_data.getMonitoringName(id);
        note("getMonitoringName(QString const&)", !found.isEmpty());
        return found;
    }
    bool getMonitoringRangeCount(const RKMonitoringCondition& condition, int& count)
    {
        return note("getMonitoringRangeCount(RKMonitoringCondition const&, int&)",
                    m_data.getMonitoringRangeCount(condition, count));
    }
    bool getMonitoringRangeData(const RKMonitoringCondition& condition, int skip, int limit,
                                QList<RKMonitoring>& monitorings)
    {
        // True whatever became of the request; what came tells.
        const bool result = m_data.getMonitoringRangeData(condition, skip, limit, monitorings);
        note("getMonitoringRangeData(RKMonitoringCondition const&, int, int, QList<RKMonitoring>&)",
             !monitorings.isEmpty());
        return result;
    }
    bool getMonitoringSubCategory(const QString& category, QList<RKMonitoringSubCategory>& subCategories)
    {
        return note("getMonitoringSubCategory(QString const&, QList<RKMonitoringSubCategory>&)",
                    m_data.getMonitoringSubCategory(category, subCategories));
    }
    bool getNormalPointLocation(const RKPointLocationCondition& condition,
                                QMap<QDate, QList<RKPointLocationChartData>>& chartData)
    {
        return note("getNormalPointLocation(RKPointLocationCondition const&, QMap<QDate, "
                    "QList<RKPointLocationChartData> >&)",
                    m_data.getNormalPointLocation(condition, chartData));
    }
    bool getPointLocation(RKPointLocationCondition& condition, QList<RKPointLocation>& points, bool useCache)
    {
        return note("getPointLocation(RKPointLocationCondition&, QList<RKPointLocation>&, bool)",
                    m_data.getPointLocation(condition, points, useCache));
    }
    bool getPointLocationByGuid(const QString& uuid, QList<RKPointLocation>& points)
    {
        return note("getPointLocationByGuid(QString const&, QList<RKPointLocation>&)",
                    m_data.getPointLocationByGuid(uuid, points));
    }
    bool getPointLocationByPointId(const QString& pointId, RKPointLocation& point)
    {
        return note("getPointLocationByPointId(QString const&, RKPointLocation&)",
                    m_data.getPointLocationByPointId(pointId, point));
    }
    bool getPointLocationByTimeOrder(RKPointLocationCondition& condition, RKPointLocation& point)
    {
        return note("getPointLocationByTimeOrder(RKPointLocationCondition&, RKPointLocation&)",
                    m_data.getPointLocationByTimeOrder(condition, point));
    }
    bool getSubCategoryById(const QString& id, RKMonitoringSubCategory& subCategory)
    {
        return note("getSubCategoryById(QString const&, RKMonitoringSubCategory&)",
                    m_data.getSubCategoryById(id, subCategory));
    }
    bool updateGroup(const PointLocSetting& old, PointLocSetting& updated)
    {
        return note("updateGroup(PointLocSetting const&, PointLocSetting&)",
                    m_data.updateGroup(old, updated));
    }
    bool updateMonitoring(RKMonitoring& monitoring)
    {
        return note("updateMonitoring(RKMonitoring&)", m_data.updateMonitoring(monitoring));
    }
    bool updatePointLocation(const RKPointLocationCondition& condition,
                             const QMap<QString, QStringList>& links)
    {
        return note("updatePointLocation(RKPointLocationCondition const&, QMap<QString, QStringList> const&)",
                    m_data.updatePointLocation(condition, links));
    }

    void clear() { m_data.clear(); }

    /// Those of `operations` that have not succeeded yet; each as in "deleteGroup(QString const&)".
    static std::vector<std::string> missing(const std::vector<std::string>& operations);

private:
    static bool note(const char* operation, bool isSuccess);
    static std::set<std::string>& succeeded();

    RKMonitoringData& m_data = *RKMonitoringData::instance();
};
