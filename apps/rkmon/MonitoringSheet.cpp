#include "MonitoringSheet.h"

namespace {

QVector<Column> monitoringColumns()
{
    return {column::fixed("ID", "id"),
            column::text("NAME", "name"),
            column::text("CATEGORY", "category"),
            column::dispensable(3, column::text("MODEL", "modelId")),
            column::dispensable(2, column::text("ALARM TO", "alarmTo")),
            column::unlisted("CREATED", "createdAt"),
            column::unlisted("CREATED BY", "createdBy"),
            column::dispensable(1, column::fixed("UPDATED", "updatedAt")),
            column::unlisted("UPDATED BY", "updatedBy")};
}

} // namespace

Sheet monitoringSheet(const QList<RKMonitoring>& monitorings)
{
    Sheet sheet{monitoringColumns(), {}};
    sheet.rows.reserve(monitorings.size());
    for (const RKMonitoring& monitoring : monitorings) {
        sheet.rows.append({monitoring.id, monitoring.name, monitoring.category,
                           noneIfEmpty(monitoring.modelId), monitoring.alarmTo, monitoring.createdAt,
                           monitoring.createdBy, monitoring.updatedAt, monitoring.updatedBy});
    }
    return sheet;
}
