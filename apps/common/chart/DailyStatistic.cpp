#include "chart/DailyStatistic.h"

namespace chart {

Days readDays(ServiceSession& session, const RKMonitoring& monitoring,
              const RKPointLocationCondition& condition, Statistic statistic)
{
    const QString purpose = QStringLiteral("read the statistics of \"%1\"").arg(monitoring.name);
    const auto read = statistic == Statistic::Normal ? &RKMonitoringData::getNormalPointLocation
                                                     : &RKMonitoringData::getDepthPointLocation;
    Days days;
    session.ask(purpose, [&] { return (session.projectData().*read)(condition, days); });
    // The library puts a day whose time it cannot read under the null date.
    if (days.contains(QDate())) {
        throw Failure(FailureKind::BadAnswer,
                      QStringLiteral("cannot %1: the answer holds a day without a date").arg(purpose));
    }
    return days;
}

} // namespace chart
