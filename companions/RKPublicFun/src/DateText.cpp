#include "RKPub.h"

#include <QDate>
#include <QTime>

#include <cstdlib>

namespace RKPub {

namespace {

constexpr int millisecondsPerSecond = 1000;
constexpr int secondsPerMinute = 60;
constexpr int minutesPerHour = 60;
constexpr int hoursPerDay = 24;
constexpr int greatestOffset =
    14 * minutesPerHour * secondsPerMinute; // seconds; no zone of today is farther from UTC

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

/// Adds the fraction of a second to `milliseconds`.
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

/// The time of day as milliseconds since its start.
bool readTime(Reader& reader, int& milliseconds)
{
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!reader.readNumber(2, hour) || !reader.skip(u':') || !reader.readNumber(2, minute) ||
        !reader.skip(u':') || !reader.readNumber(2, second))
        return false;
    if (hour >= hoursPerDay || minute >= minutesPerHour || second >= secondsPerMinute)
        return false;
    milliseconds = ((hour * minutesPerHour + minute) * secondsPerMinute + second) * millisecondsPerSecond;
    return !reader.skip(u'.') || readFraction(reader, milliseconds);
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

// From the instant, which costs Qt half of what it takes from a date and a time.
QDateTime atOffset(const QDate& date, int timeOfDay, int offset)
{
    constexpr qint64 julianDayOfEpoch = 2440588; // 1970-01-01
    constexpr qint64 millisecondsPerDay =
        qint64(hoursPerDay) * minutesPerHour * secondsPerMinute * millisecondsPerSecond;
    const qint64 clock = (date.toJulianDay() - julianDayOfEpoch) * millisecondsPerDay + timeOfDay;
    return offset == 0 ? QDateTime::fromMSecsSinceEpoch(clock, Qt::UTC)
                       : QDateTime::fromMSecsSinceEpoch(clock - qint64(offset) * millisecondsPerSecond,
                                                        Qt::OffsetFromUTC, offset);
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
    const int seconds = milliseconds / millisecondsPerSecond;
    const int minutes = seconds / secondsPerMinute;
    writer.write(u'T');
    writer.writeNumber(2, minutes / minutesPerHour);
    writer.write(u':');
    writer.writeNumber(2, minutes % minutesPerHour);
    writer.write(u':');
    writer.writeNumber(2, seconds % secondsPerMinute);
    writer.write(u'.');
    writer.writeNumber(3, milliseconds % millisecondsPerSecond);
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

    int timeOfDay = 0;
    if (!reader.skip(u'T') || !readTime(reader, timeOfDay))
        return {};
    if (reader.atEnd())
        return validOrNull(QDateTime(date, QTime::fromMSecsSinceStartOfDay(timeOfDay), Qt::LocalTime));

    int offset = 0;
    if (!reader.skip(u'Z') && !readOffset(reader, offset))
        return {};
    if (!reader.atEnd())
        return {};
    return atOffset(date, timeOfDay, offset);
}

} // namespace RKPub
