#include "Part.h"

#include "RKMonitoringData.h"

#include <RKBaseApi.h>
#include <RKSoftCache.h>

namespace {

void connectTo(const QString& baseAddress)
{
    RKBaseApi::GetInstance().setBaseApi(baseAddress);
    GetSoftCache()->setProjectId(QString::fromLatin1("p7"));
}

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
    static constexpr Part functions{connectTo, instance, monitoringName, cellIdsAndNames, deliver};
    return &functions;
}
