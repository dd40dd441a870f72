#pragma once

#include "reading/RowSource.h"
#include "reading/TableColumns.h"

/// The rows of a table of delimited text.
class TableRows : public RowSource
{
public:
    /// Keeps references to all of them.
    TableRows(const QByteArray& text, const FileMapping& mapping, const TableColumns& columns);

    void rewind() override;
    bool next(csv::Record& record) override { return m_records.next(record); }
    BadRows badRows(const QMap<int, QString>& reasons) const override;

private:
    const QByteArray& m_text;
    const FileMapping& m_mapping;
    const TableColumns& m_columns;
    csv::RecordReader m_records;
};
