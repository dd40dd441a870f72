#pragma once

#include "ContentDecoder.h"
#include "HttpMessages.h"

#include <QByteArray>

namespace rk {

/// Reads one answer from the head lines and pieces of a body that the transport hands over.
///
/// It is stricter than libcurl, which lets pass a head that is cut between two lines, lengths that cannot be
/// trusted, compressed data that end too early, and a connection that ends where a body of unstated length
/// should begin.
class AnswerReader
{
public:
    /// What is wrong with an answer.
    enum class Defect
    {
        None,
        HeadTooLarge,
        HeadCut,
        BadLength,
        ContradictoryLength,
        UnknownEncoding,
        DamagedEncoding,
        BodyMissing,
        BodyTooLarge,
        OutOfMemory,
    };

    /// `maximumBodySize` is in bytes after decompression.
    explicit AnswerReader(qint64 maximumBodySize);

    /// Takes the next line of the head, of an interim answer's head, or of a chunked body's trailer. False
    /// when there is a defect and the rest is not wanted.
    bool takeHeadLine(const char* data, qint64 size);
    /// Takes the next bytes of the body; false as above.
    bool takeBody(const char* data, qint64 size);
    /// To be called when the transport has no more and takes the answer for whole: looks for what is missing.
    void finish();
    /// Notes what the transport alone can know. The first defect stays.
    void note(Defect defect);

    /// True once the head of the final answer is complete; an interim one's does not count.
    bool isHeadWhole() const { return m_isHeadWhole; }
    Defect defect() const { return m_defect; }
    /// Has the answer fail for its defect.
    void failForDefect();

    const HttpAnswer& answer() const { return m_answer; }
    HttpAnswer& answer() { return m_answer; }

private:
    void takeStatusLine(const QByteArray& line);
    void takeHeader(const QByteArray& line);
    void checkLength(const QByteArray& value, const QByteArray& earlier);
    void endHead();
    void noteUnlessGood(ContentDecoder::Result result);
    bool endsWithItsConnection() const;
    QString defectText() const;

    qint64 m_maximumBodySize;
    HttpAnswer m_answer;
    ContentDecoder m_decoder;
    qint64 m_headSize = 0;
    bool m_isHeadWhole = false;
    Defect m_defect = Defect::None;
};

} // namespace rk
