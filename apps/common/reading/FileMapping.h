#pragma once

#include "reading/FileEncoding.h"
#include "reading/SiteClock.h"
#include "reading/WrittenTime.h"

#include <QByteArray>
#include <QChar>
#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimeZone>

#include <array>
#include <optional>

class JsonNode;

/// What a table can say of a reading. Date and clock together are the time.
enum class MeasuredColumn
{
    Name,
    Depth,
    Time,
    Date,
    Clock,
    Count,
    Value,
    TimeFlag,
    SubCategory, ///< what is measured
    InitialValue ///< what the variations of the point count from
};

constexpr std::array<MeasuredColumn, 10> measuredColumns{
    MeasuredColumn::Name,        MeasuredColumn::Depth,       MeasuredColumn::Time,  MeasuredColumn::Date,
    MeasuredColumn::Clock,       MeasuredColumn::Count,       MeasuredColumn::Value, MeasuredColumn::TimeFlag,
    MeasuredColumn::SubCategory, MeasuredColumn::InitialValue};

/// "name", "timeFlag" and so on.
QString nameOf(MeasuredColumn column);
std::optional<MeasuredColumn> measuredColumnNamed(const QString& name);

/// A column of a table: by its title, or by its number from 1.
struct ColumnReference
{
    QString title;
    int number = 0;
};

/// How readings stand in a table.
enum class TableLayout
{
    /// One in each row.
    Rows,
    /// A row per time, a column per point that is its title.
    ColumnPerPoint,
    /// A row per time, a column per depth of one point.
    ColumnPerDepth,
    /// A row per depth of one point, a column per time.
    ColumnPerDate
};

/// "rows", "column-per-point" and so on, as people choose it.
QString nameOf(TableLayout layout);
std::optional<TableLayout> tableLayoutNamed(const QString& name);
QStringList tableLayoutNames();

/// Whether each row of the layout says it, so that it may have a column; titles and cells say the others.
bool isOfRows(MeasuredColumn column, TableLayout layout);

/// What the readings of a type measure, in files where each reading has a type.
struct TypeMapping
{
    /// Name, alias or identifier.
    QString subCategory;
    /// The unit that the file has for them, taken for that of the sub-category whatever that is called;
    /// nothing: the two must be the same.
    std::optional<QString> unit;
};

/// How a file of readings is written; what is not given is detected, or as the default says.
struct FileMapping
{
    TableLayout layout = TableLayout::Rows;
    /// A column that is not here is the one of the same title.
    QMap<MeasuredColumn, ColumnReference> columns;
    /// What holds for every row instead of a column.
    QMap<MeasuredColumn, QString> constants;
    /// Depth and count, where a table of readings in rows may lack them.
    QList<MeasuredColumn> absent;
    /// Where each column is a point: names of the points by title. Empty: each title is a name.
    QHash<QString, QString> points;
    /// Titles of columns that are not read, and types of readings.
    QStringList ignored;
    /// Of AGS files. A type that is not here is the name or alias of the sub-category itself.
    QMap<QString, TypeMapping> types;

    /// None: UTF-16 where a byte-order mark says so, else UTF-8.
    std::optional<FileEncoding> encoding;
    /// Comma, semicolon or tab.
    std::optional<char> delimiter;
    /// Point or comma.
    std::optional<QChar> decimalSign;
    /// Lines before the header, or before the rows where there is no header.
    int skippedLines = 0;
    bool hasHeader = true;
    /// Lines between the header and the rows.
    int skippedBelowHeader = 0;

    /// Of a spreadsheet; empty: the only one that holds anything.
    QString sheet;

    QList<TimeFormat> timeFormats;
    /// The ways that come into question where none is given; empty: all.
    QList<TimeFormat> possibleTimeFormats;
    /// Of times that name no offset, in seconds; without it and a zone such times are refused.
    std::optional<int> utcOffset;
    /// Invalid: none.
    QTimeZone zone;
    std::optional<DoubledHour> doubledHour;
    /// Words that stand in place of a value where there is no reading, in lower case.
    QSet<QString> noReading;
};

/// What may part the fields of a row.
constexpr std::array<char, 3> delimiters{',', ';', '\t'};

// The words in which mappings and command lines choose, and what each means.
QStringList delimiterNames();
std::optional<char> delimiterNamed(const QString& name);
QStringList decimalSignNames();
std::optional<QChar> decimalSignNamed(const QString& name);
QStringList doubledHourNames();
std::optional<DoubledHour> doubledHourNamed(const QString& name);

/// The zone of an IANA name such as "Europe/Berlin"; invalid when there is none.
QTimeZone zoneNamed(const QString& name);

/// What is wrong with `text` as a constant, in words; empty: nothing.
QString problemOfConstant(MeasuredColumn column, const QString& text);

/// Refuses, with a Failure (BadInput), what contradicts itself.
void requireConsistent(const FileMapping& mapping);

/// Reads a mapping. Throws a Failure (BadInput) that names the member when something is of the wrong kind or
/// unknown.
FileMapping readFileMapping(const JsonNode& root);

/// The same from its JSON; `path` is for messages.
FileMapping readFileMapping(const QString& path, const QByteArray& content);

/// The same from the file itself.
FileMapping readFileMapping(const QString& path);
