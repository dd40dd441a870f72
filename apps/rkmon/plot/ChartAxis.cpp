#include "plot/ChartAxis.h"

#include <QDateTime>

#include <qwt_scale_engine.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr ushort minusSign = 0x2212;

// Decimals that tell multiples of `step` apart; negative when none do.
int decimalsOf(double step)
{
    constexpr int most = 12;
    double scaled = step;
    for (int decimals = 0; decimals <= most; ++decimals) {
        if (scaled >= 0.5 && std::abs(scaled - std::round(scaled)) < 1e-6 * scaled) {
            return decimals;
        }
        scaled *= 10.0;
    }
    return -1;
}

QString numberText(double value, double step)
{
    constexpr double largest = 1e7; // longer numbers are written with an exponent
    constexpr int digits = 6;
    const int decimals = decimalsOf(step);
    const double shown = std::abs(value) < step / 2 ? 0.0 : value; // never "-0"
    QString text = decimals < 0 || std::abs(value) >= largest ? QString::number(shown, 'g', digits)
                                                              : QString::number(shown, 'f', decimals);
    return text.replace(QLatin1Char('-'), QChar(minusSign));
}

enum class TimeUnit
{
    Minute,
    Hour,
    Day,
    Month,
    Year
};

// From one tick of an axis of time to the next.
struct TimeStep
{
    TimeUnit unit;
    int count;
};

double lengthOf(const TimeStep& step)
{
    constexpr double minute = 60'000.0; // milliseconds
    constexpr double hour = 60.0 * minute;
    constexpr double day = 24.0 * hour;
    constexpr double month = 30.4375 * day;
    constexpr std::array<double, 5> lengths{minute, hour, day, month, 12.0 * month};
    return lengths[static_cast<std::size_t>(step.unit)] * step.count;
}

// The shortest step that gives so many ticks at most.
TimeStep stepFor(double span, int mostTicks)
{
    static const QVector<TimeStep> steps{
        {TimeUnit::Minute, 1}, {TimeUnit::Minute, 5}, {TimeUnit::Minute, 15}, {TimeUnit::Minute, 30},
        {TimeUnit::Hour, 1},   {TimeUnit::Hour, 2},   {TimeUnit::Hour, 3},    {TimeUnit::Hour, 6},
        {TimeUnit::Hour, 12},  {TimeUnit::Day, 1},    {TimeUnit::Day, 2},     {TimeUnit::Day, 7},
        {TimeUnit::Day, 14},   {TimeUnit::Month, 1},  {TimeUnit::Month, 2},   {TimeUnit::Month, 3},
        {TimeUnit::Month, 6},  {TimeUnit::Year, 1},   {TimeUnit::Year, 2},    {TimeUnit::Year, 5},
        {TimeUnit::Year, 10},  {TimeUnit::Year, 20},  {TimeUnit::Year, 50},   {TimeUnit::Year, 100}};
    const auto fitting = std::find_if(steps.cbegin(), steps.cend(), [&](const TimeStep& step) {
        return span / lengthOf(step) <= mostTicks;
    });
    return fitting == steps.cend() ? steps.constLast() : *fitting;
}

// The last time before or at `time` that a tick stands at. Weeks begin on Mondays.
QDateTime tickBefore(const QDateTime& time, const TimeStep& step)
{
    const QDate date = time.date();
    const auto floored = [&](int number) {
        return number - number % step.count;
    };
    switch (step.unit) {
    case TimeUnit::Minute:
        return {date, QTime(time.time().hour(), floored(time.time().minute())), Qt::UTC};
    case TimeUnit::Hour:
        return {date, QTime(floored(time.time().hour()), 0), Qt::UTC};
    case TimeUnit::Day: {
        const QDate monday(1900, 1, 1);
        return {date.addDays(-(monday.daysTo(date) % step.count)), QTime(0, 0), Qt::UTC};
    }
    case TimeUnit::Month:
        return {QDate(date.year(), floored(date.month() - 1) + 1, 1), QTime(0, 0), Qt::UTC};
    case TimeUnit::Year:
        break;
    }
    return {QDate(floored(date.year()), 1, 1), QTime(0, 0), Qt::UTC};
}

QDateTime tickAfter(const QDateTime& tick, const TimeStep& step)
{
    constexpr int secondsPerMinute = 60;
    constexpr int secondsPerHour = 60 * secondsPerMinute;
    switch (step.unit) {
    case TimeUnit::Minute:
        return tick.addSecs(step.count * secondsPerMinute);
    case TimeUnit::Hour:
        return tick.addSecs(step.count * secondsPerHour);
    case TimeUnit::Day:
        return tick.addDays(step.count);
    case TimeUnit::Month:
        return tick.addMonths(step.count);
    case TimeUnit::Year:
        break;
    }
    return tick.addYears(step.count);
}

QStringList timeLabel(const QDateTime& time, TimeUnit unit)
{
    const QString day = QStringLiteral("yyyy-MM-dd");
    switch (unit) {
    case TimeUnit::Minute:
    case TimeUnit::Hour:
        return {time.toString(QStringLiteral("hh:mm")), time.toString(day)};
    case TimeUnit::Day:
        return {time.toString(day)};
    case TimeUnit::Month:
        return {time.toString(QStringLiteral("yyyy-MM"))};
    case TimeUnit::Year:
        break;
    }
    return {time.toString(QStringLiteral("yyyy"))};
}

QList<double> ticksOf(const QwtScaleDiv& division)
{
    QList<double> ticks = division.ticks(QwtScaleDiv::MajorTick);
    std::sort(ticks.begin(), ticks.end());
    return ticks;
}

// A date is written once for all the hours of its day.
void leaveOutRepeatedDates(QVector<ChartAxis::Tick>& ticks)
{
    QString previous;
    for (ChartAxis::Tick& tick : ticks) {
        if (tick.label.size() < 2) {
            continue;
        }
        const QString date = tick.label[1];
        if (date == previous) {
            tick.label.removeLast();
        }
        previous = date;
    }
}

} // namespace

ChartAxis axisOfValues(double least, double most, int mostTicks)
{
    QwtLinearScaleEngine engine;
    double from = least;
    double to = most;
    double step = 0.0;
    engine.autoScale(mostTicks, from, to, step);
    ChartAxis axis;
    axis.lower = from;
    axis.upper = to;
    for (const double tick : ticksOf(engine.divideScale(from, to, mostTicks, 0, step))) {
        axis.ticks.append({tick, {numberText(tick, step)}});
    }
    return axis;
}

ChartAxis axisOfTimes(double least, double most, int mostTicks)
{
    constexpr double margin = 0.02;                   // of the whole
    constexpr double leastMargin = 30 * 60 * 1'000.0; // milliseconds
    const double beyond = std::max(leastMargin, (most - least) * margin);
    ChartAxis axis;
    axis.lower = least - beyond;
    axis.upper = most + beyond;
    const TimeStep step = stepFor(axis.upper - axis.lower, mostTicks);
    QDateTime tick =
        tickBefore(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::ceil(axis.lower)), Qt::UTC), step);
    const auto valueOf = [](const QDateTime& time) {
        return static_cast<double>(time.toMSecsSinceEpoch());
    };
    for (; valueOf(tick) <= axis.upper; tick = tickAfter(tick, step)) {
        if (valueOf(tick) >= axis.lower) {
            axis.ticks.append({valueOf(tick), timeLabel(tick, step.unit)});
        }
    }
    leaveOutRepeatedDates(axis.ticks);
    return axis;
}
