#include "import/DeliveryAnswers.h"

#include "Text.h"

#include <gtest/gtest.h>

namespace {

DeliveredPoint point(const QString& name, const QString& depth, bool isNew, qint64 inserted, qint64 corrected,
                     qint64 unchanged, const QString& alarm = {})
{
    DeliveredPoint delivered;
    delivered.id = name + depth;
    delivered.cellId = "c1"_q;
    delivered.subCategoryId = "s1"_q;
    delivered.name = name;
    delivered.depth = depth;
    delivered.isNew = isNew;
    delivered.inserted = inserted;
    delivered.corrected = corrected;
    delivered.unchanged = unchanged;
    delivered.alarmId = alarm;
    return delivered;
}

} // namespace

TEST(DeliveryAnswers, OfAllRequestsAreAddedUp)
{
    DeliveryAnswers answers;
    answers.add({point("IN1"_q, "2.50"_q, true, 4, 0, 1), point("S1"_q, QString(), false, 0, 2, 3)});
    answers.add({point("IN1"_q, "2.50"_q, false, 5, 1, 0)});
    EXPECT_EQ(answers.inserted(), 9);
    EXPECT_EQ(answers.corrected(), 3);
    EXPECT_EQ(answers.unchanged(), 4);
    EXPECT_EQ(answers.newPoints(), (QSet<PointKey>{{{"c1"_q, "s1"_q}, "IN1"_q, "2.5"_q}}));
    ASSERT_EQ(answers.correctedPoints().size(), 2);
    EXPECT_EQ(answers.correctedPoints()[0].name, "S1"_q);
    EXPECT_EQ(answers.correctedPoints()[1].name, "IN1"_q);
    EXPECT_TRUE(answers.alarms().isEmpty());
}

TEST(DeliveryAnswers, NameThePointsOfEachAlarmOnce)
{
    DeliveryAnswers answers;
    answers.add({point("S2"_q, QString(), false, 1, 0, 0, "a2"_q),
                 point("IN1"_q, "2"_q, false, 1, 0, 0, "a1"_q),
                 point("IN1"_q, "3"_q, false, 1, 0, 0, "a1"_q)});
    answers.add({point("S1"_q, QString(), false, 1, 0, 0, "a2"_q)});
    const QList<RaisedAlarm> alarms = answers.alarms();
    ASSERT_EQ(alarms.size(), 2);
    EXPECT_EQ(alarms[0].id, "a1"_q);
    EXPECT_EQ(alarms[0].points, QStringList{"IN1"_q});
    EXPECT_EQ(alarms[1].points, (QStringList{"S1"_q, "S2"_q}));
}
