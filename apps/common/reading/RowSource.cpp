#include "reading/RowSource.h"

namespace {

bool isLineEnd(char character)
{
    return character == '\n' || character == '\r';
}

} // namespace

QVector<BadRow> rowsWithReasons(const QByteArray& text, csv::RecordReader records,
                                const QMap<int, QString>& reasons)
{
    QVector<BadRow> rows;
    csv::Record record;
    for (int begin = records.position(); records.next(record); begin = records.position()) {
        const auto reason = reasons.constFind(record.line);
        if (reason != reasons.constEnd()) {
            const QByteArray row = text.mid(begin, records.position() - begin);
            rows.append({record.line, withoutLineEnds(row), *reason});
        }
    }
    return rows;
}

QByteArray withoutLineEnds(const QByteArray& text)
{
    int begin = 0;
    int end = text.size();
    while (begin < end && isLineEnd(text[begin])) {
        ++begin;
    }
    while (end > begin && isLineEnd(text[end - 1])) {
        --end;
    }
    return text.mid(begin, end - begin);
}
