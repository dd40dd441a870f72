#include "chart/AlarmMarkers.h"

#include "AlarmsRaised.h"
#include "DailyLimit.h"
#include "extensions/ServiceExtensions.h"

#include <QHash>

#include <cmath>

namespace chart {

namespace {

QHash<QString, AlarmReason> reasonsOf(ServiceSession& session, const QString& alarmId)
{
    QHash<QString, AlarmReason> reasons; // by detail
    if (session.extensions().has(Extension::AlarmReasons)) {
        for (const AlarmReason& reason : session.extensions().alarmReasons(alarmId)) {
            reasons.insert(reason.id, reason);
        }
    }
    return reasons;
}

std::optional<double> numberIn(const QString& text)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? std::make_optional(number) : std::nullopt;
}

std::optional<double> dailyVariationOf(const RKAlarmDetail& detail,
                                       const QHash<QString, AlarmReason>& reasons)
{
    const auto reason = reasons.constFind(detail.id);
    const std::optional<double> variation = numberIn(detail.dayVar);
    if (reason == reasons.constEnd() || !variation) {
        return std::nullopt;
    }
    constexpr double whole = 100.0; // percent
    return reason->dayVarType == daily::inPercent ? *variation / whole * std::abs(reason->reference)
                                                  : *variation;
}

// Where the reading stands in a chart; nothing when that cannot be told.
std::optional<double> placeOf(const AlarmedReading& reading, Values values,
                              const std::optional<double>& reference)
{
    switch (values) {
    case Values::Daily:
        return reading.dailyVariation;
    case Values::Cumulative:
        return reading.totalVariation;
    case Values::Measured:
        break;
    }
    return reference ? std::make_optional(*reference + reading.totalVariation) : std::nullopt;
}

} // namespace

QList<AlarmedReading> alarmedReadings(ServiceSession& session, const RKMonitoring& monitoring)
{
    RKAlarmCondition condition;
    condition.isAllCell = false;
    condition.cellIds = QStringList{monitoring.id};
    QList<AlarmedReading> readings;
    for (const RKAlarm& alarm : alarms::readAll(session, condition)) {
        RKAlarmDetailCondition details;
        details.alarmManId = alarm.id;
        const QHash<QString, AlarmReason> reasons = reasonsOf(session, alarm.id);
        for (const RKAlarmDetail& detail : alarms::readAllDetails(session, details)) {
            if (const std::optional<double> total = numberIn(detail.totalVar)) {
                readings.append({alarm.cellId, alarm.subCategoryId, detail.pointName, detail.depth,
                                 detail.monitorTime, *total, dailyVariationOf(detail, reasons)});
            }
        }
    }
    return readings;
}

void addAlarms(Chart& chart, Values values, const std::optional<QTimeZone>& zone,
               const QList<AlarmedReading>& readings, const ReferenceOf& referenceOf)
{
    for (Chart::Panel& panel : chart.panels) {
        for (const AlarmedReading& reading : readings) {
            for (int curve = 0; curve < panel.curves.size(); ++curve) {
                const Chart::Curve& shown = panel.curves[curve];
                const QDateTime time = siteTime(reading.time, zone);
                const bool isShown = panel.subCategoryId == reading.subCategoryId &&
                                     shown.cellId == reading.cellId && shown.pointName == reading.pointName &&
                                     shown.depth == reading.depth && shown.days.contains(time.date());
                const std::optional<double> value =
                    isShown ? placeOf(reading, values, referenceOf(shown.pointId)) : std::nullopt;
                if (value) {
                    panel.alarms.append({{clockOf(time), *value}, curve});
                }
            }
        }
    }
}

} // namespace chart
