#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QTimeZone>
#include <QVariant>
#include <QVector>

#include <functional>
#include <optional>

/// How results are written: tables for people, the others for programs.
enum class OutputForm
{
    Table,
    Json,
    Csv
};

/// One member of a record.
struct Column
{
    /// Title for people; without one only programs see the column of a record.
    QString title;
    /// Key in JSON and heading in CSV; scripts rely on it, so it never changes.
    QString key;
    /// Shown in the table of a list, where room is short.
    bool isListed = true;
    /// Never cut in that table: an identifier or a time.
    bool isFixed = false;
    /// Holds computed numbers, or their texts. People see twelve significant digits, which leave out what
    /// binary fractions add (-0.011, not -0.010999999999999982); programs get the number as it is.
    bool isComputed = false;
    /// Where the terminal is too narrow for a list, columns go before texts are cut: that with the greatest
    /// first, of equals the last one; 0: it stays.
    int dispensability = 0;
};

/// The kinds of columns; titles and keys are ASCII.
namespace column {

inline Column made(const char* title, const char* key, bool isListed, bool isFixed, bool isComputed = false)
{
    return {QLatin1String(title), QLatin1String(key), isListed, isFixed, isComputed, 0};
}

/// A text, which the table of a list may cut.
inline Column text(const char* title, const char* key)
{
    return made(title, key, true, false);
}

/// An identifier, a time, a number.
inline Column fixed(const char* title, const char* key)
{
    return made(title, key, true, true);
}

/// A computed number, or its text.
inline Column computed(const char* title, const char* key)
{
    return made(title, key, true, true, true);
}

/// Not in the table of a list.
inline Column unlisted(const char* title, const char* key)
{
    return made(title, key, false, false);
}

/// Not in a table at all.
inline Column forPrograms(const char* key)
{
    return made("", key, false, false);
}

/// The same column, which may be left out of a table: that with the greatest `rank` first.
inline Column dispensable(int rank, Column column)
{
    column.dispensability = rank;
    return column;
}

} // namespace column

/// What a cell shows of `text` when the empty text means that there is none.
inline QString noneIfEmpty(const QString& text)
{
    return text.isEmpty() ? QString() : text;
}

/// A cell that people see in another form than programs.
struct ShownCell
{
    QVariant value; ///< for programs
    QString text;   ///< for people
};
Q_DECLARE_METATYPE(ShownCell)

namespace cell {

/// `value`, which people see as `text`.
QVariant shownAs(const QVariant& value, const QString& text);

/// A number of which people see `decimals` digits behind the point, or all when that is nothing; programs get
/// it as it is.
QVariant number(double value, std::optional<qint32> decimals);

} // namespace cell

/// Records of one kind, one row each. Cells are texts, lists of texts, times, numbers, booleans, or what
/// `cell` makes; a null text and an invalid time are "none": JSON null, otherwise empty.
struct Sheet
{
    QVector<Column> columns;
    QVector<QVariantList> rows;
};

/// `time` as people see it: on the clock of `zone`, with its offset, without the fraction.
QString shownTime(const QDateTime& time, const QTimeZone& zone);

/// Collects a command's result and writes it to standard output in one piece, so that a command that fails or
/// is interrupted leaves nothing half-written.
class Output
{
public:
    /// `columns` are the keys of those that lists are to show, in this order; empty: the usual ones.
    explicit Output(OutputForm form, QStringList columns = {});

    /// Sets what gives the zone that people see times in; this machine's unless it is set. It is asked for
    /// the first time.
    void setZone(std::function<QTimeZone()> zone) { m_zone = std::move(zone); }

    /// A list: a table, a JSON array of objects, or CSV with a heading. Throws a Failure (BadInput) when a
    /// column is to be shown that it has not.
    void addList(const Sheet& sheet);

    /// The sheet's only row: one line per member, a JSON object, or CSV with a heading.
    void addRecord(const Sheet& sheet);

    /// A list of which people see one text per line and programs what addList() gives.
    void addTexts(const Sheet& sheet, const QStringList& texts);

    /// A record of which people see one text and programs what addRecord() gives.
    void addText(const Sheet& sheet, const QString& text);

    /// A list of plain texts under one heading: one per line, a JSON array of strings, or CSV.
    void addPlainTexts(const QString& key, const QStringList& texts);

    /// A document that is the same for people and programs, in any form.
    void addDocument(const QByteArray& document) { m_content += document; }
    /// Whether columns were chosen though nothing collected has any to choose from.
    bool hasUnusedColumns() const { return !m_columns.isEmpty() && !m_hasList; }

    /// Writes what was collected. A reader that has gone away (`| head`) is no error; any other failure to
    /// write is a Failure.
    void flush();

private:
    void addLines(const QStringList& texts);
    Sheet chosen(const Sheet& sheet) const;

    OutputForm m_form;
    QStringList m_columns;
    std::function<QTimeZone()> m_zone = QTimeZone::systemTimeZone;
    bool m_hasList = false;
    QByteArray m_content;
};
