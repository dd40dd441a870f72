#pragma once

#include "reading/CsvRecords.h"
#include "reading/FileMapping.h"
#include "reading/Problems.h"
#include "reading/UnclearFormat.h"

#include <QByteArray>
#include <QStringList>
#include <QVector>

#include <array>

/// A column that holds values.
struct ValueColumn
{
    int field = -1;
    /// The title; that of the column of values itself says nothing.
    QString title;
};

/// Which fields of a table's rows are read, and as what.
struct TableColumns
{
    char delimiter = ',';
    /// Line of the header, or of the first row where there is no header.
    int line = 1;
    int fieldCount = 0;
    /// The field of each column, from 0; -1 where the table has none.
    std::array<int, measuredColumns.size()> fields{-1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    /// One where readings stand in rows.
    QVector<ValueColumn> values;
    /// Titles of what is not read.
    QStringList ignored;
    /// Whether the bytes of the header are not UTF-8.
    bool isHeaderForeign = false;

    int field(MeasuredColumn column) const { return fields.at(static_cast<std::size_t>(column)); }
};

/// The title of the column that tells why a row was bad, in files of bad rows. It is never data.
constexpr const char* badRowReasonTitle = "reason";

/// Finds the columns of the table in `text` by its header; what is wrong goes to `problems`, and what must be
/// given to `unclear`.
TableColumns readTableColumns(const QByteArray& text, const FileMapping& mapping, Problems& problems,
                              UnclearFormat& unclear);

/// A reader that stands at the header of the table, or at its first row where there is no header.
csv::RecordReader tableOf(const QByteArray& text, char delimiter, const FileMapping& mapping);

/// A reader that stands at the first row of the table.
csv::RecordReader rowsOf(const QByteArray& text, char delimiter, const FileMapping& mapping);
