#pragma once

#include "reading/CsvRecords.h"
#include "reading/Problems.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// The tables that an AGS 4 file consists of, each with its headings, their units and their types.
namespace ags {

/// A DATA row.
struct Row
{
    int line = 0;
    /// One for each heading.
    QStringList fields;
};

struct Group
{
    QString name;
    /// Line of its GROUP row.
    int line = 0;
    int headingLine = 0;
    /// Without the descriptor that each row begins with.
    QStringList headings;
    QStringList units;
    QStringList types;
    /// Those of the groups that describe the readings, not the readings themselves.
    QVector<Row> rows;
    /// Line of the first DATA row; 0: there is none.
    int firstRowLine = 0;
    /// Where the group begins and ends, in bytes.
    int begin = 0;
    int end = 0;

    bool has(const QString& heading) const { return headings.contains(heading); }
    /// The field of `row` below `heading`; empty where the group has it not.
    QString text(const Row& row, const QString& heading) const
    {
        return row.fields.value(headings.indexOf(heading));
    }
};

struct Groups
{
    QList<Group> groups;
    /// Whether a row with a problem has bytes that are not UTF-8.
    bool isForeign = false;

    /// The group of this name; null when there is none.
    const Group* find(const QString& name) const;
};

/// The names of what this system reads.
constexpr const char* projectGroup = "PROJ";
constexpr const char* locationGroup = "LOCA";
constexpr const char* installationGroup = "MONG";
constexpr const char* readingGroup = "MOND";
constexpr const char* dictionaryGroup = "DICT";

/// What begins a row of data.
constexpr const char* dataDescriptor = "DATA";

/// Whether the file at `path` is an AGS file: by its name, or by how `text` begins.
bool isAgs(const QString& path, const QByteArray& text);

/// A reader of the file's rows.
inline csv::RecordReader recordsOf(const QByteArray& text)
{
    return {text, ',', csv::Quotes::Required};
}

/// Takes the file apart. What is wrong with its form goes to `problems`: with the heads of all groups, and
/// with the rows of those that describe the readings; rows of readings are not looked at.
Groups readGroups(const QByteArray& text, Problems& problems);

/// What is wrong with the fields of a DATA row of a group with so many headings, in words; empty: nothing.
QString problemOfData(const csv::Record& record, int headingCount);

} // namespace ags
