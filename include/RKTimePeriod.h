#pragma once

#include <QDateTime>

/// The period that every condition begins with. A time that is invalid, also a local one that the clocks
/// skip, is sent as the date function writes an invalid time.
struct RKTimePeriod
{
    /// True: no restriction in time; `startTime` and `endTime` are not read.
    bool isAllTime = true;
    /// First instant of the period (inclusive).
    QDateTime startTime;
    /// Last day of the period: it ends before `endTime` plus one calendar day, time of day kept.
    /// The same midnight as start and end is thus that whole day.
    QDateTime endTime;
};
