#pragma once

#include "RequestFailure.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <RKDataManage.h>

/// One delivery of a data manage, with its identifier.
struct DeliveryEntry : HistoryData
{
    QString dataManageId;
    qint64 number = 0;       ///< among those of its data manage, from 1; 0: it was not counted yet
    qint64 sentCount = 0;    ///< rows that it brought
    qint32 correctCount = 0; ///< rows held to which it gave another value or flag
};

/// A delivery that was taken back, and what that meant.
struct UndoneDelivery
{
    DeliveryEntry delivery;   ///< as it stood in the history
    qint64 removed = 0;       ///< samples removed
    qint64 restored = 0;      ///< corrected samples that have their earlier values again
    qint64 removedPoints = 0; ///< points removed, which the delivery had made
    QStringList alarms;       ///< identifiers of those that changed or went
};

namespace extensions {

/// GET dataManages/{id}/historyDatas, the latest first.
QList<DeliveryEntry> readDeliveries(const RequestContext& context, const QString& dataManageId, int skip,
                                    int limit);

/// DELETE historyDatas/{id}. Throws the service's refusal when the delivery is not the latest one.
UndoneDelivery undoDelivery(const RequestContext& context, const QString& deliveryId);

} // namespace extensions
