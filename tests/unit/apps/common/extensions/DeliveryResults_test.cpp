#include "extensions/DeliveryResults.h"

#include "ScriptedExtensions.h"

namespace {

const QString purpose = QStringLiteral("deliver a.csv");

class DeliveryResults : public ScriptedExtensions
{
protected:
    const QJsonObject point =
        jsonObject(R"({"_id":"p1","cellId":"c1","subCategoryId":"s1","name":"IN1","depth":"2.5","isNew":true,
                       "insertCount":90,"lastCount":90,"lastDate":"2026-03-06T08:00:00.000+01:00",
                       "inserted":40,"corrected":2,"unchanged":3,"alarmId":"a1","deliveryId":"h1"})");

    static QByteArray textOf(const QJsonObject& object) { return QJsonDocument(QJsonArray{object}).toJson(); }
};

} // namespace

TEST_F(DeliveryResults, SayWhatBecameOfEachPoint)
{
    const QList<DeliveredPoint> points = extensions::deliveredPoints(purpose, textOf(point));
    ASSERT_EQ(points.size(), 1);
    EXPECT_EQ(points[0].id, "p1"_q);
    EXPECT_EQ(points[0].cellId, "c1"_q);
    EXPECT_EQ(points[0].subCategoryId, "s1"_q);
    EXPECT_EQ(points[0].name, "IN1"_q);
    EXPECT_EQ(points[0].depth, "2.5"_q);
    EXPECT_TRUE(points[0].isNew);
    EXPECT_EQ(points[0].inserted, 40);
    EXPECT_EQ(points[0].corrected, 2);
    EXPECT_EQ(points[0].unchanged, 3);
    EXPECT_EQ(points[0].alarmId, "a1"_q);
    EXPECT_EQ(points[0].deliveryId, "h1"_q);
    EXPECT_TRUE(extensions::deliveredPoints(purpose, "[]").isEmpty());
}

TEST_F(DeliveryResults, AreCheckedMemberByMember)
{
    QByteArray text;
    expectMembersAreChecked(
        point, [&](const QJsonObject& wrong) { text = textOf(wrong); },
        [&] { extensions::deliveredPoints(purpose, text); }, {"insertCount"_q, "lastCount"_q, "lastDate"_q},
        {"insertCount"_q, "lastCount"_q, "lastDate"_q});
}

TEST_F(DeliveryResults, OfAnotherFormSayThatTheDeliveryWasMade)
{
    for (const char* text : {"", "{}", "[1]", "no"}) {
        EXPECT_THAT(messageOf([&] { extensions::deliveredPoints(purpose, text); }),
                    testing::EndsWith("; the service has carried it out all the same"))
            << text;
    }
}
