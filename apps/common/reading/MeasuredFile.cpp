#include "reading/MeasuredFile.h"

#include "FileContent.h"
#include "PointNames.h"
#include "reading/CsvRecords.h"
#include "reading/MeasuredValues.h"

#include <QHash>
#include <QPair>
#include <RKPub.h>

#include <algorithm>
#include <array>

namespace {

enum Column
{
    Name,
    Depth,
    Time,
    Count,
    Value,
    TimeFlag,
    ColumnCount
};

constexpr std::array<const char*, ColumnCount> columnNames{"name",  "depth", "time",
                                                           "count", "value", "timeFlag"};
constexpr std::array<char, 3> delimiters{',', ';', '\t'};

struct Header
{
    char delimiter = ',';
    int line = 1;
    // Field of each column; -1 where the file has none.
    std::array<int, ColumnCount> fields{-1, -1, -1, -1, -1, -1};
    int fieldCount = 0;

    int recognisedCount() const
    {
        return static_cast<int>(
            std::count_if(fields.cbegin(), fields.cend(), [](int field) { return field >= 0; }));
    }
};

int columnOf(const QString& title)
{
    for (int column = 0; column < ColumnCount; ++column) {
        if (title.compare(QLatin1String(columnNames[column]), Qt::CaseInsensitive) == 0) {
            return column;
        }
    }
    return -1;
}

// The header as `delimiter` separates it; problems go to `file`.
Header readHeader(const QByteArray& content, char delimiter, MeasuredFile& file)
{
    Header header;
    header.delimiter = delimiter;
    csv::Record record;
    if (!csv::RecordReader(content, delimiter).next(record)) {
        file.problems.add(1, QStringLiteral("the file is empty; its first line must name the columns"));
        return header;
    }
    header.line = record.line;
    header.fieldCount = record.fields.size();
    if (!record.problem.isEmpty()) {
        file.problems.add(record.line, record.problem);
    }
    for (int field = 0; field < record.fields.size(); ++field) {
        const int column = columnOf(record.fields[field]);
        if (column < 0) {
            file.ignoredColumns.append(record.fields[field]);
        } else if (header.fields[column] >= 0) {
            file.problems.add(record.line,
                              QStringLiteral("duplicate column \"%1\"").arg(record.fields[field]));
        } else {
            header.fields[column] = field;
        }
    }
    return header;
}

// The delimiter under which the first line names most columns.
char detectedDelimiter(const QByteArray& content)
{
    char best = delimiters.front();
    int most = 0;
    for (const char delimiter : delimiters) {
        MeasuredFile attempt;
        const int recognised = readHeader(content, delimiter, attempt).recognisedCount();
        if (recognised > most) {
            most = recognised;
            best = delimiter;
        }
    }
    return best;
}

void requireColumns(const Header& header, MeasuredFile& file)
{
    QStringList missing;
    for (int column = Name; column <= Value; ++column) {
        if (header.fields[column] < 0) {
            missing.append(QLatin1String(columnNames[column]));
        }
    }
    if (!missing.isEmpty()) {
        file.problems.add(
            header.line,
            QStringLiteral(
                "the header names no column \"%1\"; it must name name, depth, time, count and value")
                .arg(missing.join(QStringLiteral("\", \""))));
    }
}

// Reads the rows below a header into a file.
class RowReader
{
public:
    RowReader(const QByteArray& content, const Header& header, const MeasuredFileFormat& format,
              MeasuredFile& file)
        : m_content(content), m_header(header), m_format(format), m_file(file)
    {
    }

    void read()
    {
        m_decimalSign = m_format.decimalSign ? *m_format.decimalSign : detectedDecimalSign();
        if (!m_file.problems.isEmpty()) {
            return;
        }
        csv::RecordReader records = rows();
        csv::Record record;
        while (records.next(record)) {
            readRow(record);
        }
        for (MeasuredPoint& point : m_file.points) {
            sortReadings(point);
        }
    }

private:
    csv::RecordReader rows() const
    {
        csv::RecordReader records(m_content, m_header.delimiter);
        csv::Record header;
        records.next(header);
        return records;
    }

    QString field(const csv::Record& record, Column column) const
    {
        const int index = m_header.fields[column];
        return index < 0 ? QString() : record.fields[index];
    }

    bool isWhole(const csv::Record& record) const
    {
        return record.problem.isEmpty() && record.fields.size() == m_header.fieldCount;
    }

    QChar detectedDecimalSign();
    QString formProblem(const csv::Record& record) const;
    void readRow(const csv::Record& record);
    MeasuredPoint& pointOf(const QString& name, const QString& depth);
    void sortReadings(MeasuredPoint& point);
    void reportConflict(const MeasuredPoint& point, const Reading& first, const Reading& second);

    const QByteArray& m_content;
    const Header& m_header;
    const MeasuredFileFormat& m_format;
    MeasuredFile& m_file;
    QChar m_decimalSign;
    QHash<QPair<QString, QString>, int> m_indexes;
};

QChar RowReader::detectedDecimalSign()
{
    values::DecimalSignDetection detection;
    csv::RecordReader records = rows();
    csv::Record record;
    while (records.next(record)) {
        if (isWhole(record)) {
            detection.look(field(record, Value), record.line);
            detection.look(field(record, Depth), record.line);
        }
    }
    const values::DecimalSignDetection::Result result = detection.result();
    if (!result.problem.isEmpty()) {
        m_file.problems.add(result.line, result.problem);
        m_file.unclear.decimalSign = true;
    }
    return result.sign;
}

QString RowReader::formProblem(const csv::Record& record) const
{
    if (!record.problem.isEmpty()) {
        return record.problem;
    }
    const int excess = record.fields.size() - m_header.fieldCount;
    if (excess == 0) {
        return QString();
    }
    const QString counts = QStringLiteral("%1 fields, but the header names %2")
                               .arg(record.fields.size())
                               .arg(m_header.fieldCount);
    const bool mayBeDecimalComma = excess > 0 && m_header.delimiter == ',';
    return mayBeDecimalComma
               ? counts + QStringLiteral(": a decimal comma must be quoted where commas separate the fields")
               : counts;
}

void RowReader::readRow(const csv::Record& record)
{
    Reading reading;
    reading.line = record.line;
    QString name;
    QString depth;
    QString problem = formProblem(record);
    if (problem.isEmpty()) {
        problem = values::readName(field(record, Name), name);
    }
    if (problem.isEmpty()) {
        problem = values::readDepth(field(record, Depth), m_decimalSign, depth);
    }
    if (problem.isEmpty()) {
        problem = values::readTime(field(record, Time), m_format.utcOffset, reading.sample.time);
        if (!problem.isEmpty() && m_format.utcOffset.isEmpty() && values::lacksOffset(field(record, Time))) {
            m_file.unclear.utcOffset = true;
        }
    }
    if (problem.isEmpty()) {
        problem = values::readCount(field(record, Count), reading.sample.count);
    }
    if (problem.isEmpty()) {
        problem = values::readValue(field(record, Value), m_decimalSign, reading.sample.value);
    }
    if (problem.isEmpty()) {
        problem = values::readTimeFlag(field(record, TimeFlag), reading.sample.timeFlag);
    }
    if (!problem.isEmpty()) {
        m_file.problems.add(record.line, problem);
        return;
    }
    pointOf(name, depth).readings.append(reading);
    ++m_file.readingCount;
}

MeasuredPoint& RowReader::pointOf(const QString& name, const QString& depth)
{
    const QPair<QString, QString> key(name, depth);
    auto found = m_indexes.find(key);
    if (found == m_indexes.end()) {
        found = m_indexes.insert(key, m_file.points.size());
        m_file.points.append({name, depth, {}});
    }
    return m_file.points[*found];
}

void RowReader::reportConflict(const MeasuredPoint& point, const Reading& first, const Reading& second)
{
    m_file.problems.add(
        second.line, QStringLiteral("%1 has another value on line %2 for the same time and count (%3 there, "
                                    "%4 here)")
                         .arg(pointText(point.name, point.depth))
                         .arg(first.line)
                         .arg(first.sample.value)
                         .arg(second.sample.value));
}

void RowReader::sortReadings(MeasuredPoint& point)
{
    const auto isSameSlot = [](const Reading& left, const Reading& right) {
        return left.sample.time == right.sample.time && left.sample.count == right.sample.count;
    };
    std::stable_sort(
        point.readings.begin(), point.readings.end(), [](const Reading& left, const Reading& right) {
            return left.sample.time != right.sample.time ? left.sample.time < right.sample.time
                                                         : left.sample.count < right.sample.count;
        });
    QVector<Reading> kept;
    kept.reserve(point.readings.size());
    for (const Reading& reading : qAsConst(point.readings)) {
        if (kept.isEmpty() || !isSameSlot(kept.constLast(), reading)) {
            kept.append(reading);
            continue;
        }
        const RKPointLocationData& first = kept.constLast().sample;
        if (first.value != reading.sample.value || first.timeFlag != reading.sample.timeFlag) {
            reportConflict(point, kept.constLast(), reading);
        }
        ++m_file.repeatedCount;
        --m_file.readingCount;
    }
    point.readings = kept;
}

// The content as UTF-8 without its mark; a problem of the file when it is something else.
QByteArray textOf(const QByteArray& content, MeasuredFile& file)
{
    const QByteArray mark("\xef\xbb\xbf");
    if (content.startsWith("\xff\xfe") || content.startsWith("\xfe\xff") || content.contains('\0')) {
        file.problems.add(1, QStringLiteral("the file is not UTF-8 text (UTF-16?); save it as UTF-8"));
    }
    return content.startsWith(mark) ? content.mid(mark.size()) : content;
}

} // namespace

MeasuredFile readMeasuredFile(const QString& path, const QByteArray& content,
                              const MeasuredFileFormat& format)
{
    MeasuredFile file;
    file.path = path;
    const QByteArray text = textOf(content, file);
    if (!file.problems.isEmpty()) {
        return file;
    }
    const char delimiter = format.delimiter ? *format.delimiter : detectedDelimiter(text);
    const Header header = readHeader(text, delimiter, file);
    if (file.problems.isEmpty()) {
        requireColumns(header, file);
    }
    if (file.problems.isEmpty()) {
        RowReader(text, header, format, file).read();
    }
    return file;
}

MeasuredFile readMeasuredFile(const QString& path, const MeasuredFileFormat& format)
{
    return readMeasuredFile(path, contentOfFile(path), format);
}
