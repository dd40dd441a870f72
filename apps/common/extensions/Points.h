#pragma once

#include "RequestFailure.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <RKPointLocation.h>

#include <optional>

/// A point as the service keeps it, without its samples.
struct PointDetails
{
    QString id;
    QString cellId; ///< identifier of the monitoring
    QString subCategoryId;
    QString name;
    QString depth; ///< as text; empty where the point has none
    QString alias;
    qint32 dataType = 0;
    /// In the unit of the sub-category, 0 among others; nothing when none was given.
    std::optional<double> initialValue;
    QString offsetDirection;
    qint64 samples = 0;   ///< samples held
    QDateTime latestTime; ///< of the latest sample; null without one
};

/// A point with what its samples come to; values are in the unit of the sub-category.
struct PointSummary : PointDetails
{
    QString category;
    /// What variations are counted from: the initial value, or else the earliest reading; nothing without
    /// either.
    std::optional<double> reference;
    /// Least and greatest of the last values of its days; nothing without samples, or when they were not
    /// asked for.
    std::optional<double> minimum;
    std::optional<double> maximum;
    /// The latest sample of those that meet the condition; nothing without one.
    std::optional<RKPointLocationData> latest;
};

/// Which points are summed up, and how.
struct PointSummaryQuery
{
    QJsonObject where; ///< condition; empty: all points of the project
    QString order;     ///< member names with commas between, "-" before one for descending; empty: by `_id`
    bool withExtremes = false; ///< `minimum` and `maximum` are to be filled
};

/// What is to become of a point; what is not set stays.
struct PointChange
{
    /// 0 like any other number. All readings of the point are judged anew then.
    std::optional<double> initialValue;
    /// Without a new one: the initial value is taken back, variations are counted from the earliest reading
    /// again.
    bool removesInitialValue = false;
    std::optional<QString> alias;
    std::optional<qint32> dataType;
    std::optional<QString> offsetDirection;
};

/// A point that is no more.
struct DeletedPoint : PointDetails
{
    qint64 removedSamples = 0;
    QStringList alarms; ///< identifiers of those that changed or went with it
};

/// What became of a point's samples.
struct DeletedSamples
{
    QString pointId;
    qint64 removed = 0;
    QStringList alarms; ///< identifiers of those that changed or went with them
};

namespace extensions {

/// GET projects/{project}/pointLocations?samples=latest, and with rollup=true for the extremes.
QList<PointSummary> readPointSummaries(const RequestContext& context, const QString& project,
                                       const PointSummaryQuery& query, int skip, int limit);

/// GET projects/{project}/pointLocations?only_count=true.
int countPointSummaries(const RequestContext& context, const QString& project,
                        const PointSummaryQuery& query);

/// PATCH pointLocations/{id}; gives the point as it is then.
PointDetails changePoint(const RequestContext& context, const QString& id, const PointChange& change);

/// DELETE pointLocations/{id}.
DeletedPoint deletePoint(const RequestContext& context, const QString& id);

/// DELETE pointLocations/{id}/samples?where=…
DeletedSamples deleteSamples(const RequestContext& context, const QString& pointId, const QJsonObject& where);

} // namespace extensions
