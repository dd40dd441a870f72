#include "AnswerReader.h"

#include <QList>

#include <gtest/gtest.h>

#include <string>

namespace {

using rk::AnswerReader;
using Defect = AnswerReader::Defect;

constexpr qint64 limit = 100;

// Hands the lines of a head over one by one, each with its line end; false when the reader wanted no more.
bool takeHead(AnswerReader& reader, const QByteArray& head)
{
    for (int begin = 0; begin < head.size();) {
        const int end = head.indexOf('\n', begin) + 1;
        if (!reader.takeHeadLine(head.constData() + begin, end - begin)) {
            return false;
        }
        begin = end;
    }
    return true;
}

bool takeBody(AnswerReader& reader, const QByteArray& body)
{
    return reader.takeBody(body.constData(), body.size());
}

// What is wrong with an answer of this head and body.
Defect defectOf(const QByteArray& head, const QByteArray& body = {})
{
    AnswerReader reader(limit);
    if (takeHead(reader, head) && (body.isEmpty() || takeBody(reader, body))) {
        reader.finish();
    }
    if (reader.defect() != Defect::None) {
        reader.failForDefect();
        EXPECT_NE(reader.answer().error, QNetworkReply::NoError);
        EXPECT_FALSE(reader.answer().errorText.isEmpty());
        EXPECT_TRUE(reader.answer().body.isEmpty());
    }
    return reader.defect();
}

} // namespace

TEST(AnswerReader, ReadsStatusHeadersAndBody)
{
    AnswerReader reader(limit);
    ASSERT_TRUE(takeHead(reader, "HTTP/1.1 404 Not Found \r\nA:  b c \r\nX-Empty:\r\nno colon\r\n\r\n"));
    EXPECT_TRUE(reader.isHeadWhole());
    ASSERT_TRUE(takeBody(reader, "{\"a\""));
    ASSERT_TRUE(takeBody(reader, ":1}"));
    reader.finish();
    EXPECT_EQ(reader.defect(), Defect::None);
    const rk::HttpAnswer& answer = reader.answer();
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.reason, "Not Found");
    EXPECT_EQ(answer.body, "{\"a\":1}");
    ASSERT_EQ(answer.headers.size(), 2);
    EXPECT_EQ(answer.header("a"), "b c");
    EXPECT_FALSE(answer.header("x-empty").isNull());
    EXPECT_TRUE(answer.header("x-other").isNull());
}

TEST(AnswerReader, AStatusLineNeedsNoReason)
{
    AnswerReader reader(limit);
    ASSERT_TRUE(takeHead(reader, "HTTP/1.1 204\r\n\r\n"));
    EXPECT_EQ(reader.answer().status, 204);
    EXPECT_EQ(reader.answer().reason, "");
}

TEST(AnswerReader, AHeadThatEndsBetweenTwoLinesIsCut)
{
    EXPECT_EQ(defectOf(""), Defect::HeadCut);
    EXPECT_EQ(defectOf("HTTP/1.1 204 No Content\r\n"), Defect::HeadCut);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n"), Defect::HeadCut);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"), Defect::None);
}

TEST(AnswerReader, NothingOfAnInterimAnswerIsTheFinalOnes)
{
    for (const QByteArray status : {"100 Continue", "102 Processing", "103 Early Hints", "199 Other"}) {
        AnswerReader reader(limit);
        ASSERT_TRUE(takeHead(reader, "HTTP/1.1 " + status +
                                         "\r\nLink: x\r\nContent-Length: 3\r\nContent-Encoding: br\r\n\r\n"));
        EXPECT_FALSE(reader.isHeadWhole());
        ASSERT_TRUE(takeHead(reader, "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n"));
        EXPECT_TRUE(reader.isHeadWhole());
        ASSERT_TRUE(takeBody(reader, "{}"));
        reader.finish();
        EXPECT_EQ(reader.defect(), Defect::None);
        EXPECT_EQ(reader.answer().status, 200);
        EXPECT_EQ(reader.answer().reason, "OK");
        ASSERT_EQ(reader.answer().headers.size(), 1);
        EXPECT_EQ(reader.answer().header("Content-Length"), "2");
    }
}

TEST(AnswerReader, AnInterimAnswerAloneIsNone)
{
    EXPECT_EQ(defectOf("HTTP/1.1 100 Continue\r\n\r\n"), Defect::HeadCut);
    EXPECT_EQ(defectOf("HTTP/1.1 103 Early Hints\r\nContent-Length: 0\r\n\r\n"), Defect::HeadCut);
}

TEST(AnswerReader, ATrailerIsNoHeader)
{
    AnswerReader reader(limit);
    ASSERT_TRUE(takeHead(reader, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"));
    ASSERT_TRUE(takeBody(reader, "{}"));
    ASSERT_TRUE(takeHead(reader, "Content-Length: many\r\nX-Trailer: t\r\n\r\n"));
    reader.finish();
    EXPECT_EQ(reader.defect(), Defect::None);
    EXPECT_EQ(reader.answer().headers.size(), 1);
}

TEST(AnswerReader, ALengthIsDigitsAndAtMost64Bits)
{
    for (const QByteArray length : {"", "-1", "+1", "1x", "0x1", "1, 1", "1 1", "9223372036854775808"}) {
        EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n", "x"),
                  Defect::BadLength)
            << length.toStdString();
    }
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\ncontent-length: 9223372036854775807\r\n\r\n", "x"), Defect::None);
}

TEST(AnswerReader, ADuplicateOfTheLengthMustBeTheSame)
{
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Length: 1\r\nCONTENT-LENGTH: 1\r\n\r\n", "x"),
              Defect::None);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Length: 1\r\ncontent-length: 2\r\n\r\n", "x"),
              Defect::ContradictoryLength);
}

TEST(AnswerReader, ABodyOfUnstatedLengthMustHoldSomething)
{
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\n\r\n", "x"), Defect::None);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\n\r\n"), Defect::BodyMissing);
    EXPECT_EQ(defectOf("HTTP/1.1 500 No\r\n\r\n"), Defect::BodyMissing);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"), Defect::None);
    for (const QByteArray status : {"204 No Content", "304 Not Modified"}) {
        EXPECT_EQ(defectOf("HTTP/1.1 " + status + "\r\n\r\n"), Defect::None);
        EXPECT_EQ(defectOf("HTTP/1.1 " + status + "\r\nContent-Encoding: gzip\r\n\r\n"), Defect::None);
    }
}

TEST(AnswerReader, TheBodyIsDecodedAsItsHeaderSays)
{
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Encoding: br\r\n\r\n", "x"), Defect::UnknownEncoding);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n", "x"), Defect::DamagedEncoding);
    EXPECT_EQ(defectOf("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nContent-Encoding: gzip\r\n\r\n"),
              Defect::DamagedEncoding);
}

TEST(AnswerReader, TheBodyHasALimit)
{
    const QByteArray head = "HTTP/1.1 200 OK\r\n\r\n";
    EXPECT_EQ(defectOf(head, QByteArray(static_cast<int>(limit), 'x')), Defect::None);
    EXPECT_EQ(defectOf(head, QByteArray(static_cast<int>(limit) + 1, 'x')), Defect::BodyTooLarge);
}

TEST(AnswerReader, AllHeadsTogetherHaveALimit)
{
    AnswerReader reader(limit);
    const QByteArray interim = "HTTP/1.1 100 Continue\r\n\r\n";
    int taken = 0;
    while (taken < 1024 * 1024 && takeHead(reader, interim)) {
        taken += interim.size();
    }
    EXPECT_EQ(reader.defect(), Defect::HeadTooLarge);
    EXPECT_NEAR(taken, 256 * 1024, interim.size());
}

TEST(AnswerReader, TheFirstDefectIsTheOneThatIsTold)
{
    AnswerReader reader(limit);
    EXPECT_FALSE(takeHead(reader, "HTTP/1.1 200 OK\r\nContent-Length: many\r\n"));
    reader.note(Defect::OutOfMemory);
    EXPECT_EQ(reader.defect(), Defect::BadLength);
    reader.failForDefect();
    EXPECT_EQ(reader.answer().error, QNetworkReply::ProtocolFailure);
    EXPECT_EQ(reader.answer().errorText, QStringLiteral("the reply has an invalid Content-Length \"many\""));
}

TEST(AnswerReader, TellsAClosedConnectionFromOtherDefects)
{
    const auto errorOf = [](const QByteArray& head, Defect noted) {
        AnswerReader reader(limit);
        takeHead(reader, head);
        reader.note(noted);
        reader.failForDefect();
        return reader.answer().error;
    };
    EXPECT_EQ(errorOf({}, Defect::HeadCut), QNetworkReply::RemoteHostClosedError);
    EXPECT_EQ(errorOf({}, Defect::BodyMissing), QNetworkReply::RemoteHostClosedError);
    EXPECT_EQ(errorOf({}, Defect::OutOfMemory), QNetworkReply::UnknownNetworkError);
    for (const Defect defect : {Defect::HeadTooLarge, Defect::BadLength, Defect::ContradictoryLength,
                                Defect::UnknownEncoding, Defect::DamagedEncoding, Defect::BodyTooLarge}) {
        EXPECT_EQ(errorOf({}, defect), QNetworkReply::ProtocolFailure);
    }
}
