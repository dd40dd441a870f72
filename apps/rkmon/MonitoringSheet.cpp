#include "MonitoringSheet.h"

namespace {

QVector<Column> monitoringColumns()
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    return {{QStringLiteral("ID"), QStringLiteral("id"), listed, fixed},
            {QStringLiteral("NAME"), QStringLiteral("name"), listed, !fixed},
            {QStringLiteral("CATEGORY"), QStringLiteral("category"), listed, !fixed},
            {QStringLiteral("MODEL"), QStringLiteral("modelId"), listed, !fixed},
            {QStringLiteral("ALARM TO"), QStringLiteral("alarmTo"), listed, !fixed},
            {QStringLiteral("CREATED"), QStringLiteral("createdAt"), !listed, fixed},
            {QStringLiteral("CREATED BY"), QStringLiteral("createdBy"), !listed, !fixed},
            {QStringLiteral("UPDATED"), QStringLiteral("updatedAt"), listed, fixed},
            {QStringLiteral("UPDATED BY"), QStringLiteral("updatedBy"), !listed, !fixed}};
}

} // namespace

Sheet monitoringSheet(const QList<RKMonitoring>& monitorings)
{
    Sheet sheet{monitoringColumns(), {}};
    sheet.rows.reserve(monitorings.size());
    for (const RKMonitoring& monitoring : monitorings) {
        const QString model = monitoring.modelId.isEmpty() ? QString() : monitoring.modelId;
        sheet.rows.append({monitoring.id, monitoring.name, monitoring.category, model, monitoring.alarmTo,
                           monitoring.createdAt, monitoring.createdBy, monitoring.updatedAt,
                           monitoring.updatedBy});
    }
    return sheet;
}
