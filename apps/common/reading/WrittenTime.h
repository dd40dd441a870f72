#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

#include <array>
#include <optional>

/// Ways in which files write times. In the first three a date of three numbers, parted by "-", "/", "." or
/// the characters of year, month and day, goes before the clock.
enum class TimeFormat
{
    YearMonthDay,
    DayMonthYear,
    MonthDayYear,
    /// Days as a spreadsheet counts them: 1 is 1900-01-01, and 60 a 29 February 1900 that never was.
    Excel1900,
    /// Days since 1904-01-01.
    Excel1904,
    /// Since 1970-01-01 UTC.
    UnixSeconds,
    UnixMilliseconds
};

constexpr std::array<TimeFormat, 7> timeFormats{
    TimeFormat::YearMonthDay, TimeFormat::DayMonthYear, TimeFormat::MonthDayYear,    TimeFormat::Excel1900,
    TimeFormat::Excel1904,    TimeFormat::UnixSeconds,  TimeFormat::UnixMilliseconds};

/// "day-month-year", "excel-1900" and so on, as people choose it.
QString nameOf(TimeFormat format);
std::optional<TimeFormat> timeFormatNamed(const QString& name);
QStringList timeFormatNames();

/// A time that is written so, as an example for people.
QString exampleOf(TimeFormat format);

/// A date and a clock time; where that clock hangs is known only with an offset.
struct WrittenTime
{
    QDate date;
    int millisecondOfDay = 0;
    /// Seconds; nothing when the text names none.
    std::optional<int> utcOffset;
};

enum class TimeReading
{
    Done,
    /// It is written in another way.
    OtherForm,
    /// It is written so, but there is no such date or hour.
    DoesNotExist
};

/// Reads `text`. The clock may be missing (midnight), lack seconds, or go to twelve with AM or PM; an offset
/// from UTC may follow. Years of two digits are those from 1970 to 2069. The decimal sign is that of numbers
/// of days and seconds. Days as numbers become whole seconds where their digits cannot tell them apart.
TimeReading readWrittenTime(const QString& text, TimeFormat format, QChar decimalSign, WrittenTime& time);

/// The offset that "Z", "+01:00" or "-0330" says, in seconds.
std::optional<int> readUtcOffset(const QString& text);
