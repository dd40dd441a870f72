#include "../../support/LocalZone.h"
#include "../../support/Text.h"
#include "query/WhereBuilder.h"

#include <gtest/gtest.h>

namespace {

// The text of the period's end, one day after `endTime`.
QString endOf(const QDateTime& endTime)
{
    RKTimePeriod period;
    period.isAllTime = false;
    period.endTime = endTime;
    return rk::timeRangeClause(period).value("$lt"_q).toString();
}

TEST(WherePeriod, EndsADayAfterAValidEnd)
{
    EXPECT_EQ(endOf(QDateTime(QDate(2024, 2, 28), QTime(18, 30), Qt::UTC)), "29.02.2024 18:30:00"_q);
    EXPECT_EQ(endOf(QDateTime(QDate(-4714, 11, 24), QTime(0, 0), Qt::UTC)), "25.11.-4714 00:00:00"_q)
        << "the companions have a text for such a year";
}

TEST(WherePeriod, ANullTimeIsTheTextOfAnInvalidOne)
{
    RKTimePeriod period;
    period.isAllTime = false;
    const QJsonObject clause = rk::timeRangeClause(period);
    EXPECT_EQ(clause.value("$gte"_q).toString(), "no time"_q);
    EXPECT_EQ(clause.value("$lt"_q).toString(), "no time"_q);
}

TEST(WherePeriod, AnEndThatCouldNotBeReadIsTheTextOfAnInvalidOne)
{
    EXPECT_EQ(endOf(QDateTime::fromString("31 March"_q, Qt::ISODate)), "no time"_q);
    EXPECT_EQ(endOf(QDateTime(QDate(2024, 2, 30), QTime(18, 30), Qt::UTC)), "no time"_q)
        << "a day that does not exist, though the time of day does";
    EXPECT_EQ(endOf(QDateTime(QDate(), QTime(18, 30))), "no time"_q);
}

#ifdef Q_OS_UNIX // where there is a LocalZone

TEST(WherePeriod, AnEndThatTheClocksSkipIsTheTextOfAnInvalidOne)
{
    const LocalZone zone("Europe/Berlin");
    const QDateTime skipped(QDate(2024, 3, 31), QTime(2, 30));
    ASSERT_FALSE(skipped.isValid());
    EXPECT_EQ(endOf(skipped), "no time"_q);
}

TEST(WherePeriod, ADayThatEndsInSkippedTimeEndsAfterIt)
{
    const LocalZone zone("Europe/Berlin");
    // 02:30 of the next day does not exist; an hour later is 03:30 of summer time.
    EXPECT_EQ(endOf(QDateTime(QDate(2024, 3, 30), QTime(2, 30))), "31.03.2024 01:30:00"_q);
}

TEST(WherePeriod, ADayOfLocalTimeMayHaveTwentyThreeHours)
{
    const LocalZone zone("Europe/Berlin");
    EXPECT_EQ(endOf(QDateTime(QDate(2024, 3, 31), QTime(0, 0))), "31.03.2024 22:00:00"_q);
}

#endif

} // namespace
