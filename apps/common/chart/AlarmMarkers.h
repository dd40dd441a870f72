#pragma once

#include "ServiceSession.h"
#include "chart/Chart.h"
#include "chart/StatisticsChart.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QTimeZone>
#include <RKMonitoring.h>

#include <optional>

namespace chart {

/// A reading that is beyond a limit, as an alarm tells of it.
struct AlarmedReading
{
    QString cellId;
    QString subCategoryId;
    QString pointName;
    QString depth;
    QDateTime time;
    double totalVariation = 0.0;
    /// In the unit of the values; nothing when there is none, or it is not told whether it is in percent.
    std::optional<double> dailyVariation;
};

/// The readings that the alarms of `monitoring` tell of: of each point the worst ones.
QList<AlarmedReading> alarmedReadings(ServiceSession& session, const RKMonitoring& monitoring);

/// Marks those of the days that a curve shows.
void addAlarms(Chart& chart, Values values, const std::optional<QTimeZone>& zone,
               const QList<AlarmedReading>& readings, const ReferenceOf& referenceOf);

} // namespace chart
