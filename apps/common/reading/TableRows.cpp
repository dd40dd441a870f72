#include "reading/TableRows.h"

TableRows::TableRows(const QByteArray& text, const FileMapping& mapping, const TableColumns& columns)
    : m_text(text), m_mapping(mapping), m_columns(columns),
      m_records(rowsOf(text, columns.delimiter, mapping))
{
}

void TableRows::rewind()
{
    m_records = rowsOf(m_text, m_columns.delimiter, m_mapping);
}

BadRows TableRows::badRows(const QMap<int, QString>& reasons) const
{
    csv::RecordReader records = tableOf(m_text, m_columns.delimiter, m_mapping);
    BadRows bad;
    bad.above = m_text.left(records.position());
    bad.delimiter = m_columns.delimiter;
    if (m_mapping.hasHeader) {
        const int header = records.position();
        csv::Record record;
        records.next(record);
        const int below = records.position();
        records.skipLines(m_mapping.skippedBelowHeader);
        bad.header = withoutLineEnds(m_text.mid(header, below - header));
        bad.below = m_text.mid(below, records.position() - below);
    }
    bad.rows = rowsWithReasons(m_text, records, reasons);
    return bad;
}
