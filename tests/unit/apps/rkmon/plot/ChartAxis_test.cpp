#include "plot/ChartAxis.h"

#include "Text.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace {

double at(int year, int month, int day, int hour = 0, int minute = 0)
{
    return static_cast<double>(
        QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC).toMSecsSinceEpoch());
}

QStringList labels(const ChartAxis& axis)
{
    QStringList found;
    for (const ChartAxis::Tick& tick : axis.ticks) {
        found.append(tick.label.join(QLatin1Char('|')));
    }
    return found;
}

} // namespace

TEST(ChartAxis, OfValuesHasRoundTicksWithTheirDecimals)
{
    EXPECT_EQ(labels(axisOfValues(0.0, 1.0, 5)),
              (QStringList{"0.0"_q, "0.2"_q, "0.4"_q, "0.6"_q, "0.8"_q, "1.0"_q}));
    EXPECT_EQ(labels(axisOfValues(-20.0, 20.0, 4)),
              (QStringList{QString::fromUtf8("−20"), QString::fromUtf8("−10"), "0"_q, "10"_q, "20"_q}));
    EXPECT_EQ(labels(axisOfValues(0.0001, 0.0004, 3)),
              (QStringList{"0.0001"_q, "0.0002"_q, "0.0003"_q, "0.0004"_q}));
    const ChartAxis large = axisOfValues(1e9, 3e9, 4);
    EXPECT_EQ(large.ticks.first().label.first(), "1e+09"_q);
}

TEST(ChartAxis, OfOneValueHasARange)
{
    const ChartAxis axis = axisOfValues(5.0, 5.0, 5);
    EXPECT_LT(axis.lower, 5.0);
    EXPECT_GT(axis.upper, 5.0);
}

TEST(ChartAxis, OfDaysHasMidnights)
{
    const ChartAxis axis = axisOfTimes(at(2026, 3, 2, 8, 15), at(2026, 3, 6, 8, 15), 6);
    EXPECT_EQ(labels(axis), (QStringList{"2026-03-03"_q, "2026-03-04"_q, "2026-03-05"_q, "2026-03-06"_q}));
    EXPECT_EQ(axis.ticks[0].value, at(2026, 3, 3));
    EXPECT_LT(axis.lower, at(2026, 3, 2, 8, 15));
}

TEST(ChartAxis, OfADayHasRoundHoursAndItsDateOnce)
{
    const ChartAxis axis = axisOfTimes(at(2026, 3, 2, 2, 7), at(2026, 3, 2, 13, 7), 6);
    ASSERT_GE(axis.ticks.size(), 3);
    EXPECT_EQ(axis.ticks[0].label.size(), 2);
    EXPECT_EQ(axis.ticks[0].label[1], "2026-03-02"_q);
    for (int i = 0; i < axis.ticks.size(); ++i) {
        EXPECT_TRUE(axis.ticks[i].label[0].endsWith(":00"_q)) << axis.ticks[i].label[0].toStdString();
        EXPECT_EQ(axis.ticks[i].label.size(), i == 0 ? 2 : 1);
    }
}

TEST(ChartAxis, OfYearsHasFirstDays)
{
    EXPECT_EQ(labels(axisOfTimes(at(2020, 6, 1), at(2025, 6, 1), 6)),
              (QStringList{"2021"_q, "2022"_q, "2023"_q, "2024"_q, "2025"_q}));
    EXPECT_EQ(labels(axisOfTimes(at(2026, 1, 10), at(2026, 6, 10), 6)),
              (QStringList{"2026-02"_q, "2026-03"_q, "2026-04"_q, "2026-05"_q, "2026-06"_q}));
}

TEST(ChartAxis, OfOneTimeHasARange)
{
    const ChartAxis axis = axisOfTimes(at(2026, 3, 2), at(2026, 3, 2), 6);
    EXPECT_LT(axis.lower, axis.upper);
    EXPECT_FALSE(axis.ticks.isEmpty());
}
