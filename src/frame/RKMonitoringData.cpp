#include "RKMonitoringData.h"

#include "frame/Permissions.h"
#include "monitoring/CategoryExchanges.h"
#include "monitoring/MonitoringExchanges.h"

// Each member is its cache rule and one exchange. Keys that are needed after an exchange are copied before
// it: an argument may be a member of the record that the exchange overwrites, or belong to a cache that
// events change while the request waits.

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
    if (!rk::createMonitoring(monitoring))
        return false;
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
    if (!rk::updateMonitoring(cached, monitoring))
        return false;
    m_monitorings.insert(monitoring.id, monitoring);
    return true;
}

bool RKMonitoringData::getMonitoringById(const QString& id, RKMonitoring& monitoring, bool useCache)
{
    if (useCache) {
        monitoring = m_monitorings[id];
        return true;
    }
    const QString key = id;
    if (!rk::fetchMonitoring(key, monitoring))
        return false;
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
    if (cached != m_monitorings.constEnd())
        return cached->name;

    const QString key = id;
    RKMonitoring monitoring;
    if (!rk::fetchMonitoring(key, monitoring))
        return QString();
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
        for (const RKMonitoring& monitoring : qAsConst(monitorings))
            m_monitorings.insert(monitoring.id, monitoring);
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
    const QString key = category;
    if (!rk::fetchSubCategories(key, subCategories))
        return false;
    m_subCategoryLists.insert(key, subCategories);
    for (const RKMonitoringSubCategory& subCategory : qAsConst(subCategories))
        m_subCategories.insert(subCategory.id, subCategory);
    return true;
}

bool RKMonitoringData::getSubCategoryById(const QString& id, RKMonitoringSubCategory& subCategory)
{
    const auto cached = m_subCategories.constFind(id);
    if (cached != m_subCategories.constEnd()) {
        subCategory = *cached;
        return true;
    }
    if (!rk::fetchSubCategory(id, subCategory))
        return false;
    m_subCategories.insert(subCategory.id, subCategory);
    return true;
}
