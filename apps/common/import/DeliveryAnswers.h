#pragma once

#include "extensions/DeliveryResults.h"
#include "import/Deliveries.h"
#include "import/ImportOutcome.h"

#include <QMap>
#include <QSet>

/// What the service answered to the deliveries of an import.
class DeliveryAnswers
{
public:
    void add(const QList<DeliveredPoint>& points);

    qint64 inserted() const { return m_inserted; }
    qint64 corrected() const { return m_corrected; }
    qint64 unchanged() const { return m_unchanged; }

    /// Points that were made.
    const QSet<PointKey>& newPoints() const { return m_newPoints; }

    /// The earliest first.
    QList<RaisedAlarm> alarms() const;

    /// Points of which samples were corrected, with what each delivery did.
    const QList<DeliveredPoint>& correctedPoints() const { return m_correctedPoints; }

private:
    qint64 m_inserted = 0;
    qint64 m_corrected = 0;
    qint64 m_unchanged = 0;
    QSet<PointKey> m_newPoints;
    QMap<QString, QSet<QString>> m_alarms; // names of points by alarm; identifiers rise with time
    QList<DeliveredPoint> m_correctedPoints;
};
