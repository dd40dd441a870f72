#pragma once

#include "reading/CsvRecords.h"
#include "reading/MeasuredFile.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

/// Where the rows of a file come from, one record each.
class RowSource
{
public:
    RowSource() = default;
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;
    virtual ~RowSource() = default;

    /// Goes back to the first row.
    virtual void rewind() = 0;

    /// The next row; false at the end.
    virtual bool next(csv::Record& record) = 0;

    /// The rows that `reasons` names by their lines, with what stands above the rows of the file.
    virtual BadRows badRows(const QMap<int, QString>& reasons) const = 0;
};

/// Those of `records`, which is to stand at the first one, that `reasons` names by their lines, as they stand
/// in `text`.
QVector<BadRow> rowsWithReasons(const QByteArray& text, csv::RecordReader records,
                                const QMap<int, QString>& reasons);

QByteArray withoutLineEnds(const QByteArray& text);
