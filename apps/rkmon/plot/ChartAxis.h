#pragma once

#include <QStringList>
#include <QVector>

/// Where the axis of a chart begins and ends, and what stands along it.
struct ChartAxis
{
    struct Tick
    {
        double value;
        /// Lines of text, top down.
        QStringList label;
    };

    double lower = 0.0;
    double upper = 1.0;
    QVector<Tick> ticks;

    /// The place of `value` on a stretch of the picture that begins where `lower` is.
    double place(double value, double begin, double end) const
    {
        return begin + (value - lower) / (upper - lower) * (end - begin);
    }
};

/// An axis for values from `least` to `most`, about `mostTicks` ticks at round numbers; it begins and ends at
/// ticks.
ChartAxis axisOfValues(double least, double most, int mostTicks);

/// The same for times, in milliseconds since 1970 on the clock of the site: ticks at midnights, round hours,
/// first days of months. It reaches a little beyond both ends.
ChartAxis axisOfTimes(double least, double most, int mostTicks);
