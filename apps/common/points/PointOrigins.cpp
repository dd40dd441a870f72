#include "points/PointOrigins.h"

#include "PagedReading.h"

PointOrigins::PointOrigins(ServiceSession& session, const QString& cellId,
                           const QList<QStringList>& namePortions, const QList<RKDataManage>& held)
{
    for (const QStringList& names : namePortions) {
        readPoints(session, cellId, names);
    }
    for (const RKDataManage& data : held) {
        readDeliveries(session, data);
    }
}

void PointOrigins::readPoints(ServiceSession& session, const QString& cellId, const QStringList& names)
{
    RKPointLocationCondition condition;
    condition.cellId = cellId;
    condition.names = names;
    QList<RKPointLocation> points;
    session.ask(QStringLiteral("read the points that exist already"),
                [&] { return session.projectData().getPointLocation(condition, points, false); });
    for (const RKPointLocation& point : qAsConst(points)) {
        m_pointTimes.insert(point.id, point.createdAt.toMSecsSinceEpoch());
    }
    session.data().clear(); // their samples
}

void PointOrigins::readDeliveries(ServiceSession& session, const RKDataManage& data)
{
    m_subCategories.insert(data.subCategoryId);
    RKHistoryDataCondition condition;
    condition.dataManageId = data.id;
    // Newest first and never fewer: what is added meanwhile makes pages overlap, but none is missed.
    for (int skip = 0;; skip += paging::pageRows) {
        QList<HistoryData> page;
        session.ask(QStringLiteral("list the deliveries of %1").arg(data.id), [&] {
            return session.projectData().getHistoryRangeData(condition, skip, paging::pageRows, page);
        });
        for (const HistoryData& entry : qAsConst(page)) {
            m_subCategoriesByTime[entry.createdAt.toMSecsSinceEpoch()].insert(data.subCategoryId);
        }
        if (page.size() < paging::pageRows) {
            return;
        }
    }
}

QSet<QString> PointOrigins::subCategoriesOf(const QString& pointId) const
{
    const auto time = m_pointTimes.constFind(pointId);
    return time == m_pointTimes.constEnd() ? m_subCategories : m_subCategoriesByTime.value(*time);
}
