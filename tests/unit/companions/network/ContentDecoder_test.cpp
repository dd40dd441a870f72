#include "ContentDecoder.h"

#include "Deflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace {

using rk::ContentDecoder;

constexpr qint64 noLimit = 1 << 30;
constexpr int gzipWindow = MAX_WBITS + 16;
constexpr int zlibWindow = MAX_WBITS;
constexpr int rawWindow = -MAX_WBITS;

// Everything in pieces of `step` bytes.
ContentDecoder::Result decode(const QByteArray& encoding, const QByteArray& data, QByteArray& body,
                              int step = 1 << 20, qint64 limit = noLimit)
{
    ContentDecoder decoder(encoding, limit);
    for (int i = 0; i < data.size(); i += step) {
        const auto result = decoder.write(data.constData() + i, qMin(step, data.size() - i), body);
        if (result != ContentDecoder::Result::Good) {
            return result;
        }
    }
    return decoder.finish();
}

const QByteArray text = QByteArray("settlement ").repeated(20000);

} // namespace

TEST(ContentDecoder, PassesPlainBytesOn)
{
    for (const char* encoding : {"", "identity", " Identity "}) {
        QByteArray body;
        EXPECT_EQ(decode(encoding, text, body, 7), ContentDecoder::Result::Good);
        EXPECT_EQ(body, text);
    }
}

TEST(ContentDecoder, InflatesInPiecesOfAnySize)
{
    struct Case
    {
        const char* encoding;
        int windowBits;
    };
    for (const Case& it : {Case{"gzip", gzipWindow},
                           {"X-GZIP", gzipWindow},
                           {"deflate", zlibWindow},
                           {"deflate", rawWindow}}) {
        for (const int step : {1, 2, 13, 1 << 20}) {
            QByteArray body;
            EXPECT_EQ(decode(it.encoding, deflated(text, it.windowBits), body, step),
                      ContentDecoder::Result::Good)
                << it.encoding << ' ' << it.windowBits << ' ' << step;
            EXPECT_EQ(body, text);
        }
    }
}

TEST(ContentDecoder, ReadsSeveralGzipMembers)
{
    for (const int step : {1, 1 << 20}) {
        QByteArray body;
        EXPECT_EQ(decode("gzip", deflated("ab", gzipWindow) + deflated("cd", gzipWindow), body, step),
                  ContentDecoder::Result::Good);
        EXPECT_EQ(body, "abcd");
    }
}

TEST(ContentDecoder, EveryCutIsDamage)
{
    const QByteArray whole = deflated("settlement point 12: -3.25 mm", gzipWindow);
    for (int length = 0; length < whole.size(); ++length) {
        QByteArray body;
        EXPECT_EQ(decode("gzip", whole.left(length), body), ContentDecoder::Result::Damaged) << length;
    }
}

TEST(ContentDecoder, EveryFlippedByteOfDataOrChecksumIsDamage)
{
    const QByteArray whole = deflated("settlement point 12: -3.25 mm", gzipWindow);
    for (int i = 10; i < whole.size(); ++i) { // behind the header, whose time stamp may be anything
        QByteArray damaged = whole;
        damaged[i] = static_cast<char>(damaged.at(i) ^ 0x5A);
        QByteArray body;
        EXPECT_EQ(decode("gzip", damaged, body), ContentDecoder::Result::Damaged) << i;
    }
}

TEST(ContentDecoder, BytesBehindTheEndAreDamage)
{
    QByteArray body;
    EXPECT_EQ(decode("gzip", deflated("a", gzipWindow) + "x", body), ContentDecoder::Result::Damaged);
    EXPECT_EQ(decode("deflate", deflated("a", zlibWindow) + "x", body), ContentDecoder::Result::Damaged);
}

TEST(ContentDecoder, TheLimitHoldsAfterDecoding)
{
    QByteArray body;
    const QByteArray bomb = deflated(QByteArray(50 * 1024 * 1024, '0'), gzipWindow);
    EXPECT_LT(bomb.size(), 100 * 1024);
    EXPECT_EQ(decode("gzip", bomb, body, 1 << 20, 1 << 20), ContentDecoder::Result::TooLarge);
    EXPECT_LE(body.size(), 1 << 20);

    body.clear();
    EXPECT_EQ(decode("", "12345", body, 2, 5), ContentDecoder::Result::Good);
    body.clear();
    EXPECT_EQ(decode("", "123456", body, 2, 5), ContentDecoder::Result::TooLarge);
    body.clear();
    EXPECT_EQ(decode("gzip", deflated("12345", gzipWindow), body, 1, 5), ContentDecoder::Result::Good);
}

TEST(ContentDecoder, UnknownEncodingsAreRefused)
{
    for (const char* encoding : {"br", "gzip, gzip", "zstd"}) {
        QByteArray body;
        EXPECT_EQ(decode(encoding, "x", body), ContentDecoder::Result::UnknownEncoding);
        EXPECT_EQ(decode(encoding, "", body), ContentDecoder::Result::UnknownEncoding);
    }
}
