#include "RKMonitoringData.h"

#include "alarm/AlarmExchanges.h"
#include "datamanage/DataManageExchanges.h"
#include "group/GroupExchanges.h"
#include "monitoring/CategoryExchanges.h"
#include "monitoring/MonitoringExchanges.h"
#include "permission/PermissionExchanges.h"
#include "pointlocation/PointLocationExchanges.h"
#include "pointlocation/StatisticsExchanges.h"

#include <QSet>

#include <algorithm>

// Each member is its cache rule and one exchange.

namespace {

// What is needed after an exchange is copied before it: an argument may be a member of the record that the
// exchange overwrites, or belong to a cache that events change while the request waits.
template <typename Value>
Value ownCopy(const Value& value)
{
    return value;
}

void appendByCell(QMap<QString, QList<RKPointLocation>>& cache, const QList<RKPointLocation>& points)
{
    for (const RKPointLocation& point : points) {
        cache[point.cellId].append(point);
    }
}

} // namespace

RKMonitoringData* RKMonitoringData::instance()
{
    static RKMonitoringData data;
    return &data;
}

RKMonitoringData::RKMonitoringData() = default;
RKMonitoringData::RKMonitoringData(const RKMonitoringData& other) = default;
RKMonitoringData& RKMonitoringData::operator=(const RKMonitoringData& other) = default;
RKMonitoringData::~RKMonitoringData() = default;

void RKMonitoringData::clear()
{
    m_monitorings = {};
    m_subCategoryLists = {};
    m_subCategories = {};
    m_dataManages = {};
    m_groups = {};
    m_pointLocations = {};
}

// ---- Permissions ----------------------------------------------------------------------------------------

bool RKMonitoringData::canCreateMonitoring(const QString& category)
{
    return rk::isPermitted(category, "create");
}

bool RKMonitoringData::canDeleteMonitoring(const QString& category)
{
    return rk::isPermitted(category, "delete");
}

bool RKMonitoringData::canEditMonitoring(const QString& category)
{
    return rk::isPermitted(category, "edit");
}

// ---- Monitorings ----------------------------------------------------------------------------------------

bool RKMonitoringData::createMonitoring(RKMonitoring& monitoring)
{
    if (!rk::createMonitoring(monitoring)) {
        return false;
    }
    m_monitorings.insert(monitoring.id, monitoring);
    return true;
}

bool RKMonitoringData::deleteMonitoring(const QString& id)
{
    return rk::deleteMonitoring(id);
}

bool RKMonitoringData::updateMonitoring(RKMonitoring& monitoring)
{
    const RKMonitoring cached = m_monitorings[monitoring.id];
    if (!rk::updateMonitoring(cached, monitoring)) {
        return false;
    }
    m_monitorings.insert(monitoring.id, monitoring);
    return true;
}

bool RKMonitoringData::getMonitoringById(const QString& id, RKMonitoring& monitoring, bool useCache)
{
    if (useCache) {
        monitoring = m_monitorings[id];
        return true;
    }
    const QString key = ownCopy(id);
    if (!rk::fetchMonitoring(key, monitoring)) {
        return false;
    }
    m_monitorings.insert(key, monitoring);
    return true;
}

bool RKMonitoringData::getMonitoringByModelId(const QString& modelId, QList<RKMonitoring>& monitorings)
{
    return rk::fetchMonitoringsOfModel(modelId, monitorings);
}

QString RKMonitoringData::getMonitoringName(const QString& id)
{
    const auto cached = m_monitorings.constFind(id);
    if (cached != m_monitorings.constEnd()) {
        return cached->name;
    }

    const QString key = ownCopy(id);
    RKMonitoring monitoring;
    if (!rk::fetchMonitoring(key, monitoring)) {
        return QString();
    }
    m_monitorings.insert(key, monitoring);
    return monitoring.name;
}

bool RKMonitoringData::getMonitoringRangeCount(const RKMonitoringCondition& condition, int& count)
{
    return rk::countMonitorings(condition, count);
}

bool RKMonitoringData::getMonitoringRangeData(const RKMonitoringCondition& condition, int skip, int limit,
                                              QList<RKMonitoring>& monitorings)
{
    if (rk::fetchMonitorings(condition, skip, limit, monitorings)) {
        m_monitorings.clear();
        for (const RKMonitoring& monitoring : qAsConst(monitorings)) {
            m_monitorings.insert(monitoring.id, monitoring);
        }
    }
    // A failed page is no news here: callers see it in an unchanged list.
    return true;
}

bool RKMonitoringData::getCellIdAndName(QList<QPair<QString, QString>>& cells)
{
    return rk::fetchMonitoringNames(cells);
}

// ---- Categories and sub-categories ----------------------------------------------------------------------

bool RKMonitoringData::getMonitoringCategory(QStringList& categories)
{
    return rk::fetchCategories(categories);
}

bool RKMonitoringData::getMonitoringSubCategory(const QString& category,
                                                QList<RKMonitoringSubCategory>& subCategories)
{
    const QString key = ownCopy(category);
    if (!rk::fetchSubCategories(key, subCategories)) {
        return false;
    }
    m_subCategoryLists.insert(key, subCategories);
    for (const RKMonitoringSubCategory& subCategory : qAsConst(subCategories)) {
        m_subCategories.insert(subCategory.id, subCategory);
    }
    return true;
}

bool RKMonitoringData::getSubCategoryById(const QString& id, RKMonitoringSubCategory& subCategory)
{
    const auto cached = m_subCategories.constFind(id);
    if (cached != m_subCategories.constEnd()) {
        subCategory = *cached;
        return true;
    }
    if (!rk::fetchSubCategory(id, subCategory)) {
        return false;
    }
    m_subCategories.insert(subCategory.id, subCategory);
    return true;
}

// ---- Point locations ------------------------------------------------------------------------------------

bool RKMonitoringData::createPointLocation(const QList<RKPointLocation>& points)
{
    const QList<RKPointLocation> created = ownCopy(points);
    if (!rk::createPointLocations(created)) {
        return false;
    }
    appendByCell(m_pointLocations, created);
    return true;
}

bool RKMonitoringData::createPointLocation(const QList<QList<RKPointLocation>>& batches, QString& message)
{
    const QList<QList<RKPointLocation>> created = ownCopy(batches);
    if (!rk::createPointLocations(created, message)) {
        return false;
    }
    for (const QList<RKPointLocation>& batch : created) {
        appendByCell(m_pointLocations, batch);
    }
    return true;
}

bool RKMonitoringData::getPointLocation(RKPointLocationCondition& condition, QList<RKPointLocation>& points,
                                        bool useCache)
{
    if (useCache) {
        const auto cached = m_pointLocations.constFind(condition.cellId);
        if (cached != m_pointLocations.constEnd()) {
            points = *cached;
            return true;
        }
    }
    if (!rk::fetchPointLocations(condition, points)) {
        return false;
    }
    // Appended, not replaced: what a cell's entry holds is every point read or created so far.
    appendByCell(m_pointLocations, points);
    return true;
}

bool RKMonitoringData::getPointLocationByGuid(const QString& uuid, QList<RKPointLocation>& points)
{
    return rk::fetchPointLocationsByGuid(uuid, points);
}

bool RKMonitoringData::getPointLocationByPointId(const QString& pointId, RKPointLocation& point)
{
    return rk::fetchPointLocation(pointId, point);
}

bool RKMonitoringData::getPointLocationByTimeOrder(RKPointLocationCondition& condition,
                                                   RKPointLocation& point)
{
    return rk::fetchNewestPointLocation(condition, point);
}

bool RKMonitoringData::updatePointLocation(const RKPointLocationCondition& condition,
                                           const QMap<QString, QStringList>& links)
{
    const RKPointLocationCondition asked = ownCopy(condition);
    const QMap<QString, QStringList> newLinks = ownCopy(links);
    if (!rk::updatePointLocationLinks(asked, newLinks)) {
        return false;
    }
    const QSet<QString> names(asked.names.begin(), asked.names.end());
    for (RKPointLocation& point : m_pointLocations[asked.cellId]) {
        if (names.contains(point.name)) {
            point.links = newLinks;
        }
    }
    return true;
}

// ---- Statistics -----------------------------------------------------------------------------------------

bool RKMonitoringData::getNormalPointLocation(const RKPointLocationCondition& condition,
                                              QMap<QDate, QList<RKPointLocationChartData>>& chartData)
{
    return rk::fetchNormalStatistics(condition, chartData);
}

bool RKMonitoringData::getDepthPointLocation(const RKPointLocationCondition& condition,
                                             QMap<QDate, QList<RKPointLocationChartData>>& chartData)
{
    return rk::fetchDepthStatistics(condition, chartData);
}

// ---- Groups ---------------------------------------------------------------------------------------------

bool RKMonitoringData::createGroup(PointLocSetting& group)
{
    if (!rk::createGroup(group)) {
        return false;
    }
    m_groups[group.cellId].append(group);
    return true;
}

bool RKMonitoringData::deleteGroup(const QString& id)
{
    const QString deleted = ownCopy(id);
    QString cellId;
    if (!rk::deleteGroup(deleted, cellId)) {
        return false;
    }
    QList<PointLocSetting>& groups = m_groups[cellId];
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [&deleted](const PointLocSetting& group) { return group.id == deleted; }),
                 groups.end());
    return true;
}

bool RKMonitoringData::updateGroup(const PointLocSetting& old, PointLocSetting& updated)
{
    if (!rk::updateGroup(old, updated)) {
        return false;
    }
    QList<PointLocSetting>& groups = m_groups[updated.cellId];
    const auto cached = std::find_if(groups.begin(), groups.end(), [&updated](const PointLocSetting& group) {
        return group.id == updated.id;
    });
    if (cached != groups.end()) {
        *cached = updated;
    }
    return true;
}

bool RKMonitoringData::getGroupsByCategory(const QString& category, QList<PointLocSetting>& groups)
{
    return rk::fetchGroupsOfCategory(category, groups);
}

bool RKMonitoringData::getGroupsByCellId(const QString& cellId, QList<PointLocSetting>& groups, bool useCache)
{
    if (useCache) {
        const auto cached = m_groups.constFind(cellId);
        if (cached != m_groups.constEnd()) {
            groups = *cached;
            return true;
        }
    }
    const QString key = ownCopy(cellId);
    if (!rk::fetchGroupsOfCell(key, groups)) {
        return false;
    }
    m_groups.insert(key, groups);
    return true;
}

// ---- Data manages and their history ---------------------------------------------------------------------

// By value as applications are compiled against it.
bool RKMonitoringData::getDataManageById(QString id, // NOLINT(performance-unnecessary-value-param)
                                         RKDataManage& dataManage)
{
    const auto cached = m_dataManages.constFind(id);
    if (cached == m_dataManages.constEnd()) {
        return false;
    }
    dataManage = *cached;
    return true;
}

bool RKMonitoringData::getDataManageRangeCount(const RKDataManageCondition& condition, int& count)
{
    return rk::countDataManages(condition, count);
}

bool RKMonitoringData::getDataManageRangeData(const RKDataManageCondition& condition, int skip, int limit,
                                              QList<RKDataManage>& dataManages)
{
    if (!rk::fetchDataManages(condition, skip, limit, dataManages)) {
        return false;
    }
    for (const RKDataManage& dataManage : qAsConst(dataManages)) {
        m_dataManages.insert(dataManage.id, dataManage);
    }
    return true;
}

bool RKMonitoringData::deletePointData(const QString& dataManageId)
{
    return rk::deleteDataManage(dataManageId);
}

bool RKMonitoringData::getHistoryRangeCount(const RKHistoryDataCondition& condition, int& count)
{
    return rk::countHistory(condition, count);
}

bool RKMonitoringData::getHistoryRangeData(const RKHistoryDataCondition& condition, int skip, int limit,
                                           QList<HistoryData>& history)
{
    return rk::fetchHistory(condition, skip, limit, history);
}

// ---- Alarms ---------------------------------------------------------------------------------------------

bool RKMonitoringData::getAlarmRangeCount(const RKAlarmCondition& condition, int& count)
{
    return rk::countAlarms(condition, count);
}

bool RKMonitoringData::getAlarmRangeData(const RKAlarmCondition& condition, int skip, int limit,
                                         QList<RKAlarm>& alarms)
{
    return rk::fetchAlarms(condition, skip, limit, alarms);
}

bool RKMonitoringData::getAlarmDetailRangeCount(const RKAlarmDetailCondition& condition, int& count)
{
    return rk::countAlarmDetails(condition, count);
}

bool RKMonitoringData::getAlarmDetailRangeData(const RKAlarmDetailCondition& condition, int skip, int limit,
                                               QList<RKAlarmDetail>& details)
{
    return rk::fetchAlarmDetails(condition, skip, limit, details);
}

bool RKMonitoringData::getAlarmThreeByDetailId(const QString& detailId, const QString& depth,
                                               QList<AlarmThree>& depths)
{
    return rk::fetchAlarmDepths(detailId, depth, depths);
}
