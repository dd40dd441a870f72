#pragma once

#include "reading/Problems.h"

#include <QByteArray>
#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>
#include <RKPointLocation.h>

#include <optional>

/// How a file of readings is written; what is not given is detected.
struct MeasuredFileFormat
{
    /// Comma, semicolon or tab.
    std::optional<char> delimiter;
    /// Point or comma.
    std::optional<QChar> decimalSign;
    /// Offset from UTC of times that name none, as in "+01:00"; empty: such times are refused.
    QString utcOffset;
};

/// What a file does not say of its format, so that it must be given.
struct UnclearFormat
{
    bool decimalSign = false;
    bool utcOffset = false;
};

struct Reading
{
    /// Line of the file, from 1.
    int line = 0;
    RKPointLocationData sample;
};

/// A point of a file with its readings, in time order.
struct MeasuredPoint
{
    QString name;
    /// As the shortest decimal text; empty where the point has none.
    QString depth;
    QVector<Reading> readings;
};

/// What a file holds. With problems it is incomplete and must not be used.
struct MeasuredFile
{
    QString path;
    QList<MeasuredPoint> points;
    int readingCount = 0;
    /// Rows that repeat another one; left out.
    int repeatedCount = 0;
    /// Columns that the header names and nothing reads.
    QStringList ignoredColumns;
    Problems problems;
    /// What it would take to read the rows that are among the problems for it.
    UnclearFormat unclear;
};

/// Reads `content`, the readings of a file at `path`: a header that names the columns name, depth, time,
/// count, value and perhaps timeFlag, in any order and case, then one row per reading (RFC 4180). Every row
/// is checked.
MeasuredFile readMeasuredFile(const QString& path, const QByteArray& content,
                              const MeasuredFileFormat& format);

/// The same from the file itself. Throws a Failure when it cannot be opened or read.
MeasuredFile readMeasuredFile(const QString& path, const MeasuredFileFormat& format);
