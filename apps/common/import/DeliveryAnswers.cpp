#include "import/DeliveryAnswers.h"

#include "PointNames.h"

void DeliveryAnswers::add(const QList<DeliveredPoint>& points)
{
    for (const DeliveredPoint& point : points) {
        m_inserted += point.inserted;
        m_corrected += point.corrected;
        m_unchanged += point.unchanged;
        if (point.isNew) {
            m_newPoints.insert({{point.cellId, point.subCategoryId}, point.name, plainDepth(point.depth)});
        }
        if (point.corrected > 0) {
            m_correctedPoints.append(point);
        }
        if (!point.alarmId.isEmpty()) {
            m_alarms[point.alarmId].insert(point.name);
        }
    }
}

QList<RaisedAlarm> DeliveryAnswers::alarms() const
{
    QList<RaisedAlarm> alarms;
    for (auto alarm = m_alarms.cbegin(); alarm != m_alarms.cend(); ++alarm) {
        QStringList points = alarm->values();
        points.sort();
        alarms.append({alarm.key(), points});
    }
    return alarms;
}
