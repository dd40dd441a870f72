#include "../../../support/LocalZone.h"

#include <QTimeZone>
#include <RKPub.h>

#include <gtest/gtest.h>

#include <iterator>
#include <random>

using RKPub::getDateTimeByQString;
using RKPub::getQStringByDateTime;

namespace {

constexpr int hour = 60 * 60; // seconds

QDateTime utc(int year, int month, int day, int hours, int minutes, int seconds, int milliseconds = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hours, minutes, seconds, milliseconds), Qt::UTC);
}

QDateTime read(const char* text)
{
    return getDateTimeByQString(QString::fromUtf8(text));
}

std::string write(const QDateTime& dateTime)
{
    return getQStringByDateTime(dateTime).toStdString();
}

// A time in the range that four digits of a year hold at every offset.
qint64 randomInstant(std::mt19937_64& random)
{
    static const qint64 first = utc(1, 1, 2, 0, 0, 0).toMSecsSinceEpoch();
    static const qint64 last = utc(9999, 12, 30, 0, 0, 0).toMSecsSinceEpoch();
    return std::uniform_int_distribution<qint64>(first, last)(random);
}

// Whole minutes within ±14:00, in seconds.
int randomOffset(std::mt19937_64& random)
{
    return std::uniform_int_distribution<int>(-14 * 60, 14 * 60)(random) * 60;
}

} // namespace

TEST(DateText, WritesUtcWithZ)
{
    EXPECT_EQ(write(utc(2024, 2, 29, 8, 5, 9, 7)), "2024-02-29T08:05:09.007Z");
    EXPECT_EQ(write(utc(2024, 12, 31, 23, 59, 59, 999)), "2024-12-31T23:59:59.999Z");
    EXPECT_EQ(write(utc(1969, 12, 31, 23, 59, 59, 999)), "1969-12-31T23:59:59.999Z");
}

TEST(DateText, WritesAnOffsetWithItsSign)
{
    const QDate date(2024, 3, 1);
    const QTime time(6, 30);
    EXPECT_EQ(write(QDateTime(date, time, Qt::OffsetFromUTC, 8 * hour)), "2024-03-01T06:30:00.000+08:00");
    EXPECT_EQ(write(QDateTime(date, time, Qt::OffsetFromUTC, -hour / 2)), "2024-03-01T06:30:00.000-00:30");
    EXPECT_EQ(write(QDateTime(date, time, Qt::OffsetFromUTC, 14 * hour)), "2024-03-01T06:30:00.000+14:00");
}

TEST(DateText, WritesATimeZoneWithTheOffsetOfThatDay)
{
    const QTimeZone zone("Europe/Berlin");
    ASSERT_TRUE(zone.isValid());
    EXPECT_EQ(write(QDateTime(QDate(2024, 1, 15), QTime(12, 0), zone)), "2024-01-15T12:00:00.000+01:00");
    EXPECT_EQ(write(QDateTime(QDate(2024, 7, 15), QTime(12, 0), zone)), "2024-07-15T12:00:00.000+02:00");
}

TEST(DateText, InvalidTimesAreTheEmptyText)
{
    EXPECT_EQ(write(QDateTime()), "");
    EXPECT_EQ(write(QDateTime(QDate(2023, 2, 30), QTime(1, 0), Qt::UTC)), "");
}

TEST(DateText, YearsThatFourDigitsCannotHoldAreTheEmptyText)
{
    EXPECT_EQ(write(utc(1, 1, 1, 0, 0, 0)), "0001-01-01T00:00:00.000Z");
    EXPECT_EQ(write(utc(-1, 12, 31, 0, 0, 0)), "");
    EXPECT_EQ(write(utc(9999, 12, 31, 23, 59, 59, 999)), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(write(utc(10000, 1, 1, 0, 0, 0)), "");
}

TEST(DateText, OffsetsThatCannotBeWrittenKeepTheInstant)
{
    const QDateTime withSeconds(QDate(1890, 6, 1), QTime(12, 0), Qt::OffsetFromUTC, 53 * 60 + 28);
    EXPECT_EQ(write(withSeconds), "1890-06-01T11:59:32.000+00:53");
    EXPECT_EQ(getDateTimeByQString(getQStringByDateTime(withSeconds)), withSeconds);
    const QDateTime west(QDate(1890, 6, 1), QTime(12, 0), Qt::OffsetFromUTC, -(53 * 60 + 28));
    EXPECT_EQ(write(west), "1890-06-01T12:00:28.000-00:53");
    const QDateTime underAMinute(QDate(1890, 6, 1), QTime(12, 0), Qt::OffsetFromUTC, 30);
    EXPECT_EQ(write(underAMinute), "1890-06-01T11:59:30.000Z");
    const QDateTime tooFar(QDate(1840, 6, 1), QTime(12, 0), Qt::OffsetFromUTC, 15 * hour);
    EXPECT_EQ(write(tooFar), "1840-05-31T21:00:00.000Z");
}

TEST(DateText, ReadsUtc)
{
    const QDateTime time = read("2024-02-29T08:05:09.007Z");
    EXPECT_EQ(time, utc(2024, 2, 29, 8, 5, 9, 7));
    EXPECT_EQ(time.timeSpec(), Qt::UTC);
}

TEST(DateText, TheOffsetReadIsKept)
{
    const QDateTime time = read("2024-03-01T06:30:00.000+08:00");
    EXPECT_EQ(time, utc(2024, 2, 29, 22, 30, 0));
    EXPECT_EQ(time.timeSpec(), Qt::OffsetFromUTC);
    EXPECT_EQ(time.offsetFromUtc(), 8 * hour);
    EXPECT_EQ(time.date(), QDate(2024, 3, 1));
    EXPECT_EQ(time.time(), QTime(6, 30));
}

TEST(DateText, ReadsOffsetsWithAndWithoutColon)
{
    EXPECT_EQ(read("2024-03-01T06:30:00-0330").offsetFromUtc(), -(3 * hour + hour / 2));
    EXPECT_EQ(read("2024-03-01T06:30:00-03:30").offsetFromUtc(), -(3 * hour + hour / 2));
    EXPECT_EQ(read("2024-03-01T06:30:00.5+0545").offsetFromUtc(), 5 * hour + 45 * 60);
    EXPECT_EQ(read("2024-03-01T06:30:00+14:00").offsetFromUtc(), 14 * hour);
    EXPECT_EQ(read("2024-03-01T06:30:00-14:00").offsetFromUtc(), -14 * hour);
}

TEST(DateText, AZeroOffsetIsUtc)
{
    for (const char* text :
         {"2024-03-01T06:30:00+00:00", "2024-03-01T06:30:00-00:00", "2024-03-01T06:30:00+0000"}) {
        const QDateTime time = read(text);
        EXPECT_EQ(time, utc(2024, 3, 1, 6, 30, 0)) << text;
        EXPECT_EQ(time.timeSpec(), Qt::UTC) << text;
        EXPECT_EQ(write(time), "2024-03-01T06:30:00.000Z") << text;
    }
}

TEST(DateText, FractionsOfAnyLengthAreCutToMilliseconds)
{
    EXPECT_EQ(read("2024-03-01T00:00:00Z").time().msec(), 0);
    EXPECT_EQ(read("2024-03-01T00:00:00.5Z").time().msec(), 500);
    EXPECT_EQ(read("2024-03-01T00:00:00.05Z").time().msec(), 50);
    EXPECT_EQ(read("2024-03-01T00:00:00.1239Z").time().msec(), 123);
    EXPECT_EQ(read("2024-03-01T23:59:59.99999999999999999999999999+08:00").time(), QTime(23, 59, 59, 999));
    const QString longFraction = QStringLiteral("2024-03-01T00:00:00.") + QString(100000, QLatin1Char('7'));
    EXPECT_EQ(getDateTimeByQString(longFraction + QLatin1Char('Z')).time().msec(), 777);
}

TEST(DateText, TheFirstAndTheLastTimeOfTheFormat)
{
    for (const char* text :
         {"0001-01-01T00:00:00.000Z", "9999-12-31T23:59:59.999Z", "0001-01-01T00:00:00.000+14:00",
          "9999-12-31T23:59:59.999-14:00", "2000-02-29T12:00:00.000-09:30"}) {
        EXPECT_EQ(write(read(text)), text);
    }
}

TEST(DateText, AnythingElseIsNull)
{
    const char* const refused[] = {
        "", " ", "null", "2024", "2024-03", "2024-03-", "2024-3-1", "20240301", "24-03-01", "+2024-03-01",
        "-2024-03-01", "12024-03-01", "2024/03/01", "2024-03-01 ", " 2024-03-01", "2024-03-01Z",
        "2024-03-01+08:00",
        // the calendar
        "0000-01-01", "0000-01-01T00:00:00Z", "2024-00-01", "2024-13-01", "2024-01-00", "2024-01-32",
        "2024-02-30", "2023-02-29", "1900-02-29T00:00:00Z", "2024-04-31T00:00:00Z", "2024-W09-5", "2024-061",
        // the clock
        "2024-03-01T", "2024-03-01T06", "2024-03-01T06:30", "2024-03-01T06:30Z",
        "2024-03-01T06:30:", "2024-03-01T24:00:00Z", "2024-03-01T06:60:00Z", "2024-03-01T23:59:60Z",
        "2024-03-01T6:30:00Z", "2024-03-01T063000Z", "2024-03-01T-6:30:00Z", "2024-03-01 06:30:00Z",
        "2024-03-01t06:30:00Z", "2024-03-01T06:30:00z", "2024-03-01T06.30.00Z",
        // the fraction
        "2024-03-01T06:30:00.", "2024-03-01T06:30:00.Z", "2024-03-01T06:30:00,5Z", "2024-03-01T06:30:00.5.5Z",
        "2024-03-01T06:30:00.5e3Z", "2024-03-01T06:30:00. 5Z",
        // the offset
        "2024-03-01T06:30:00+", "2024-03-01T06:30:00+8", "2024-03-01T06:30:00+08",
        "2024-03-01T06:30:00+08:", "2024-03-01T06:30:00+08:0", "2024-03-01T06:30:00+8:00",
        "2024-03-01T06:30:00+08:60", "2024-03-01T06:30:00+08::00", "2024-03-01T06:30:00+080",
        "2024-03-01T06:30:00+08000", "2024-03-01T06:30:00+08:00:00", "2024-03-01T06:30:00+14:01",
        "2024-03-01T06:30:00-14:01", "2024-03-01T06:30:00+99:59", "2024-03-01T06:30:00-+08:00",
        "2024-03-01T06:30:00+-8:00", "2024-03-01T06:30:00\u221208:00",
        // what stands around
        "2024-03-01T06:30:00Z ", " 2024-03-01T06:30:00Z", "2024-03-01T06:30:00Z\n", "2024-03-01T06:30:00 Z",
        "2024-03-01T06:30:00ZZ", "2024-03-01T06:30:00Z+08:00", "2024-03-01T06:30:00+08:00Z",
        "2024-03-01T06:30:00 +08:00", "2024-03-01T06:30:00Zulu", "2024-03-01T06:30:00[Europe/Berlin]",
        // digits of other scripts
        "\u0662\u0660\u0662\u0664-03-01T06:30:00Z", "2024-03-01T06:30:0\uff10Z",
        "2024-03-01T06:30:00.\u0665Z", "2024-03-01T06:30:00+0\u0668:00"};
    for (const char* text : refused) {
        EXPECT_TRUE(read(text).isNull()) << '"' << text << '"';
    }
}

TEST(DateText, CharactersThatAreNotSeenAreNotOverlooked)
{
    const QString time = QStringLiteral("2024-03-01T06:30:00Z");
    EXPECT_TRUE(getDateTimeByQString(QChar(QChar::ByteOrderMark) + time).isNull());
    EXPECT_TRUE(getDateTimeByQString(time + QChar(0)).isNull());
    EXPECT_TRUE(getDateTimeByQString(QChar(0) + time).isNull());
}

TEST(DateText, EveryPrefixOfAFullTextIsATimeOrNull)
{
    const QString text = QStringLiteral("2024-03-01T06:30:00.123+08:00");
    const QList<int> whole{10, 19, 21, 22, 23, 29}; // the day, then seconds, fractions and the whole
    for (int length = 0; length <= text.size(); ++length) {
        EXPECT_EQ(getDateTimeByQString(text.left(length)).isValid(), whole.contains(length)) << length;
    }
}

TEST(DateText, EveryCanonicalTextIsWrittenBackAsItWas)
{
    std::mt19937_64 random(20240301);
    for (int i = 0; i < 20000; ++i) {
        const int offset = i % 4 == 0 ? 0 : randomOffset(random);
        const QDateTime time =
            QDateTime::fromMSecsSinceEpoch(randomInstant(random), Qt::OffsetFromUTC, offset);
        const QString text = getQStringByDateTime(time);
        const QDateTime back = getDateTimeByQString(text);
        EXPECT_EQ(back, time) << text.toStdString();
        EXPECT_EQ(back.offsetFromUtc(), offset) << text.toStdString();
        EXPECT_EQ(back.date(), time.date()) << text.toStdString();
        EXPECT_EQ(getQStringByDateTime(back), text);
    }
}

TEST(DateText, AgreesWithQt)
{
    std::mt19937_64 random(8601);
    for (int i = 0; i < 20000; ++i) {
        const int offset = i % 3 == 0 ? 0 : randomOffset(random);
        const QDateTime time =
            QDateTime::fromMSecsSinceEpoch(randomInstant(random), Qt::OffsetFromUTC, offset);
        const QString text = time.toString(Qt::ISODateWithMs);
        EXPECT_EQ(getQStringByDateTime(time), text);
        const QDateTime ours = getDateTimeByQString(text);
        const QDateTime peer = QDateTime::fromString(text, Qt::ISODateWithMs);
        EXPECT_EQ(ours, peer) << text.toStdString();
        EXPECT_EQ(ours.timeSpec(), peer.timeSpec()) << text.toStdString();
        EXPECT_EQ(ours.offsetFromUtc(), peer.offsetFromUtc()) << text.toStdString();
    }
}

TEST(DateText, HasTheCalendarOfQt)
{
    for (const int year : {1,    3,    4,    99,   100,  101,  400,  1582, 1600, 1899, 1900, 1904,
                           1969, 1970, 1972, 1999, 2000, 2001, 2023, 2024, 2100, 2400, 9996, 9999}) {
        for (int month = 0; month <= 20; ++month) {
            for (int day = 0; day <= 40; ++day) {
                const QString text = QString::asprintf("%04d-%02d-%02dT00:00:00Z", year, month, day);
                const QDateTime time = getDateTimeByQString(text);
                const QDate date(year, month, day);
                EXPECT_EQ(time.isValid(), date.isValid()) << text.toStdString();
                EXPECT_EQ(time.date(), date) << text.toStdString();
            }
        }
    }
}

TEST(DateText, ReadsNoCharacterForAnotherOne)
{
    // Beyond those of the format, also such as share their lower or upper bits.
    const QString text = QStringLiteral("2024-03-01T06:30:00.123+08:00");
    for (int at = 0; at < text.size(); ++at) {
        for (int code = 0; code <= 0xffff; ++code) {
            QString changed = text;
            changed[at] = QChar(code);
            if (code < 0x80 && QStringLiteral("0123456789-:.+TZ").contains(QChar(code))) {
                continue;
            }
            ASSERT_TRUE(getDateTimeByQString(changed).isNull()) << at << " is " << code;
        }
    }
}

TEST(DateText, WhatAChangedCharacterLeavesAcceptedQtReadsTheSame)
{
    std::mt19937_64 random(3339);
    const QString characters = QStringLiteral("0123456789-:.+TZ ");
    int accepted = 0;
    for (int i = 0; i < 50000; ++i) {
        const QDateTime time =
            QDateTime::fromMSecsSinceEpoch(randomInstant(random), Qt::OffsetFromUTC, randomOffset(random));
        QString text = time.toString(Qt::ISODateWithMs);
        text[static_cast<int>(random() % static_cast<unsigned>(text.size()))] =
            characters.at(static_cast<int>(random() % static_cast<unsigned>(characters.size())));
        const QDateTime ours = getDateTimeByQString(text);
        if (!ours.isValid()) {
            continue;
        }
        ++accepted;
        const qint64 difference = ours.msecsTo(QDateTime::fromString(text, Qt::ISODateWithMs));
        const bool fourthDigit = text.size() == 24 && text.at(23).isDigit(); // cut here, rounded by Qt
        EXPECT_TRUE(difference == 0 || (fourthDigit && difference == 1)) << text.toStdString();
    }
    EXPECT_GT(accepted, 1000);
}

#ifdef Q_OS_UNIX // where there is a LocalZone

namespace {

class DateTextInZone : public testing::TestWithParam<const char*>
{
    LocalZone m_zone{GetParam()};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Zones, DateTextInZone,
                         testing::Values("UTC", "Europe/Berlin", "America/New_York", "America/Sao_Paulo",
                                         "Asia/Kolkata", "Asia/Shanghai", "Australia/Lord_Howe",
                                         "Pacific/Apia"));

TEST_P(DateTextInZone, LocalTimesKeepInstantAndDay)
{
    const QTimeZone zone(GetParam());
    ASSERT_TRUE(zone.isValid());
    std::mt19937_64 random(1);
    std::uniform_int_distribution<qint64> instants(0, 2145916800000); // 1970 to 2037
    for (int i = 0; i < 5000; ++i) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(instants(random), Qt::LocalTime);
        ASSERT_EQ(time.offsetFromUtc(), zone.offsetFromUtc(time));
        const QString text = getQStringByDateTime(time);
        const QDateTime back = getDateTimeByQString(text);
        EXPECT_EQ(back, time) << text.toStdString();
        EXPECT_EQ(back.date(), time.date()) << text.toStdString();
        EXPECT_EQ(back.offsetFromUtc(), time.offsetFromUtc()) << text.toStdString();
        EXPECT_EQ(text, QDateTime(time.date(), time.time(), Qt::UTC)
                            .toString(Qt::ISODateWithMs)
                            .replace(QLatin1Char('Z'), text.mid(23)));
    }
}

TEST_P(DateTextInZone, LocalTimesAreWrittenWithAnOffsetEvenAtZero)
{
    const QString text = getQStringByDateTime(QDateTime(QDate(2024, 3, 1), QTime(6, 30), Qt::LocalTime));
    EXPECT_EQ(text.size(), 29);
    EXPECT_TRUE(text.startsWith(QStringLiteral("2024-03-01T06:30:00.000"))) << text.toStdString();
}

TEST_P(DateTextInZone, WithoutOffsetTimesAreLocal)
{
    std::mt19937_64 random(2);
    std::uniform_int_distribution<qint64> instants(0, 2145916800000);
    for (int i = 0; i < 5000; ++i) {
        const QString text = QDateTime::fromMSecsSinceEpoch(instants(random), Qt::UTC)
                                 .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
        const QDateTime ours = getDateTimeByQString(text);
        const QDateTime peer = QDateTime::fromString(text, Qt::ISODateWithMs);
        EXPECT_EQ(ours.isValid(), peer.isValid()) << text.toStdString();
        if (!ours.isValid()) {
            continue;
        }
        EXPECT_EQ(ours, peer) << text.toStdString();
        EXPECT_EQ(ours.timeSpec(), Qt::LocalTime);
        EXPECT_EQ(ours.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")), text);
    }
}

TEST_P(DateTextInZone, ADateAloneIsTheFirstMomentOfThatLocalDay)
{
    for (QDate day(2010, 1, 1); day < QDate(2020, 1, 1); day = day.addDays(1)) {
        const QDateTime start = getDateTimeByQString(day.toString(Qt::ISODate));
        if (!start.isValid()) {
            EXPECT_EQ(day, QDate(2011, 12, 30)); // the day that Apia left out
            EXPECT_STREQ(GetParam(), "Pacific/Apia");
            continue;
        }
        EXPECT_EQ(start.timeSpec(), Qt::LocalTime);
        EXPECT_EQ(start.date(), day);
        EXPECT_EQ(start, day.startOfDay(QTimeZone(GetParam()))) << day.toString(Qt::ISODate).toStdString();
    }
}

TEST(DateText, ADateAloneStartsLaterWhereClocksSkipMidnight)
{
    const LocalZone zone("America/Sao_Paulo");
    EXPECT_EQ(write(read("2018-11-03")), "2018-11-03T00:00:00.000-03:00");
    EXPECT_EQ(write(read("2018-11-04")), "2018-11-04T01:00:00.000-02:00");
}

TEST(DateText, ALocalTimeThatClocksSkipIsNull)
{
    const LocalZone zone("Europe/Berlin");
    EXPECT_EQ(write(read("2024-03-31T01:59:59")), "2024-03-31T01:59:59.000+01:00");
    EXPECT_TRUE(read("2024-03-31T02:30:00").isNull());
    EXPECT_EQ(write(read("2024-03-31T03:00:00")), "2024-03-31T03:00:00.000+02:00");
}

TEST(DateText, BothPassesOfAnHourThatOccursTwiceAreWrittenApart)
{
    const LocalZone zone("Europe/Berlin");
    const qint64 summer = utc(2024, 10, 27, 0, 30, 0).toMSecsSinceEpoch();
    EXPECT_EQ(write(QDateTime::fromMSecsSinceEpoch(summer, Qt::LocalTime)), "2024-10-27T02:30:00.000+02:00");
    EXPECT_EQ(write(QDateTime::fromMSecsSinceEpoch(summer + hour * 1000, Qt::LocalTime)),
              "2024-10-27T02:30:00.000+01:00");
    EXPECT_EQ(read("2024-10-27T02:30:00").time(), QTime(2, 30));
}

TEST(DateText, HalfHourZonesAreWrittenWithTheirMinutes)
{
    {
        const LocalZone zone("Asia/Kolkata");
        EXPECT_EQ(write(read("2024-03-01T06:30:00")), "2024-03-01T06:30:00.000+05:30");
    }
    const LocalZone zone("Australia/Lord_Howe"); // whose summer time is half an hour
    EXPECT_EQ(write(read("2024-01-01T06:30:00")), "2024-01-01T06:30:00.000+11:00");
    EXPECT_EQ(write(read("2024-07-01T06:30:00")), "2024-07-01T06:30:00.000+10:30");
}

#endif
