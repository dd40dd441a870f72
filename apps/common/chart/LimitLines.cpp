#include "chart/LimitLines.h"

#include "PointNames.h"
#include "ThresholdGroups.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace chart {

namespace {

// Names of the points of `days` that a group bounds.
QStringList limitedNames(const Days& days, const QList<PointLocSetting>& groups)
{
    QSet<QString> shown;
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            shown.insert(entry.name);
        }
    }
    QStringList limited;
    for (const PointLocSetting& group : groups) {
        for (const QString& name : group.groupPoint) {
            if (group.totalVar > 0.0 && shown.contains(name) && !limited.contains(name)) {
                limited.append(name);
            }
        }
    }
    return limited;
}

} // namespace

void addLimits(Chart& chart, const Days& days, const QList<PointLocSetting>& groups,
               const QMap<QString, ReferenceValue>& references)
{
    QMap<QString, QString> names; // by label
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            names.insert(pointLabel(entry.name, entry.depth), entry.name);
        }
    }
    for (int curve = 0; curve < chart.curves.size(); ++curve) {
        const QString& label = chart.curves[curve].label;
        const auto reference = references.constFind(label);
        for (const PointLocSetting& group : groups) {
            const bool isLimited = group.totalVar > 0.0 && group.groupPoint.contains(names.value(label));
            if (!isLimited || reference == references.constEnd()) {
                continue;
            }
            for (const double limit : {group.totalVar, -group.totalVar}) {
                chart.limits.append(
                    {QStringLiteral("%1 %2%3")
                         .arg(label, limit > 0.0 ? QStringLiteral("+") : QString(QChar(0x2212)))
                         .arg(std::abs(limit)),
                     reference->value + limit, curve});
            }
        }
    }
}

LimitOrigin addLimitsOf(ServiceSession& session, const RKMonitoring& monitoring, const Days& days,
                        Chart& chart)
{
    const QList<PointLocSetting> groups = groupsOfMonitoring(session, monitoring);
    const QStringList limited = limitedNames(days, groups);
    if (limited.isEmpty()) {
        return LimitOrigin::None;
    }
    const QMap<QString, ReferenceValue> references = readReferenceValues(session, monitoring, limited);
    if (references.isEmpty()) {
        return LimitOrigin::None;
    }
    addLimits(chart, days, groups, references);
    const bool isGuessed =
        std::any_of(references.cbegin(), references.cend(),
                    [](const ReferenceValue& reference) { return reference.isFirstReading; });
    return isGuessed ? LimitOrigin::FirstReading : LimitOrigin::InitialValue;
}

} // namespace chart
