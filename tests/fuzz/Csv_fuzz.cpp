// Input: a letter that chooses how the file is said to be written, then a file of readings. Every row must be
// a reading, a repeated one or a problem, and a row that was taken must say what the file says.

#include "Fuzzer.h"
#include "ReadingChecks.h"
#include "import/Deliveries.h"
#include "reading/MeasuredFile.h"

#include <QHash>

#include <array>
#include <string>

namespace {

using fuzz::require;

FileMapping formatOf(unsigned choice)
{
    constexpr std::array<char, 3> delimiters{',', ';', '\t'};
    FileMapping format;
    if ((choice & 3U) != 0) {
        format.delimiter = delimiters.at((choice & 3U) - 1);
    }
    if ((choice & 4U) != 0) {
        format.decimalSign = QLatin1Char((choice & 8U) != 0 ? ',' : '.');
    }
    if ((choice & 64U) != 0) {
        format.utcOffset = 3600;
    }
    return format;
}

// Counts the records of delimited text one character at a time (RFC 4180); empty lines are none. Only for
// text whose quotes begin fields and are closed.
int recordCount(const std::string& text)
{
    int count = 0;
    bool isQuoted = false;
    bool isEmpty = true;
    for (const char c : text) {
        if (c == '"') {
            isQuoted = !isQuoted;
        }
        const bool ends = !isQuoted && (c == '\n' || c == '\r');
        count += ends && !isEmpty ? 1 : 0;
        isEmpty = ends;
    }
    return count + (isEmpty ? 0 : 1);
}

QStringList problemLines(const MeasuredFile& file)
{
    return file.problems.lines(QStringLiteral("f"));
}

int conflictCount(const MeasuredFile& file)
{
    int count = 0;
    for (const QString& line : problemLines(file)) {
        count += line.contains(QStringLiteral(" has another value on line ")) ? 1 : 0;
    }
    return count;
}

// Rows as they are cut where no quote can hide a line end or a delimiter, by line.
QHash<int, QStringList> plainRows(const QByteArray& content, char delimiter)
{
    QHash<int, QStringList> rows;
    int line = 0;
    for (QByteArray text : QByteArray(content).replace("\r\n", "\n").replace('\r', '\n').split('\n')) {
        ++line;
        QStringList fields;
        for (const QByteArray& field : text.split(delimiter)) {
            fields.append(QString::fromUtf8(field).trimmed());
        }
        rows.insert(line, fields);
    }
    return rows;
}

char delimiterOf(const FileMapping& format, const QByteArray& content)
{
    if (format.delimiter) {
        return *format.delimiter;
    }
    // All five columns are named, so the one that parts them stands in the header.
    const QByteArray header = QByteArray(content).replace('\r', '\n').trimmed().split('\n').first();
    for (const char delimiter : {',', ';', '\t'}) {
        QStringList titles;
        for (const QByteArray& title : header.split(delimiter)) {
            titles.append(QString::fromUtf8(title).trimmed().toLower());
        }
        if (titles.contains(QStringLiteral("value")) && titles.contains(QStringLiteral("name"))) {
            return delimiter;
        }
    }
    return ',';
}

// Compares each reading with its row, read by other means.
void checkAgainstRows(const MeasuredFile& file, QByteArray content, const FileMapping& format)
{
    if (content.startsWith("\xef\xbb\xbf")) {
        content.remove(0, 3);
    }
    const QHash<int, QStringList> rows = plainRows(content, delimiterOf(format, content));
    int headerLine = 1;
    while (rows.value(headerLine).size() < 5) {
        ++headerLine;
    }
    QStringList titles;
    for (const QString& title : rows.value(headerLine)) {
        titles.append(title.toLower());
    }
    for (const MeasuredPoint& point : file.points) {
        for (const Reading& reading : point.readings) {
            const QStringList row = rows.value(reading.line);
            const auto field = [&](const char* title) {
                return row.value(titles.indexOf(QLatin1String(title)));
            };
            const std::string value =
                field("value").replace(QLatin1Char(','), QLatin1Char('.')).toStdString();
            const std::string detail = row.join(QLatin1Char('|')).toStdString();
            require(field("name") == point.name, "a reading has its row's name", [&] { return detail; });
            require(field("count").toLongLong() == reading.sample.count, "a reading has its row's count",
                    [&] { return detail; });
            require(std::strtod(value.c_str(), nullptr) == reading.sample.value,
                    "a reading has its row's value", [&] { return detail; });
            // In this form only, the day stands there as it is.
            const bool isPlainDay = field("time").indexOf(QLatin1Char('-')) == 4 &&
                                    field("time").lastIndexOf(QLatin1Char('-'), 9) == 7;
            require(!isPlainDay ||
                        QDate::fromString(field("time").left(10), Qt::ISODate) ==
                            reading.sample.time.date() ||
                        !QDate::fromString(field("time").left(10), Qt::ISODate).isValid(),
                    "a reading has its row's day", [&] { return detail; });
            require(field("depth").isEmpty() == point.depth.isEmpty(), "a reading has its row's depth",
                    [&] { return detail; });
        }
    }
}

void checkDeliveries(const MeasuredFile& file)
{
    constexpr int largest = 3;
    const QList<PlacedFile> files{{file, {QStringLiteral("c1"), QStringLiteral("s1")}}};
    require(contradictions(files).isEmpty(), "a good file does not contradict itself");
    const QList<Delivery> deliveries = deliveriesOf(files, {}, largest);
    int sent = 0;
    for (const QList<Delivery>& request : requestsOf(deliveries, largest)) {
        int samples = 0;
        for (const Delivery& delivery : request) {
            for (const RKPointLocation& point : delivery.points) {
                samples += point.data.size();
            }
        }
        require(samples <= largest, "a request is bounded");
        sent += samples;
    }
    require(sent == file.readingCount, "every reading is sent once");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const FileMapping format = formatOf(data[0]);
    const QByteArray content(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    const MeasuredFile file = readMeasuredFile(QStringLiteral("f"), content, format);
    fuzz::checkReadings(file);
    require(!file.problems.isEmpty() || file.repeatedCount >= 0, "repeated rows are counted");

    if (file.encoding != FileEncoding::Utf8) {
        return 0; // the bytes are not the text
    }
    const bool hasQuotes = content.contains('"');
    const bool isGood = file.problems.isEmpty();
    const QByteArray text = content.startsWith("\xef\xbb\xbf") ? content.mid(3) : content;
    const bool rowsWereRead = isGood || file.readingCount > 0;
    if (rowsWereRead && (isGood || !hasQuotes) && file.problems.count() <= Problems::bound) {
        const int rows = recordCount(text.toStdString()) - 1;
        const int bad = file.problems.count() - conflictCount(file);
        require(rows == file.readingCount + file.repeatedCount + bad,
                "every row is a reading, repeated, or a problem",
                [&] { return problemLines(file).join(QLatin1Char('\n')).toStdString(); });
    }
    if (isGood && !hasQuotes) {
        checkAgainstRows(file, content, format);
    }
    if (isGood) {
        checkDeliveries(file);
    }
    return 0;
}
