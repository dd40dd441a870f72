#include "Part.h"

#include "RKMonitoringData.h"

namespace {

const void* instance()
{
    return RKMonitoringData::instance();
}

QString monitoringName(const QString& id)
{
    return RKMonitoringData::instance()->getMonitoringName(id);
}

bool cellIdsAndNames(QList<QPair<QString, QString>>& cells)
{
    return RKMonitoringData::instance()->getCellIdAndName(cells);
}

bool deliver(QString& message)
{
    return RKMonitoringData::instance()->createPointLocation(QList<QList<RKPointLocation>>(), message);
}

} // namespace

extern "C" Q_DECL_EXPORT const Part* part()
{
    static constexpr Part functions{instance, monitoringName, cellIdsAndNames, deliver};
    return &functions;
}
