#pragma once

#include "ServiceSession.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

/// Finds out which sub-category points of a monitoring belong to. The library reads no point's sub-category,
/// but a point and the delivery that made it have the same time of creation.
class PointOrigins
{
public:
    /// Reads the points of these names, and the deliveries of the data held, all of one monitoring.
    PointOrigins(ServiceSession& session, const QString& cellId, const QList<QStringList>& namePortions,
                 const QList<RKDataManage>& held);

    /// Identifiers of the points that were read.
    QList<QString> points() const { return m_pointTimes.keys(); }

    /// Sub-categories that a delivery went to when the point was made: as a rule one. All of them when the
    /// point could not be read.
    QSet<QString> subCategoriesOf(const QString& pointId) const;

private:
    void readPoints(ServiceSession& session, const QString& cellId, const QStringList& names);
    void readDeliveries(ServiceSession& session, const RKDataManage& data);

    QHash<QString, qint64> m_pointTimes;                // milliseconds since 1970 by point
    QHash<qint64, QSet<QString>> m_subCategoriesByTime; // that were delivered to at that time
    QSet<QString> m_subCategories;
};
