#pragma once

#include "PointNames.h"
#include "Text.h"
#include "chart/StatisticsChart.h"

// What the points of statistics measure, as the tests of charts use it.

inline MeasuredSubCategory quantity(const char* id, const char* name, const char* unit)
{
    MeasuredSubCategory made;
    made.id = QString::fromUtf8(id);
    made.name = QString::fromUtf8(name);
    made.unit = QString::fromUtf8(unit);
    return made;
}

/// Points of the monitoring "c" whose name begins with "S" settle, the others are displaced.
inline chart::ShownPoint pointByName(const RKPointLocationChartData& entry)
{
    return {entry.name.startsWith(QLatin1Char('S')) ? quantity("s2", "Settlement", "mm")
                                                    : quantity("s1", "Displacement", "cm"),
            "c"_q, pointLabel(entry.name, entry.depth)};
}
