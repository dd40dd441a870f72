#include "AnswerReader.h"

#include <algorithm>

namespace rk {

namespace {

constexpr qint64 maximumHeadSize = 256 * 1024;

QString megabytes(qint64 bytes)
{
    return bytes < 1024 * 1024 ? QStringLiteral("%1 bytes").arg(bytes)
                               : QStringLiteral("%1 MiB").arg(bytes / (1024 * 1024));
}

QNetworkReply::NetworkError errorOfDefect(AnswerReader::Defect defect)
{
    switch (defect) {
    case AnswerReader::Defect::None:
        return QNetworkReply::NoError;
    case AnswerReader::Defect::HeadCut:
    case AnswerReader::Defect::BodyMissing:
        return QNetworkReply::RemoteHostClosedError;
    case AnswerReader::Defect::OutOfMemory:
        return QNetworkReply::UnknownNetworkError;
    default:
        return QNetworkReply::ProtocolFailure;
    }
}

} // namespace

AnswerReader::AnswerReader(qint64 maximumBodySize)
    : m_maximumBodySize(maximumBodySize), m_decoder(QByteArray(), maximumBodySize)
{
}

bool AnswerReader::takeHeadLine(const char* data, qint64 size)
{
    m_headSize += size;
    if (m_headSize > maximumHeadSize) {
        note(Defect::HeadTooLarge);
        return false;
    }
    const QByteArray line = QByteArray(data, static_cast<int>(size)).trimmed();
    if (line.startsWith("HTTP/")) {
        takeStatusLine(line);
    } else if (m_isHeadWhole) {
        return true; // a trailer of a chunked body
    } else if (line.isEmpty()) {
        endHead();
    } else {
        takeHeader(line);
    }
    return m_defect == Defect::None;
}

void AnswerReader::takeStatusLine(const QByteArray& line)
{
    const int first = line.indexOf(' ');
    const int second = line.indexOf(' ', first + 1);
    m_answer.status = line.mid(first + 1, second < 0 ? -1 : second - first - 1).toInt();
    m_answer.reason = second < 0 ? QByteArray() : line.mid(second + 1).trimmed();
    m_answer.headers.clear();
    m_isHeadWhole = false;
}

void AnswerReader::takeHeader(const QByteArray& line)
{
    const int colon = line.indexOf(':');
    if (colon < 0) {
        return;
    }
    const QByteArray name = line.left(colon).trimmed();
    const QByteArray value = line.mid(colon + 1).trimmed();
    if (name.compare("Content-Length", Qt::CaseInsensitive) == 0) {
        checkLength(value, m_answer.header("Content-Length"));
    }
    m_answer.headers.append({name, value});
}

// RFC 9112, 6.3: a length that is no number, or a duplicate that differs, cannot be trusted. libcurl takes
// what digits it finds, and reads to the end of the connection when they are too many.
void AnswerReader::checkLength(const QByteArray& value, const QByteArray& earlier)
{
    bool isNumber = false;
    value.toLongLong(&isNumber);
    const bool hasDigitsOnly =
        std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isNumber || !hasDigitsOnly) {
        note(Defect::BadLength);
    } else if (!earlier.isNull() && earlier != value) {
        note(Defect::ContradictoryLength);
    }
}

void AnswerReader::endHead()
{
    // An interim answer (RFC 9110, 15.2) is followed by another head.
    m_isHeadWhole = m_answer.status >= 200;
    if (m_isHeadWhole) {
        m_decoder = ContentDecoder(m_answer.header("Content-Encoding"), m_maximumBodySize);
    }
}

bool AnswerReader::takeBody(const char* data, qint64 size)
{
    noteUnlessGood(m_decoder.write(data, size, m_answer.body));
    return m_defect == Defect::None;
}

void AnswerReader::finish()
{
    if (!m_isHeadWhole) {
        note(Defect::HeadCut);
        return;
    }
    const bool hasContent = m_answer.status != 204 && m_answer.status != 304;
    if (!hasContent) {
        return;
    }
    noteUnlessGood(m_decoder.finish());
    if (endsWithItsConnection() && m_answer.body.isEmpty()) {
        note(Defect::BodyMissing);
    }
}

// Nothing but the end of the connection says where the body ends (RFC 9112, 6.3).
bool AnswerReader::endsWithItsConnection() const
{
    return m_answer.header("Content-Length").isNull() && m_answer.header("Transfer-Encoding").isNull();
}

void AnswerReader::note(Defect defect)
{
    if (m_defect == Defect::None) {
        m_defect = defect;
    }
}

void AnswerReader::noteUnlessGood(ContentDecoder::Result result)
{
    switch (result) {
    case ContentDecoder::Result::Good:
        break;
    case ContentDecoder::Result::UnknownEncoding:
        note(Defect::UnknownEncoding);
        break;
    case ContentDecoder::Result::Damaged:
        note(Defect::DamagedEncoding);
        break;
    case ContentDecoder::Result::TooLarge:
        note(Defect::BodyTooLarge);
        break;
    }
}

void AnswerReader::failForDefect()
{
    m_answer.fail(errorOfDefect(m_defect), defectText());
}

QString AnswerReader::defectText() const
{
    switch (m_defect) {
    case Defect::None:
        break;
    case Defect::HeadTooLarge:
        return QStringLiteral("the reply's header is too large");
    case Defect::HeadCut:
        return QStringLiteral("the connection closed within the reply's header");
    case Defect::BadLength:
        return QStringLiteral("the reply has an invalid Content-Length \"%1\"")
            .arg(QString::fromLatin1(m_answer.header("Content-Length")));
    case Defect::ContradictoryLength:
        return QStringLiteral("the reply has two different Content-Lengths");
    case Defect::UnknownEncoding:
        return QStringLiteral("the reply has an unknown Content-Encoding \"%1\"")
            .arg(QString::fromLatin1(m_answer.header("Content-Encoding")));
    case Defect::DamagedEncoding:
        return QStringLiteral("the compressed reply is damaged or incomplete");
    case Defect::BodyMissing:
        return QStringLiteral("the connection closed where the reply's body should begin");
    case Defect::BodyTooLarge:
        return QStringLiteral("the reply is larger than the limit of %1").arg(megabytes(m_maximumBodySize));
    case Defect::OutOfMemory:
        return QStringLiteral("not enough memory for the reply");
    }
    return {};
}

} // namespace rk
