#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Reading delimited text after RFC 4180, with any delimiter and any line end.
namespace csv {

struct Record
{
    /// Line of the file that the record begins on, from 1.
    int line = 0;
    QStringList fields;
    /// What is wrong with the record's form, in words; `fields` is then incomplete. Empty: nothing.
    QString problem;
    /// Whether the problem is that the bytes are not UTF-8.
    bool isForeign = false;
};

/// Which fields stand in quotes.
enum class Quotes
{
    /// Those that need it; line ends may stand within.
    Optional,
    /// All of them, and a quote is closed on its line.
    Required
};

/// Takes UTF-8 text apart, record by record. Empty lines are passed over. After a record with a problem it
/// goes on with the next line.
class RecordReader
{
public:
    /// `content` without a byte-order mark. Keeps a reference to it.
    RecordReader(const QByteArray& content, char delimiter, Quotes quotes = Quotes::Optional);

    /// The next record; false at the end.
    bool next(Record& record);

    /// Passes over lines, whatever they hold.
    void skipLines(int count);

    /// Where the next record begins, in bytes from the beginning of the content; empty lines may come before.
    int position() const { return static_cast<int>(m_next - m_begin); }

private:
    void readRecord(Record& record);
    bool readQuotedField(QByteArray& field, Record& record);
    bool readBareField(QByteArray& field, Record& record);
    void appendField(const QByteArray& field, Record& record) const;
    bool atLineEnd() const;
    void skipLine();
    void skipLineEnd();

    const char* m_begin;
    const char* m_next;
    const char* m_end;
    char m_delimiter;
    Quotes m_quotes;
    int m_line = 1;
};

} // namespace csv
