#pragma once

#include "RequestFailure.h"

#include <QString>
#include <QStringList>
#include <RKDataManage.h>

/// A delivery that was taken back, and what that meant.
struct UndoneDelivery
{
    HistoryData delivery;    ///< as it stood in the history, with its identifier
    qint32 correctCount = 0; ///< rows that the delivery had corrected
    QString dataManageId;
    qint64 removed = 0;       ///< samples removed
    qint64 restored = 0;      ///< corrected samples that have their earlier values again
    qint64 removedPoints = 0; ///< points removed, which the delivery had made
    QStringList alarms;       ///< identifiers of those that changed or went
};

namespace extensions {

/// DELETE historyDatas/{id}. Throws the service's refusal when the delivery is not the latest one.
UndoneDelivery undoDelivery(const RequestContext& context, const QString& historyId);

} // namespace extensions
