#include "extensions/DeliveryResults.h"

#include "extensions/ServiceRequest.h"

#include <QJsonDocument>

namespace extensions {

namespace {

DeliveredPoint pointOf(const AnswerObject& object)
{
    DeliveredPoint point;
    point.id = object.identifier("_id");
    point.cellId = object.identifier("cellId");
    point.subCategoryId = object.identifier("subCategoryId");
    point.name = object.text("name");
    point.depth = object.text("depth");
    point.isNew = object.flag("isNew");
    point.inserted = object.integer("inserted");
    point.corrected = object.integer("corrected");
    point.unchanged = object.integer("unchanged");
    point.alarmId = object.text("alarmId");
    point.deliveryId = object.text("deliveryId");
    return point;
}

} // namespace

QList<DeliveredPoint> deliveredPoints(const QString& purpose, const QByteArray& answer)
{
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    try {
        if (!document.isArray()) {
            throw Failure(FailureKind::BadAnswer,
                          QStringLiteral("cannot %1: the answer is not a list").arg(purpose));
        }
        QList<DeliveredPoint> points;
        for (const AnswerObject& object : objectsOf(purpose, document.array())) {
            points.append(pointOf(object));
        }
        return points;
    } catch (const Failure& failure) {
        throw afterChange(failure);
    }
}

} // namespace extensions
