#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A point of a delivery, and what became of its samples.
struct DeliveredPoint
{
    QString id;
    QString cellId; ///< identifier of the monitoring
    QString subCategoryId;
    QString name;
    QString depth; ///< as the service keeps it; empty where the point has none
    bool isNew = false;
    qint64 inserted = 0;
    qint64 corrected = 0; ///< held, and got another value or flag
    qint64 unchanged = 0;
    /// The alarm in which readings of its name stand that were not beyond a limit before; empty: none.
    QString alarmId;
    /// The entry in the history of the delivery; empty when it changed nothing.
    QString deliveryId;
};

namespace extensions {

/// The points in the answer to POST pointLocations, each once. Throws a Failure (BadAnswer) that says that
/// the delivery was made when the answer is of another form.
QList<DeliveredPoint> deliveredPoints(const QString& purpose, const QByteArray& answer);

} // namespace extensions
