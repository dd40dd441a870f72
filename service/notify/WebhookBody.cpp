#include "notify/WebhookBody.h"

#include "json/JsonText.h"

namespace monitorservice {

namespace {

std::string pointText(const PointNews& point)
{
    JsonArrayWriter details;
    for (const AlarmDetail& detail : point.details) {
        details.json(toDocument(detail));
    }
    return JsonObjectWriter()
        .text("pointName", point.point)
        .boolean("isNew", !point.before)
        .json("alarmDetails", details.finish())
        .finish();
}

} // namespace

std::string webhookBody(const Notification& notification)
{
    JsonArrayWriter points;
    for (const PointNews& point : notification.news.points) {
        points.json(pointText(point));
    }
    return JsonObjectWriter()
        .text("id", notification.id)
        .text("project", notification.project)
        .text("subCategory", notification.subCategory)
        .json("alarm", toDocument(notification.alarm))
        .json("points", points.finish())
        .integer("pointCount", static_cast<std::int64_t>(notification.news.pointCount))
        .integer("pointsLeft", static_cast<std::int64_t>(notification.news.left))
        .finish();
}

} // namespace monitorservice
