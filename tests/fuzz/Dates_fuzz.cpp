// Input: a letter that chooses the local time zone, then a text. What is read must be what a slow reading by
// the book finds, and must come back when it is written. The service's reading, which is another program,
// must agree. Sixteen bytes and more are also taken as an instant and an offset that are written and read.

#include "Fuzzer.h"
#include "time/Timestamp.h"

#include <QTimeZone>
#include <RKPub.h>

#include <array>
#include <cstring>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace {

using fuzz::require;

void setLocalZone(unsigned choice)
{
    static const std::array<const char*, 8> zones{"UTC",          "Europe/Berlin",       "America/New_York",
                                                  "Asia/Kolkata", "Australia/Lord_Howe", "America/Sao_Paulo",
                                                  "Asia/Beirut",  "Pacific/Apia"};
    static const char* present = nullptr;
    const char* const wanted = zones[choice % zones.size()];
    if (wanted == present) {
        return;
    }
    present = wanted;
#ifdef Q_OS_UNIX
    qputenv("TZ", wanted);
    tzset();
#endif
}

struct CivilTime
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
    bool isDateAlone = false;
    std::optional<int> offsetMinutes;
};

// The number in a part of the text that must be digits.
std::optional<int> digits(std::string_view text)
{
    int number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        number = number * 10 + (c - '0');
    }
    return number;
}

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysOf(int year, int month)
{
    constexpr std::array<int, 13> days{0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days.at(static_cast<std::size_t>(month));
}

bool readDate(std::string_view text, CivilTime& time)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
        return false;
    }
    const auto year = digits(text.substr(0, 4));
    const auto month = digits(text.substr(5, 2));
    const auto day = digits(text.substr(8, 2));
    if (!year || !month || !day || *year < 1 || *month < 1 || *month > 12 || *day < 1 ||
        *day > daysOf(*year, *month)) {
        return false;
    }
    time.year = *year;
    time.month = *month;
    time.day = *day;
    return true;
}

bool readClock(std::string_view text, CivilTime& time)
{
    if (text.size() != 8 || text[2] != ':' || text[5] != ':') {
        return false;
    }
    const auto hour = digits(text.substr(0, 2));
    const auto minute = digits(text.substr(3, 2));
    const auto second = digits(text.substr(6, 2));
    if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) {
        return false;
    }
    time.hour = *hour;
    time.minute = *minute;
    time.second = *second;
    return true;
}

bool readOffset(std::string_view text, CivilTime& time)
{
    if (text == "Z") {
        time.offsetMinutes = 0;
        return true;
    }
    std::string plain(text);
    if (plain.size() == 6 && plain[3] == ':') {
        plain.erase(3, 1);
    }
    if (plain.size() != 5 || (plain[0] != '+' && plain[0] != '-')) {
        return false;
    }
    const auto hours = digits(plain.substr(1, 2));
    const auto minutes = digits(plain.substr(3, 2));
    if (!hours || !minutes || *minutes > 59 || *hours * 60 + *minutes > 14 * 60) {
        return false;
    }
    time.offsetMinutes = (plain[0] == '-' ? -1 : 1) * (*hours * 60 + *minutes);
    return true;
}

// ISO 8601 as RKPub.h describes it.
std::optional<CivilTime> readByTheBook(std::string_view text)
{
    CivilTime time;
    if (!readDate(text.substr(0, 10), time)) {
        return std::nullopt;
    }
    time.isDateAlone = text.size() == 10;
    if (time.isDateAlone) {
        return time;
    }
    if (text.size() < 19 || text[10] != 'T' || !readClock(text.substr(11, 8), time)) {
        return std::nullopt;
    }
    std::string_view rest = text.substr(19);
    if (!rest.empty() && rest[0] == '.') {
        const std::string_view fraction = rest.substr(1, rest.find_first_not_of("0123456789", 1) - 1);
        if (fraction.empty()) {
            return std::nullopt;
        }
        time.millisecond = *digits((std::string(fraction) + "00").substr(0, 3));
        rest.remove_prefix(1 + fraction.size());
    }
    if (!rest.empty() && !readOffset(rest, time)) {
        return std::nullopt;
    }
    return time;
}

// Day by day from 1970, year by year before and behind.
qint64 instantOf(const CivilTime& time)
{
    qint64 days = time.day - 1;
    for (int month = 1; month < time.month; ++month) {
        days += daysOf(time.year, month);
    }
    for (int year = 1970; year < time.year; ++year) {
        days += isLeapYear(year) ? 366 : 365;
    }
    for (int year = time.year; year < 1970; ++year) {
        days -= isLeapYear(year) ? 366 : 365;
    }
    const qint64 minutes = (days * 24 + time.hour) * 60 + time.minute - time.offsetMinutes.value_or(0);
    return (minutes * 60 + time.second) * 1000 + time.millisecond;
}

// Whether the clocks of the local zone skip the time, as the C library says.
bool isSkipped(const CivilTime& time)
{
    std::tm wanted{};
    wanted.tm_year = time.year - 1900;
    wanted.tm_mon = time.month - 1;
    wanted.tm_mday = time.day;
    wanted.tm_hour = time.hour;
    wanted.tm_min = time.minute;
    wanted.tm_sec = time.second;
    wanted.tm_isdst = -1;
    std::tm found = wanted;
    std::mktime(&found);
    return found.tm_hour != wanted.tm_hour || found.tm_min != wanted.tm_min ||
           found.tm_mday != wanted.tm_mday;
}

void checkOffsetTime(const QDateTime& read, const CivilTime& expected, const std::string& text)
{
    require(read.isValid(), "a time with an offset is read", [&] { return text; });
    require(read.toMSecsSinceEpoch() == instantOf(expected), "it is the instant written",
            [&] { return text; });
    require(read.offsetFromUtc() == *expected.offsetMinutes * 60, "its offset is kept", [&] { return text; });
    require(read.date() == QDate(expected.year, expected.month, expected.day) &&
                read.time() == QTime(expected.hour, expected.minute, expected.second, expected.millisecond),
            "its day and clock are those written", [&] { return text; });
}

void checkLocalTime(const QDateTime& read, const CivilTime& expected, const std::string& text)
{
    // Before and behind these years Qt has rules of its own for daylight saving.
    const bool isPlain = expected.year > 1971 && expected.year < 2037;
    if (!read.isValid()) {
        CivilTime last = expected; // of a date alone; some zones have skipped a whole day
        last.hour = expected.isDateAlone ? 23 : expected.hour;
        require(!isPlain || isSkipped(last), "a local time is refused only when the clocks skip it",
                [&] { return text; });
        return;
    }
    const QDate date(expected.year, expected.month, expected.day);
    require(read.timeSpec() == Qt::LocalTime && read.date() == date, "a local time is on its day",
            [&] { return text; });
    if (!expected.isDateAlone) {
        require(read.time() == QTime(expected.hour, expected.minute, expected.second, expected.millisecond),
                "a local time is at its clock", [&] { return text; });
    } else {
        require(!isPlain || isSkipped(expected) || read.time() == QTime(0, 0),
                "a date alone is its first moment", [&] { return text; });
    }
}

void checkServiceAgrees(const std::string& text, const QDateTime& read,
                        const std::optional<CivilTime>& expected)
{
    const std::optional<monitorservice::Timestamp> timestamp = monitorservice::parseTimestamp(text);
    if (!expected || !expected->offsetMinutes) {
        require(!timestamp || text.substr(0, 4) == "0000", "the service takes no other times",
                [&] { return text; });
        return;
    }
    require(timestamp && timestamp->milliseconds == read.toMSecsSinceEpoch(),
            "the service reads the same instant", [&] { return text; });
    require(timestamp->offsetMinutes.value_or(0) == *expected->offsetMinutes,
            "the service reads the same offset", [&] { return text; });
}

void checkWritten(const QDateTime& time, bool isExact)
{
    const QString text = RKPub::getQStringByDateTime(time);
    if (text.isEmpty()) {
        require(!isExact, "a time that was read can be written");
        return;
    }
    const QDateTime again = RKPub::getDateTimeByQString(text);
    require(again == time, "what is written is read as the same instant", [&] { return text.toStdString(); });
    // Local time may be that of UTC, which is written as an offset and read as UTC.
    QString textAgain = text;
    textAgain.replace(QStringLiteral("+00:00"), QStringLiteral("Z"));
    require(RKPub::getQStringByDateTime(again) == textAgain, "it is written the same again",
            [&] { return text.toStdString(); });
    if (isExact) {
        require(again.date() == time.date() && again.time() == time.time() &&
                    again.offsetFromUtc() == time.offsetFromUtc(),
                "it is read with its day, clock and offset", [&] { return text.toStdString(); });
    }
}

void checkText(std::string_view bytes)
{
    const std::string text(bytes);
    const QDateTime read = RKPub::getDateTimeByQString(QString::fromLatin1(text.data(), int(text.size())));
    const std::optional<CivilTime> expected = readByTheBook(text);
    require(expected || !read.isValid(), "nothing else is read", [&] { return text; });
    if (expected && expected->offsetMinutes) {
        checkOffsetTime(read, *expected, text);
    } else if (expected) {
        checkLocalTime(read, *expected, text);
    }
    checkServiceAgrees(text, read, expected);
    if (read.isValid()) {
        checkWritten(read, expected->offsetMinutes.has_value());
    }
}

void checkInstant(const std::uint8_t* data)
{
    constexpr qint64 tenThousandYears = qint64(10'000) * 366 * 86'400'000;
    std::array<std::int64_t, 2> numbers{};
    std::memcpy(numbers.data(), data, sizeof numbers);
    const qint64 instant = numbers[0] % tenThousandYears;
    const int offset = static_cast<int>(numbers[1] % (14 * 3600));
    checkWritten(QDateTime::fromMSecsSinceEpoch(instant, Qt::UTC), false);
    checkWritten(QDateTime::fromMSecsSinceEpoch(instant, Qt::OffsetFromUTC, offset), false);
    checkWritten(QDateTime::fromMSecsSinceEpoch(instant), false);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    setLocalZone(data[0]);
    checkText({reinterpret_cast<const char*>(data + 1), size - 1});
    if (size >= 16) {
        checkInstant(data);
    }
    return 0;
}
