#include "reading/WrittenTime.h"

#include <QStringView>

#include <cmath>

namespace {

constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 3600;
constexpr int millisecondsPerSecond = 1000;
constexpr int millisecondsPerDay = 86'400'000;
constexpr int greatestOffset = 14 * secondsPerHour; // no zone is farther from UTC

struct FormatNames
{
    const char* name;
    const char* example;
};

constexpr std::array<FormatNames, timeFormats.size()> formatNames{{
    {"year-month-day", "2015-12-18T00:15:00-08:00"},
    {"day-month-year", "18.12.2015 00:15"},
    {"month-day-year", "12/18/2015 12:15 AM"},
    {"excel-1900", "42356.0104166667"},
    {"excel-1904", "40894.0104166667"},
    {"unix-seconds", "1450426500"},
    {"unix-milliseconds", "1450426500000"},
}};

const FormatNames& wordsOf(TimeFormat format)
{
    return formatNames.at(static_cast<std::size_t>(format));
}

// Takes a text apart from its beginning on.
class Scanner
{
public:
    explicit Scanner(const QString& text) : m_next(text.constData()), m_end(m_next + text.size()) {}

    bool atEnd() const { return m_next == m_end; }
    bool isAt(QChar character) const { return m_next != m_end && *m_next == character; }
    bool isAtDigit() const { return m_next != m_end && *m_next >= u'0' && *m_next <= u'9'; }

    bool skip(QChar character)
    {
        const bool isThere = isAt(character);
        m_next += isThere ? 1 : 0;
        return isThere;
    }

    bool skipText(QStringView text)
    {
        const QStringView rest(m_next, m_end);
        const bool isThere = rest.startsWith(text, Qt::CaseInsensitive);
        m_next += isThere ? text.size() : 0;
        return isThere;
    }

    void skipSpaces()
    {
        while (skip(u' ')) {
        }
    }

    // A number of at most `most` digits; returns how many it has.
    int readDigits(int most, qint64& number)
    {
        int count = 0;
        number = 0;
        while (count < most && isAtDigit()) {
            number = number * 10 + (m_next->unicode() - u'0');
            ++m_next;
            ++count;
        }
        return count;
    }

    // The one of `characters` that comes next.
    QChar readOneOf(QStringView characters)
    {
        return m_next != m_end && characters.contains(*m_next) ? *m_next++ : QChar();
    }

private:
    const QChar* m_next;
    const QChar* m_end;
};

struct DatePart
{
    qint64 number = 0;
    int digits = 0;
};

bool isYear(const DatePart& part)
{
    return part.digits == 4 || part.digits == 2;
}

bool isMonthOrDay(const DatePart& part)
{
    return part.digits == 1 || part.digits == 2;
}

int yearOf(const DatePart& part)
{
    constexpr int firstOfCentury = 70;
    const int year = static_cast<int>(part.number);
    return part.digits == 4 ? year : year + (year < firstOfCentury ? 2000 : 1900);
}

// Three numbers with the same sign between them, or with the characters of year, month and day behind them.
bool readParts(Scanner& scanner, std::array<DatePart, 3>& parts)
{
    constexpr int longestPart = 4;
    parts[0].digits = scanner.readDigits(longestPart, parts[0].number);
    const QChar sign = scanner.readOneOf(u"-/.\u5e74");
    parts[1].digits = scanner.readDigits(2, parts[1].number);
    const bool isChinese = sign == QChar(u'\u5e74');
    if (sign.isNull() || !scanner.skip(isChinese ? QChar(u'\u6708') : sign)) {
        return false;
    }
    parts[2].digits = scanner.readDigits(longestPart, parts[2].number);
    return !scanner.isAtDigit() && (!isChinese || scanner.skip(u'\u65e5'));
}

TimeReading readDate(Scanner& scanner, TimeFormat format, QDate& date)
{
    std::array<DatePart, 3> parts;
    if (!readParts(scanner, parts)) {
        return TimeReading::OtherForm;
    }
    const bool isYearFirst = format == TimeFormat::YearMonthDay;
    const bool isDayFirst = format == TimeFormat::DayMonthYear;
    const DatePart& year = isYearFirst ? parts[0] : parts[2];
    const DatePart& month = isDayFirst || isYearFirst ? parts[1] : parts[0];
    const DatePart& day = isYearFirst ? parts[2] : isDayFirst ? parts[0] : parts[1];
    if (!isYear(year) || !isMonthOrDay(month) || !isMonthOrDay(day)) {
        return TimeReading::OtherForm;
    }
    date = QDate(yearOf(year), static_cast<int>(month.number), static_cast<int>(day.number));
    return date.isValid() ? TimeReading::Done : TimeReading::DoesNotExist;
}

// Digits behind a decimal sign as milliseconds, cut.
bool readFraction(Scanner& scanner, int& milliseconds)
{
    int weight = millisecondsPerSecond / 10;
    if (!scanner.isAtDigit()) {
        return false;
    }
    for (qint64 digit = 0; scanner.readDigits(1, digit) == 1; weight /= 10) {
        milliseconds += static_cast<int>(digit) * weight;
    }
    return true;
}

enum class HalfOfDay
{
    None,
    Morning,
    Afternoon
};

HalfOfDay readHalfOfDay(Scanner& scanner)
{
    if (scanner.skipText(u"AM") || scanner.skipText(u"a.m.") || scanner.skipText(u"\u4e0a\u5348")) {
        return HalfOfDay::Morning;
    }
    const bool isAfternoon =
        scanner.skipText(u"PM") || scanner.skipText(u"p.m.") || scanner.skipText(u"\u4e0b\u5348");
    return isAfternoon ? HalfOfDay::Afternoon : HalfOfDay::None;
}

// The hour of a clock of twenty-four hours; nothing when the clock has no such hour.
std::optional<qint64> hourOfDay(qint64 hour, HalfOfDay half)
{
    constexpr qint64 noon = 12;
    if (half == HalfOfDay::None) {
        return hour < 2 * noon ? std::make_optional(hour) : std::nullopt;
    }
    if (hour < 1 || hour > noon) {
        return std::nullopt;
    }
    return hour % noon + (half == HalfOfDay::Afternoon ? noon : 0);
}

TimeReading readClock(Scanner& scanner, int& millisecondOfDay)
{
    qint64 hour = 0;
    qint64 minute = 0;
    qint64 second = 0;
    int milliseconds = 0;
    HalfOfDay half = readHalfOfDay(scanner);
    scanner.skipSpaces();
    if (scanner.readDigits(2, hour) == 0 || !scanner.skip(u':') || scanner.readDigits(2, minute) != 2) {
        return TimeReading::OtherForm;
    }
    if (scanner.skip(u':')) {
        const bool isWhole = scanner.readDigits(2, second) == 2;
        if (!isWhole || (!scanner.readOneOf(u".,").isNull() && !readFraction(scanner, milliseconds))) {
            return TimeReading::OtherForm;
        }
    }
    scanner.skipSpaces();
    half = half == HalfOfDay::None ? readHalfOfDay(scanner) : half;
    const std::optional<qint64> realHour = hourOfDay(hour, half);
    if (!realHour || minute >= secondsPerMinute || second >= secondsPerMinute) {
        return TimeReading::DoesNotExist;
    }
    const qint64 seconds = *realHour * secondsPerHour + minute * secondsPerMinute + second;
    millisecondOfDay = static_cast<int>(seconds) * millisecondsPerSecond + milliseconds;
    return TimeReading::Done;
}

bool readOffset(Scanner& scanner, int& seconds)
{
    seconds = 0;
    if (scanner.skip(u'Z')) {
        return true;
    }
    const QChar sign = scanner.readOneOf(u"+-");
    qint64 hours = 0;
    qint64 minutes = 0;
    if (sign.isNull() || scanner.readDigits(2, hours) != 2) {
        return false;
    }
    scanner.skip(u':');
    const bool isWhole = scanner.readDigits(2, minutes) == 2 && minutes < secondsPerMinute;
    const qint64 size = hours * secondsPerHour + minutes * secondsPerMinute;
    seconds = static_cast<int>(sign == QChar(u'-') ? -size : size);
    return isWhole && size <= greatestOffset;
}

TimeReading readDateAndClock(const QString& text, TimeFormat format, WrittenTime& time)
{
    Scanner scanner(text);
    const TimeReading date = readDate(scanner, format, time.date);
    if (date == TimeReading::OtherForm) {
        return date;
    }
    time.millisecondOfDay = 0;
    TimeReading clock = TimeReading::Done;
    const bool mustHaveClock = scanner.skip(u'T');
    scanner.skipSpaces();
    const bool isOver = scanner.atEnd() || scanner.isAt(u'+') || scanner.isAt(u'-') || scanner.isAt(u'Z');
    if (mustHaveClock || !isOver) {
        clock = readClock(scanner, time.millisecondOfDay);
        scanner.skipSpaces();
    }
    if (clock == TimeReading::OtherForm) {
        return clock;
    }
    time.utcOffset.reset();
    int offset = 0;
    if (!scanner.atEnd()) {
        if (!readOffset(scanner, offset) || !scanner.atEnd()) {
            return TimeReading::OtherForm;
        }
        time.utcOffset = offset;
    }
    return date == TimeReading::Done ? clock : date;
}

struct PlainNumber
{
    double value = 0.0;
    int decimals = 0; // digits behind the decimal sign
};

std::optional<PlainNumber> readPlainNumber(const QString& text, QChar decimalSign)
{
    constexpr int mostDigits = 15;
    Scanner scanner(text);
    qint64 whole = 0;
    if (scanner.readDigits(mostDigits, whole) == 0) {
        return std::nullopt;
    }
    PlainNumber number;
    number.value = static_cast<double>(whole);
    if (scanner.skip(decimalSign)) {
        qint64 fraction = 0;
        number.decimals = scanner.readDigits(mostDigits, fraction);
        number.value += static_cast<double>(fraction) / std::pow(10.0, number.decimals);
        for (qint64 ignored = 0; scanner.readDigits(1, ignored) == 1;) {
        }
    }
    return scanner.atEnd() ? std::make_optional(number) : std::nullopt;
}

// Days with their fraction as one number, or as the two of a date and a clock.
std::optional<PlainNumber> readDayNumber(const QString& text, QChar decimalSign)
{
    const int space = text.indexOf(u' ');
    if (space < 0) {
        return readPlainNumber(text, decimalSign);
    }
    const std::optional<PlainNumber> day = readPlainNumber(text.left(space), decimalSign);
    const std::optional<PlainNumber> clock = readPlainNumber(text.mid(space + 1), decimalSign);
    const bool areBoth = day && clock && clock->value < 1.0 && std::floor(day->value) == day->value;
    return areBoth ? std::make_optional(PlainNumber{day->value + clock->value, clock->decimals})
                   : std::nullopt;
}

// The milliseconds of a fraction of a day, as exactly as its digits say.
qint64 millisecondsOf(double fraction, int decimals)
{
    const double exact = fraction * millisecondsPerDay;
    const double second = std::round(exact / millisecondsPerSecond) * millisecondsPerSecond;
    const double precision = 0.5 * millisecondsPerDay / std::pow(10.0, decimals);
    const double rounded = std::abs(exact - second) <= precision ? second : std::round(exact);
    return static_cast<qint64>(rounded);
}

TimeReading readDays(const QString& text, TimeFormat format, QChar decimalSign, WrittenTime& time)
{
    const std::optional<PlainNumber> number = readDayNumber(text, decimalSign);
    if (!number) {
        return TimeReading::OtherForm;
    }
    constexpr double dayThatNeverWas = 60.0;
    constexpr double tooMany = 2'958'466.0; // 10000-01-01
    const bool is1904 = format == TimeFormat::Excel1904;
    const double day = std::floor(number->value);
    if (number->value >= tooMany || (!is1904 && (day < 1.0 || day == dayThatNeverWas))) {
        return TimeReading::DoesNotExist;
    }
    const QDate first = is1904 ? QDate(1904, 1, 1) : QDate(1899, 12, day < dayThatNeverWas ? 31 : 30);
    const qint64 milliseconds = millisecondsOf(number->value - day, number->decimals);
    time.date = first.addDays(static_cast<qint64>(day) + milliseconds / millisecondsPerDay);
    time.millisecondOfDay = static_cast<int>(milliseconds % millisecondsPerDay);
    time.utcOffset.reset();
    return TimeReading::Done;
}

TimeReading readInstant(const QString& text, TimeFormat format, QChar decimalSign, WrittenTime& time)
{
    const std::optional<PlainNumber> number = readPlainNumber(text, decimalSign);
    if (!number) {
        return TimeReading::OtherForm;
    }
    constexpr double tooLate = 253'402'300'800'000.0; // 10000-01-01
    const double unit = format == TimeFormat::UnixSeconds ? millisecondsPerSecond : 1.0;
    const double exact = std::round(number->value * unit);
    if (exact >= tooLate) {
        return TimeReading::DoesNotExist;
    }
    const auto milliseconds = static_cast<qint64>(exact);
    time.date = QDate(1970, 1, 1).addDays(milliseconds / millisecondsPerDay);
    time.millisecondOfDay = static_cast<int>(milliseconds % millisecondsPerDay);
    time.utcOffset = 0;
    return TimeReading::Done;
}

} // namespace

QString nameOf(TimeFormat format)
{
    return QLatin1String(wordsOf(format).name);
}

std::optional<TimeFormat> timeFormatNamed(const QString& name)
{
    for (const TimeFormat format : timeFormats) {
        if (name == nameOf(format)) {
            return format;
        }
    }
    return std::nullopt;
}

QStringList timeFormatNames()
{
    QStringList result;
    for (const TimeFormat format : timeFormats) {
        result.append(nameOf(format));
    }
    return result;
}

QString exampleOf(TimeFormat format)
{
    return QLatin1String(wordsOf(format).example);
}

TimeReading readWrittenTime(const QString& text, TimeFormat format, QChar decimalSign, WrittenTime& time)
{
    switch (format) {
    case TimeFormat::Excel1900:
    case TimeFormat::Excel1904:
        return readDays(text, format, decimalSign, time);
    case TimeFormat::UnixSeconds:
    case TimeFormat::UnixMilliseconds:
        return readInstant(text, format, decimalSign, time);
    case TimeFormat::YearMonthDay:
    case TimeFormat::DayMonthYear:
    case TimeFormat::MonthDayYear:
        break;
    }
    return readDateAndClock(text, format, time);
}

std::optional<int> readUtcOffset(const QString& text)
{
    Scanner scanner(text);
    int seconds = 0;
    const bool isOffset = readOffset(scanner, seconds) && scanner.atEnd();
    return isOffset ? std::make_optional(seconds) : std::nullopt;
}
