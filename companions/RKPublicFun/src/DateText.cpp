#include "RKPub.h"

#include <QDate>
#include <QTime>

#include <cstdlib>

namespace RKPub {

namespace {

constexpr int secondsPerMinute = 60;
constexpr int minutesPerHour = 60;
constexpr int greatestOffset = 14 * 60 * 60; // seconds; no zone of today is farther from UTC

/// Reads a text from left to right. A refusal is final: the caller gives up the whole text.
class Reader
{
public:
    explicit Reader(const QString& text) : m_next(text.constData()), m_end(text.constData() + text.size()) {}

    bool atEnd() const { return m_next == m_end; }

    bool skip(char16_t expected)
    {
        if (atEnd() || m_next->unicode() != expected)
            return false;
        ++m_next;
        return true;
    }

    bool readDigit(int& digit)
    {
        if (atEnd())
            return false;
        digit = m_next->unicode() - u'0';
        if (digit < 0 || digit > 9)
            return false;
        ++m_next;
        return true;
    }

    bool readNumber(int digitCount, int& number)
    {
        number = 0;
        for (int digit = 0; digitCount > 0; --digitCount) {
            if (!readDigit(digit))
                return false;
            number = number * 10 + digit;
        }
        return true;
    }

private:
    const QChar* m_next;
    const QChar* m_end;
};

bool readDate(Reader& reader, QDate& date)
{
    int year = 0;
    int month = 0;
    int day = 0;
    if (!reader.readNumber(4, year) || !reader.skip(u'-') || !reader.readNumber(2, month) ||
        !reader.skip(u'-') || !reader.readNumber(2, day))
        return false;
    date = QDate(year, month, day);
    return date.isValid();
}

bool readFraction(Reader& reader, int& milliseconds)
{
    int digit = 0;
    if (!reader.readDigit(digit))
        return false;
    int weight = 100;
    do {
        milliseconds += digit * weight;
        weight /= 10;
    } while (reader.readDigit(digit));
    return true;
}

bool readTime(Reader& reader, QTime& time)
{
    int hour = 0;
    int minute = 0;
    int second = 0;
    int milliseconds = 0;
    if (!reader.readNumber(2, hour) || !reader.skip(u':') || !reader.readNumber(2, minute) ||
        !reader.skip(u':') || !reader.readNumber(2, second))
        return false;
    if (reader.skip(u'.') && !readFraction(reader, milliseconds))
        return false;
    time = QTime(hour, minute, second, milliseconds);
    return time.isValid();
}

bool readOffset(Reader& reader, int& seconds)
{
    const int sign = reader.skip(u'-') ? -1 : 1;
    if (sign > 0 && !reader.skip(u'+'))
        return false;
    int hours = 0;
    int minutes = 0;
    if (!reader.readNumber(2, hours))
        return false;
    reader.skip(u':');
    if (!reader.readNumber(2, minutes) || minutes >= minutesPerHour)
        return false;
    seconds = sign * (hours * minutesPerHour + minutes) * secondsPerMinute;
    return std::abs(seconds) <= greatestOffset;
}

/// Null instead of a time that is set but invalid, such as a local time that the clocks skip.
QDateTime validOrNull(const QDateTime& dateTime)
{
    return dateTime.isValid() ? dateTime : QDateTime();
}

/// Writes digits and signs one after another into a text that is long enough.
class Writer
{
public:
    explicit Writer(QString& text) : m_next(text.data()) {}

    void write(char16_t character) { *m_next++ = QChar(character); }

    void writeNumber(int digitCount, int number)
    {
        m_next += digitCount;
        for (QChar* at = m_next; digitCount > 0; --digitCount, number /= 10)
            *--at = QChar(u'0' + number % 10);
    }

private:
    QChar* m_next;
};

void writeDate(Writer& writer, int year, int month, int day)
{
    writer.writeNumber(4, year);
    writer.write(u'-');
    writer.writeNumber(2, month);
    writer.write(u'-');
    writer.writeNumber(2, day);
}

void writeTime(Writer& writer, int milliseconds)
{
    const int seconds = milliseconds / 1000;
    const int minutes = seconds / secondsPerMinute;
    writer.write(u'T');
    writer.writeNumber(2, minutes / minutesPerHour);
    writer.write(u':');
    writer.writeNumber(2, minutes % minutesPerHour);
    writer.write(u':');
    writer.writeNumber(2, seconds % secondsPerMinute);
    writer.write(u'.');
    writer.writeNumber(3, milliseconds % 1000);
}

void writeOffset(Writer& writer, int seconds)
{
    const int minutes = std::abs(seconds) / secondsPerMinute;
    writer.write(seconds < 0 ? u'-' : u'+');
    writer.writeNumber(2, minutes / minutesPerHour);
    writer.write(u':');
    writer.writeNumber(2, minutes % minutesPerHour);
}

/// The text of a valid time whose offset the format can hold.
QString write(const QDateTime& dateTime, int offset)
{
    int year = 0;
    int month = 0;
    int day = 0;
    dateTime.date().getDate(&year, &month, &day);
    if (year < 1 || year > 9999)
        return {};

    const bool utc = dateTime.timeSpec() == Qt::UTC;
    constexpr int lengthToMilliseconds = 23;
    QString text(lengthToMilliseconds + (utc ? 1 : 6), Qt::Uninitialized);
    Writer writer(text);
    writeDate(writer, year, month, day);
    writeTime(writer, dateTime.time().msecsSinceStartOfDay());
    if (utc)
        writer.write(u'Z');
    else
        writeOffset(writer, offset);
    return text;
}

} // namespace

QString getQStringByDateTime(const QDateTime& dateTime)
{
    if (!dateTime.isValid())
        return {};
    const int offset = dateTime.offsetFromUtc();
    if (std::abs(offset) > greatestOffset)
        return write(dateTime.toUTC(), 0);
    const int secondsTooMany = offset % secondsPerMinute;
    if (secondsTooMany != 0)
        return getQStringByDateTime(dateTime.toOffsetFromUtc(offset - secondsTooMany));
    return write(dateTime, offset);
}

QDateTime getDateTimeByQString(const QString& text)
{
    Reader reader(text);
    QDate date;
    if (!readDate(reader, date))
        return {};
    if (reader.atEnd())
        return validOrNull(date.startOfDay());

    QTime time;
    if (!reader.skip(u'T') || !readTime(reader, time))
        return {};
    if (reader.atEnd())
        return validOrNull(QDateTime(date, time, Qt::LocalTime));

    int offset = 0;
    if (!reader.skip(u'Z') && !readOffset(reader, offset))
        return {};
    if (!reader.atEnd())
        return {};
    return offset == 0 ? QDateTime(date, time, Qt::UTC) : QDateTime(date, time, Qt::OffsetFromUTC, offset);
}

} // namespace RKPub
