#include "reading/CsvRecords.h"

#include <QTextCodec>

namespace csv {

namespace {

constexpr char quote = '"';

// False when `bytes` are not UTF-8.
bool decode(const QByteArray& bytes, QString& text)
{
    text = QString::fromUtf8(bytes);
    if (!text.contains(QChar::ReplacementCharacter)) {
        return true;
    }
    // The character may stand in the text itself.
    static QTextCodec* const codec = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state;
    codec->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

RecordReader::RecordReader(const QByteArray& content, char delimiter, Quotes quotes)
    : m_begin(content.constData()), m_next(m_begin), m_end(m_begin + content.size()), m_delimiter(delimiter),
      m_quotes(quotes)
{
}

bool RecordReader::next(Record& record)
{
    while (m_next != m_end && atLineEnd()) {
        skipLineEnd();
    }
    if (m_next == m_end) {
        return false;
    }
    record.line = m_line;
    record.fields.clear();
    record.problem.clear();
    record.isForeign = false;
    readRecord(record);
    return true;
}

void RecordReader::skipLines(int count)
{
    for (; count > 0 && m_next != m_end; --count) {
        skipLine();
    }
}

void RecordReader::readRecord(Record& record)
{
    while (true) {
        QByteArray field;
        const bool isQuoted = m_next != m_end && *m_next == quote;
        const bool isRead = isQuoted ? readQuotedField(field, record) : readBareField(field, record);
        if (!isRead) {
            skipLine();
            return;
        }
        appendField(field, record);
        if (m_next == m_end) {
            return;
        }
        if (*m_next != m_delimiter) {
            skipLineEnd();
            return;
        }
        ++m_next;
    }
}

bool RecordReader::readQuotedField(QByteArray& field, Record& record)
{
    const int firstLine = m_line;
    const bool mayGoOn = m_quotes == Quotes::Optional;
    bool isClosed = false;
    ++m_next;
    while (m_next != m_end && !isClosed && (mayGoOn || !atLineEnd())) {
        const char* const begin = m_next;
        while (m_next != m_end && *m_next != quote && !atLineEnd()) {
            ++m_next;
        }
        field.append(begin, static_cast<int>(m_next - begin));
        if (m_next != m_end && *m_next == quote) {
            ++m_next;
            isClosed = m_next == m_end || *m_next != quote;
            if (!isClosed) {
                field += *m_next++;
            }
        } else if (m_next != m_end && mayGoOn) {
            field += '\n';
            skipLineEnd();
        }
    }
    if (!isClosed) {
        record.problem = mayGoOn
                             ? QStringLiteral("a quote that opens on line %1 is never closed").arg(firstLine)
                             : QStringLiteral("a quote is not closed on its line");
    } else if (m_next != m_end && *m_next != m_delimiter && !atLineEnd()) {
        record.problem = QStringLiteral("text follows a closing quote");
    }
    return record.problem.isEmpty();
}

bool RecordReader::readBareField(QByteArray& field, Record& record)
{
    if (m_quotes == Quotes::Required) {
        record.problem = QStringLiteral("a field does not stand in quotes");
        return false;
    }
    const char* const begin = m_next;
    while (m_next != m_end && *m_next != m_delimiter && !atLineEnd()) {
        if (*m_next == quote) {
            record.problem = QStringLiteral("a quote within a field that does not begin with one");
            return false;
        }
        ++m_next;
    }
    field = QByteArray(begin, static_cast<int>(m_next - begin));
    return true;
}

void RecordReader::appendField(const QByteArray& field, Record& record) const
{
    QString text;
    if (!decode(field, text) && record.problem.isEmpty()) {
        record.problem = QStringLiteral("the text is not UTF-8");
        record.isForeign = true;
    }
    record.fields.append(text.trimmed());
}

bool RecordReader::atLineEnd() const
{
    return *m_next == '\n' || *m_next == '\r';
}

void RecordReader::skipLine()
{
    while (m_next != m_end && !atLineEnd()) {
        ++m_next;
    }
    if (m_next != m_end) {
        skipLineEnd();
    }
}

void RecordReader::skipLineEnd()
{
    if (*m_next++ == '\r' && m_next != m_end && *m_next == '\n') {
        ++m_next;
    }
    ++m_line;
}

} // namespace csv
