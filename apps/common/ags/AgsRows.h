#pragma once

#include "ags/AgsField.h"
#include "ags/AgsGroups.h"
#include "ags/AgsInstallations.h"
#include "reading/RowSource.h"

#include <QMap>
#include <QMultiMap>

namespace ags {

/// What makes the columns of the readings; a column that is not here is not in the file.
using ReadingFields = QMap<MeasuredColumn, Field>;

/// The readings of an AGS file as rows, with a field for each of the measured columns.
class ReadingRows : public RowSource
{
public:
    /// `readings` has all headings that readings need. Keeps references to all but `fields`.
    ReadingRows(const QByteArray& text, const Group& readings, const Installations& installations,
                const FileMapping& mapping, ReadingFields fields);

    void rewind() override;
    bool next(csv::Record& record) override;
    BadRows badRows(const QMap<int, QString>& reasons) const override;

    /// The units that the rows said, by sub-category, without those that the mapping says.
    QMultiMap<QString, WrittenUnit> units() const;

private:
    csv::RecordReader firstRow() const;
    csv::Record readingOf(const csv::Record& row);
    QString text(const QStringList& fields, const char* heading) const;
    QString fieldOf(MeasuredColumn column, const QStringList& fields) const;
    QString problemOf(const QStringList& fields, int line);
    QString problemOfTime(const QString& time) const;
    QString problemOfUnit(const QString& type, const QString& unit, int line);

    const QByteArray& m_text;
    const Group& m_readings;
    const Installations& m_installations;
    const FileMapping& m_mapping;
    ReadingFields m_fields;
    QString m_timeUnit; // the form of the times
    csv::RecordReader m_records;
    QMap<QString, WrittenUnit> m_units; // by type
};

} // namespace ags
