#include "extensions/DeliveryUndo.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

HistoryData historyOf(const AnswerObject& object)
{
    HistoryData history;
    history.id = object.identifier("_id");
    history.lastDate = object.timeOrEmpty("lastDate");
    history.lastCount = object.smallInteger("lastCount");
    history.insertCount = object.smallInteger("insertCount");
    history.fileId = object.text("fileId");
    history.createdAt = object.time("createdAt");
    history.createdBy = object.text("createdBy");
    history.updatedAt = object.time("updatedAt");
    history.updatedBy = object.text("updatedBy");
    return history;
}

UndoneDelivery undoneOf(const AnswerObject& object)
{
    UndoneDelivery undone;
    undone.delivery = historyOf(object);
    undone.correctCount = object.smallInteger("correctCount");
    undone.dataManageId = object.identifier("dataManageId");
    undone.removed = object.integer("removed");
    undone.restored = object.integer("restored");
    undone.removedPoints = object.integer("removedPoints");
    undone.alarms = object.texts("alarms");
    return undone;
}

} // namespace

UndoneDelivery undoDelivery(const RequestContext& context, const QString& historyId)
{
    return readResult(deleteResource(context, resourcePath("historyDatas/%1", historyId)), undoneOf);
}

} // namespace extensions
