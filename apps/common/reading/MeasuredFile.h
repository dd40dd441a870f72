#pragma once

#include "reading/FileMapping.h"
#include "reading/Problems.h"
#include "reading/UnclearFormat.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>
#include <RKPointLocation.h>

#include <functional>
#include <optional>

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
    /// What the file calls what it measures; empty where it does not say.
    QString subCategory;
    /// Whether the file says what its variations count from, and that; nothing: no initial value was given.
    bool hasInitialValue = false;
    std::optional<double> initialValue;
    QVector<Reading> readings;
};

/// The unit of readings as a file says it.
struct WrittenUnit
{
    QString unit;
    /// The first line that says it.
    int line = 0;
};

/// A row that cannot be read, as it stands in the file.
struct BadRow
{
    int line = 0;
    /// UTF-8, without its line end.
    QByteArray text;
    QString reason;
};

/// The bad rows of a file, and the lines above its rows as they stand there.
struct BadRows
{
    QByteArray above;
    /// Without its line end; empty: there is none.
    QByteArray header;
    QByteArray below;
    char delimiter = ',';
    QVector<BadRow> rows;
};

/// Whether a reader keeps the bad rows, or only what is wrong with them.
enum class BadRowKeeping
{
    Reasons,
    Rows
};

/// What a file holds. With problems it is incomplete: it may be used without its bad rows where they are
/// kept, unless it could not be read at all.
struct MeasuredFile
{
    QString path;
    QList<MeasuredPoint> points;
    int readingCount = 0;
    /// Rows that repeat another one; left out.
    int repeatedCount = 0;
    /// Cells that say that there is no reading; left out.
    int withoutReadingCount = 0;
    /// Columns that the header names and nothing reads.
    QStringList ignoredColumns;
    /// Whether its readings have types that a mapping can give sub-categories to.
    bool hasTypes = false;
    /// Units that must be those of the sub-categories, by what the file calls what it measures.
    QMultiMap<QString, WrittenUnit> units;
    Problems problems;
    /// Whether its columns and the form of its numbers and times are known, so that its rows were read.
    bool isFormatKnown = false;
    /// Whether the problems are those of single rows, and not what must be said of the whole file.
    bool isReadable = false;
    FileEncoding encoding = FileEncoding::Utf8;
    /// Whether a problem is that bytes mean nothing in the encoding.
    bool holdsForeignBytes = false;
    /// The decimal sign that was given or detected, and the way of writing times that was detected.
    QChar decimalSign = u'.';
    TimeFormat timeFormat = TimeFormat::YearMonthDay;
    /// Only where they are kept.
    BadRows badRows;
    /// What it would take to read the rows that are among the problems for it.
    UnclearFormat unclear;
};

/// Reads the readings of a table from its text: by default a header that names the columns name, depth, time,
/// count, value and perhaps timeFlag, subCategory and initialValue, in any order and case, then one row per
/// reading (RFC 4180). Every row is checked. A table without counts has one reading of a point at a time: its
/// count is 1. Throws a Failure (BadInput) when the mapping is for files of another form.
void readTable(const QByteArray& text, const FileMapping& mapping, BadRowKeeping keeping, MeasuredFile& file);

/// Reads readings into a file from its text, which is UTF-8 unless the file says otherwise.
using TextReading = std::function<void(const QByteArray& text, MeasuredFile& file)>;

/// The file at `path`: `content` as text in `encoding`, and what `read` reads of that.
MeasuredFile readMeasuredText(const QString& path, const QByteArray& content,
                              std::optional<FileEncoding> encoding, const TextReading& read);

/// The file at `path`, whose content is a table that is written as `mapping` says.
MeasuredFile readMeasuredFile(const QString& path, const QByteArray& content, const FileMapping& mapping,
                              BadRowKeeping keeping = BadRowKeeping::Reasons);
