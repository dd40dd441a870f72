#include "notify/WebhookBody.h"

#include "AlarmedSite.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

TEST(WebhookBody, HoldsAlarmAndDetailsAsTheyAreStored)
{
    Notification notification;
    notification.project = "Hafen \"Süd\"";
    notification.subCategory = "Level";
    notification.alarm.id = "a1";
    notification.id = "a1.0";
    const AlarmDetail fresh = test::excessOf("S1", 5);
    const AlarmDetail grown = test::excessOf("S2", 3);
    notification.news = newsOf({fresh, grown, test::excessOf("S3", 1)}, {{"S2", {1, 0}}, {"S3", {1, 0}}});
    EXPECT_EQ(webhookBody(notification),
              R"({"id":"a1.0","project":"Hafen \"Süd\"","subCategory":"Level","alarm":)" +
                  toDocument(notification.alarm) +
                  R"(,"points":[{"pointName":"S1","isNew":true,"alarmDetails":[)" + toDocument(fresh) +
                  R"(]},{"pointName":"S2","isNew":false,"alarmDetails":[)" + toDocument(grown) +
                  R"(]}],"pointCount":3,"pointsLeft":0})");
}

} // namespace
} // namespace monitorservice
