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

// What four characters may be: where the form has a digit, that digit or a lower one; where it has anything
// else, just that. Each takes 16 of 64 bits, the first one the lowest.
struct Form
{
    constexpr explicit Form(const char (&text)[5])
    {
        for (int at = 0; at < 4; ++at) {
            const bool isDigit = text[at] >= '0' && text[at] <= '9';
            zeros |= quint64(isDigit ? '0' : text[at]) << 16 * at;
            spare |= quint64(0x7fff - (isDigit ? text[at] - '0' : 0)) << 16 * at;
        }
    }

    quint64 zeros = 0; // exclusive or with these leaves digits as numbers and other characters as 0
    quint64 spare = 0; // added to that, sets the highest bit of what is too high
};

namespace form {
constexpr Form year("9999");
constexpr Form monthBetweenSigns("-19-");
constexpr Form monthAndDay("9-39");   // of the month only its last digit
constexpr Form hourAndMinute("29:5"); // of the minute only its first digit
constexpr Form minuteAndSecond("9:59");
constexpr Form milliseconds(".999");
constexpr Form hoursAndMinutes("2959");
} // namespace form

// Reads four characters at a time: their digits, weighted, in one multiplication.
class FourDigits
{
public:
    FourDigits(const QChar* text, const Form& form, bool& fits)
        : m_digits((quint64(text[0].unicode()) | quint64(text[1].unicode()) << 16 |
                    quint64(text[2].unicode()) << 32 | quint64(text[3].unicode()) << 48) ^
                   form.zeros)
    {
        constexpr quint64 highestBits = 0x8000'8000'8000'8000;
        fits &= ((m_digits | (m_digits + form.spare)) & highestBits) == 0;
    }

    // The sum of the digits, each times its weight. A character that is no digit counts nothing.
    int sum(int first, int second, int third, int fourth) const
    {
        const quint64 weights =
            quint64(first) << 48 | quint64(second) << 32 | quint64(third) << 16 | quint64(fourth);
        return int(m_digits * weights >> 48); // the highest 16 bits of the product are the sum
    }

private:
    quint64 m_digits;
};

// Reads a text from left to right. A refusal is final: the caller gives up the whole text.
class Reader
{
public:
    explicit Reader(const QString& text) : m_next(text.constData()), m_end(text.constData() + text.size()) {}

    bool atEnd() const { return m_next == m_end; }

    bool isAt(char16_t expected) const { return !atEnd() && m_next->unicode() == expected; }

    bool skip(char16_t expected)
    {
        const bool isThere = isAt(expected);
        m_next += isThere ? 1 : 0;
        return isThere;
    }

    // The next `count` characters, or null when fewer are left.
    const QChar* peek(int count) const { return m_end - m_next < count ? nullptr : m_next; }
    const QChar* take(int count)
    {
        const QChar* text = peek(count);
        m_next += text ? count : 0;
        return text;
    }

    bool readDigit(int& digit)
    {
        if (atEnd()) {
            return false;
        }
        digit = m_next->unicode() - u'0';
        if (digit < 0 || digit > 9) {
            return false;
        }
        ++m_next;
        return true;
    }

private:
    const QChar* m_next;
    const QChar* m_end;
};

// A date as days since 1970-01-01. QDate would take most of a reading's time for it.
bool readDate(Reader& reader, qint64& days)
{
    const QChar* text = reader.take(10); // yyyy-MM-dd
    if (!text) {
        return false;
    }
    bool fits = true;
    const int year = FourDigits(text, form::year, fits).sum(1000, 100, 10, 1);
    const int month = FourDigits(text + 4, form::monthBetweenSigns, fits).sum(0, 10, 1, 0);
    const int day = FourDigits(text + 6, form::monthAndDay, fits).sum(0, 0, 10, 1);
    if (!fits || year < 1 || month < 1 || month > 12) {
        return false;
    }

    // Of the Gregorian calendar, before each month and in the year.
    static constexpr int daysBefore[2][13] = {{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
                                              {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366}};
    constexpr int epoch = 719'162; // 1970-01-01 in days since 0001-01-01
    // Summed, not decided: branches that follow the year would be predicted badly.
    const int isLeapYear = int(year % 4 == 0) - int(year % 100 == 0) + int(year % 400 == 0);
    const int yearsBefore = year - 1;
    const int dayOfYear = daysBefore[isLeapYear][month - 1] + day;
    days =
        365 * yearsBefore + yearsBefore / 4 - yearsBefore / 100 + yearsBefore / 400 + dayOfYear - 1 - epoch;
    return day >= 1 && dayOfYear <= daysBefore[isLeapYear][month];
}

// Adds a fraction of a second to `milliseconds`.
bool readFraction(Reader& reader, int& milliseconds)
{
    int digit = 0;
    if (const QChar* text = reader.peek(4)) { // .zzz, as everybody writes it
        bool fits = true;
        const FourDigits digits(text, form::milliseconds, fits);
        if (fits) {
            milliseconds += digits.sum(0, 100, 10, 1);
            reader.take(4);
            while (reader.readDigit(digit)) {
                // cut, not rounded
            }
            return true;
        }
    }
    // One digit, or two.
    if (!reader.skip(u'.') || !reader.readDigit(digit)) {
        return false;
    }
    milliseconds += 100 * digit;
    if (reader.readDigit(digit)) {
        milliseconds += 10 * digit;
    }
    return true;
}

// The time of day as milliseconds since its start.
bool readTime(Reader& reader, int& milliseconds)
{
    const QChar* text = reader.take(8); // hh:mm:ss
    if (!text) {
        return false;
    }
    bool fits = true;
    const int minutes =
        FourDigits(text, form::hourAndMinute, fits).sum(10 * minutesPerHour, minutesPerHour, 0, 10);
    const int seconds = FourDigits(text + 4, form::minuteAndSecond, fits).sum(secondsPerMinute, 0, 10, 1);
    if (!fits || minutes >= hoursPerDay * minutesPerHour) {
        return false;
    }
    milliseconds = (minutes * secondsPerMinute + seconds) * millisecondsPerSecond;
    return !reader.isAt(u'.') || readFraction(reader, milliseconds);
}

bool readOffset(Reader& reader, int& seconds)
{
    const int sign = reader.skip(u'-') ? -1 : 1;
    if (sign > 0 && !reader.skip(u'+')) {
        return false;
    }
    bool fits = true;
    int minutes = 0;
    if (const QChar* withColon = reader.take(5)) {
        minutes =
            FourDigits(withColon, form::hourAndMinute, fits).sum(10 * minutesPerHour, minutesPerHour, 0, 10) +
            FourDigits(withColon + 1, form::minuteAndSecond, fits).sum(0, 0, 0, 1);
    } else if (const QChar* text = reader.take(4)) {
        minutes =
            FourDigits(text, form::hoursAndMinutes, fits).sum(10 * minutesPerHour, minutesPerHour, 10, 1);
    } else {
        return false;
    }
    seconds = sign * minutes * secondsPerMinute;
    return fits && std::abs(seconds) <= greatestOffset;
}

// Null instead of a time that is set but invalid, such as a local time that the clocks skip.
QDateTime validOrNull(const QDateTime& dateTime)
{
    return dateTime.isValid() ? dateTime : QDateTime();
}

QDate dateOf(qint64 daysSinceEpoch)
{
    constexpr qint64 julianDayOfEpoch = 2440588; // 1970-01-01
    return QDate::fromJulianDay(julianDayOfEpoch + daysSinceEpoch);
}

// From the instant, which costs Qt half of what it takes from a date and a time.
QDateTime atOffset(qint64 daysSinceEpoch, int timeOfDay, int offset)
{
    constexpr qint64 millisecondsPerDay =
        qint64(hoursPerDay) * minutesPerHour * secondsPerMinute * millisecondsPerSecond;
    const qint64 clock = daysSinceEpoch * millisecondsPerDay + timeOfDay;
    if (offset != 0) {
        return QDateTime::fromMSecsSinceEpoch(clock - qint64(offset) * millisecondsPerSecond,
                                              Qt::OffsetFromUTC, offset);
    }
    // A copy that is set costs less still.
    static const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);
    QDateTime dateTime = epoch;
    dateTime.setMSecsSinceEpoch(clock);
    return dateTime;
}

// Writes digits and signs one after another into a text that is long enough.
class Writer
{
public:
    explicit Writer(QString& text) : m_next(text.data()) {}

    void write(char16_t character) { *m_next++ = QChar(character); }

    void writeNumber(int digitCount, int number)
    {
        m_next += digitCount;
        for (QChar* at = m_next; digitCount > 0; --digitCount, number /= 10) {
            *--at = QChar(u'0' + number % 10);
        }
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

// The text of a valid time whose offset the format can hold.
QString write(const QDateTime& dateTime, int offset)
{
    int year = 0;
    int month = 0;
    int day = 0;
    dateTime.date().getDate(&year, &month, &day);
    if (year < 1 || year > 9999) {
        return {};
    }

    const bool utc = dateTime.timeSpec() == Qt::UTC;
    constexpr int lengthToMilliseconds = 23;
    QString text(lengthToMilliseconds + (utc ? 1 : 6), Qt::Uninitialized);
    Writer writer(text);
    writeDate(writer, year, month, day);
    writeTime(writer, dateTime.time().msecsSinceStartOfDay());
    if (utc) {
        writer.write(u'Z');
    } else {
        writeOffset(writer, offset);
    }
    return text;
}

} // namespace

QString getQStringByDateTime(const QDateTime& dateTime)
{
    if (!dateTime.isValid()) {
        return {};
    }
    const int offset = dateTime.offsetFromUtc();
    if (std::abs(offset) > greatestOffset) {
        return write(dateTime.toUTC(), 0);
    }
    const int secondsTooMany = offset % secondsPerMinute;
    if (secondsTooMany != 0) {
        return getQStringByDateTime(dateTime.toOffsetFromUtc(offset - secondsTooMany));
    }
    return write(dateTime, offset);
}

QDateTime getDateTimeByQString(const QString& text)
{
    Reader reader(text);
    qint64 days = 0;
    if (!readDate(reader, days)) {
        return {};
    }
    if (reader.atEnd()) {
        return validOrNull(dateOf(days).startOfDay());
    }

    int timeOfDay = 0;
    if (!reader.skip(u'T') || !readTime(reader, timeOfDay)) {
        return {};
    }
    if (reader.atEnd()) {
        return validOrNull(
            QDateTime(dateOf(days), QTime::fromMSecsSinceStartOfDay(timeOfDay), Qt::LocalTime));
    }

    int offset = 0;
    if (!reader.skip(u'Z') && !readOffset(reader, offset)) {
        return {};
    }
    if (!reader.atEnd()) {
        return {};
    }
    return atOffset(days, timeOfDay, offset);
}

} // namespace RKPub
