#include "extensions/DeliveryHistory.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

DeliveryEntry deliveryOf(const AnswerObject& object)
{
    DeliveryEntry delivery;
    delivery.id = object.identifier("_id");
    delivery.lastDate = object.timeOrEmpty("lastDate");
    delivery.lastCount = object.smallInteger("lastCount");
    delivery.insertCount = object.smallInteger("insertCount");
    delivery.fileId = object.text("fileId");
    delivery.createdAt = object.time("createdAt");
    delivery.createdBy = object.text("createdBy");
    delivery.updatedAt = object.time("updatedAt");
    delivery.updatedBy = object.text("updatedBy");
    delivery.dataManageId = object.identifier("dataManageId");
    delivery.number = object.integer("number");
    delivery.sentCount = object.integer("sentCount");
    delivery.correctCount = object.smallInteger("correctCount");
    return delivery;
}

UndoneDelivery undoneOf(const AnswerObject& object)
{
    UndoneDelivery undone;
    undone.delivery = deliveryOf(object);
    undone.removed = object.integer("removed");
    undone.restored = object.integer("restored");
    undone.removedPoints = object.integer("removedPoints");
    undone.alarms = object.texts("alarms");
    return undone;
}

} // namespace

QList<DeliveryEntry> readDeliveries(const RequestContext& context, const QString& dataManageId, int skip,
                                    int limit)
{
    const ListRequest list{resourcePath("dataManages/%1/historyDatas", dataManageId), {}, {}, {}};
    return readPage(context, list, skip, limit, deliveryOf);
}

UndoneDelivery undoDelivery(const RequestContext& context, const QString& deliveryId)
{
    return readResult(deleteResource(context, resourcePath("historyDatas/%1", deliveryId)), undoneOf);
}

} // namespace extensions
