#include "chart/Profiles.h"

#include "DailyValues.h"

#include <gtest/gtest.h>

namespace {

RKPointLocationChartData at(const char* depth, int day, double value)
{
    return entry("I1", depth, "2026-03-0%1T08:00:00+01:00"_q.arg(day), value);
}

QDate march(int day)
{
    return {2026, 3, day};
}

// The depth of 10 is not measured on the third.
chart::Days days()
{
    return {{march(2), {at("2.5", 2, 1.0), at("10", 2, 0.5)}},
            {march(3), {at("2.5", 3, 3.0)}},
            {march(5), {at("10", 5, 2.5), at("2.5", 5, 7.0)}}};
}

QStringList texts(const chart::Days& days)
{
    QStringList found;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        for (const RKPointLocationChartData& entry : *day) {
            found.append("%1 %2 %3"_q.arg(day.key().day()).arg(entry.depth).arg(entry.value));
        }
    }
    return found;
}

} // namespace

TEST(Profiles, CountFromTheFirstDayOfEachDepth)
{
    EXPECT_EQ(texts(chart::changes(days(), chart::firstDay(days()))),
              (QStringList{"2 2.5 0"_q, "2 10 0"_q, "3 2.5 2"_q, "5 10 2"_q, "5 2.5 6"_q}));
}

TEST(Profiles, CountFromThePreviousDayOfEachDepth)
{
    EXPECT_EQ(texts(chart::changes(days(), chart::previousDay(days()))),
              (QStringList{"3 2.5 2"_q, "5 10 2"_q, "5 2.5 4"_q}));
}

TEST(Profiles, CountFromADay)
{
    EXPECT_EQ(texts(chart::changes(days(), chart::thatDay(days(), march(3)))),
              (QStringList{"2 2.5 -2"_q, "3 2.5 0"_q, "5 2.5 4"_q}));
    EXPECT_TRUE(chart::changes(days(), chart::thatDay(days(), march(4))).isEmpty());
}

TEST(Profiles, CountFromDaysThatAreNotShown)
{
    const chart::Days shown{{march(5), days()[march(5)]}};
    EXPECT_EQ(texts(chart::changes(shown, chart::previousDay(days()))),
              (QStringList{"5 10 2"_q, "5 2.5 4"_q}));
}

TEST(Profiles, IncrementsAreWhatEachDepthAddsToTheNextDeeperOne)
{
    EXPECT_EQ(texts(chart::increments(days())),
              (QStringList{"2 2.5 0.5"_q, "2 10 0.5"_q, "3 2.5 3"_q, "5 2.5 4.5"_q, "5 10 2.5"_q}));
}

TEST(Profiles, IncrementsSumUpToTheValues)
{
    QList<RKPointLocationChartData> profile;
    for (int i = 1; i <= 40; ++i) {
        // Halves and quarters are added without rounding.
        profile.append(at(QByteArray::number(i * 0.5).constData(), 2, (i * 37 % 23) * 0.25));
    }
    const QList<RKPointLocationChartData> added = chart::increments({{march(2), profile}})[march(2)];
    ASSERT_EQ(added.size(), profile.size());
    double sum = 0.0;
    for (int i = added.size() - 1; i >= 0; --i) {
        sum += added[i].value;
        EXPECT_EQ(sum, profile[i].value) << profile[i].depth.toStdString();
    }
}

TEST(Profiles, WhatHasNoNumberForADepthHasNoIncrement)
{
    EXPECT_TRUE(chart::increments({{march(2), {at("", 2, 1.0), at("top", 2, 1.0)}}}).isEmpty());
}
