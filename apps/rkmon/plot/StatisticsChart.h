#pragma once

#include "plot/Chart.h"

#include <QDate>
#include <QList>
#include <QMap>
#include <QStringList>
#include <RKPointLocation.h>

#include <PointLocSetting.h>

/// Charts of a monitoring's statistics.
namespace chart {

using Days = QMap<QDate, QList<RKPointLocationChartData>>;

/// What the limits of a point count from.
struct Reference
{
    double value = 0.0;
    /// The point's first reading, because its initial value is not known.
    bool isFirstReading = false;
};

/// One curve per point and depth, at the times of the readings.
Chart overTime(const Days& days);

/// Adds the lines of initial value plus and minus limit, of every group that lists a curve's point.
/// `references` are by the curves' labels.
void addLimits(Chart& chart, const Days& days, const QList<PointLocSetting>& groups,
               const QMap<QString, Reference>& references);

/// One curve per day, from the top to the bottom. Readings whose depth is no number are left out.
Chart overDepth(const Days& days);

/// "name" or "name, depth".
QString label(const QString& name, const QString& depth);

/// Names of the points that have several depths on one day: each has a profile of its own.
QStringList namesWithProfile(const Days& days);

/// `days` but for some in between, evenly, so that at most `most` are left: the first and the last stay.
Days thinned(const Days& days, int most);

} // namespace chart
