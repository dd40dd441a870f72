#pragma once

#include "Text.h"
#include "chart/DailyStatistic.h"

// A statistic as the tests of charts use it.

inline RKPointLocationChartData entry(const char* name, const char* depth, const QString& time, double value)
{
    RKPointLocationChartData data;
    // One point for each name and depth, unless a test says otherwise.
    data.id = QString::fromUtf8(name) + QString::fromUtf8(depth);
    data.name = QString::fromUtf8(name);
    data.depth = QString::fromUtf8(depth);
    data.time = QDateTime::fromString(time, Qt::ISODate);
    data.value = value;
    return data;
}

inline chart::Days threeDays()
{
    return {{QDate(2026, 3, 2),
             {entry("I1", "2.5", "2026-03-02T23:00:00+01:00"_q, 1.0),
              entry("I1", "10", "2026-03-02T23:00:00+01:00"_q, 2.0)}},
            {QDate(2026, 3, 3),
             {entry("I1", "2.5", "2026-03-03T09:00:00+01:00"_q, 3.0),
              entry("I1", "10", "2026-03-03T09:00:00+01:00"_q, 4.0)}},
            {QDate(2026, 3, 4), {entry("S1", "", "2026-03-04T09:00:00+01:00"_q, 5.0)}}};
}
