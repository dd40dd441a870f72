#include "ContentDecoder.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>

namespace rk {

// An inflating zlib stream.
struct ContentDecoder::Inflater
{
    explicit Inflater(int windowBits) { ready = inflateInit2(&stream, windowBits) == Z_OK; }
    ~Inflater()
    {
        if (ready) {
            inflateEnd(&stream);
        }
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    z_stream stream = {};
    bool ready = false;
    bool atEnd = false; // the last stream is complete and no byte follows
};

namespace {

constexpr int gzipWindow = MAX_WBITS + 16;
constexpr int zlibWindow = MAX_WBITS;
constexpr int rawWindow = -MAX_WBITS;

// "deflate" means a zlib stream (RFC 9110, 8.4.1.2), but some send the raw one inside it. A zlib header is
// told by its method and check bits (RFC 1950, 2.2).
int deflateWindow(unsigned char first)
{
    return (first & 0x0FU) == Z_DEFLATED ? zlibWindow : rawWindow;
}

} // namespace

ContentDecoder::ContentDecoder(const QByteArray& encoding, qint64 limit) : m_limit(limit)
{
    const QByteArray name = encoding.trimmed().toLower();
    if (name.isEmpty() || name == "identity") {
        m_encoding = Encoding::Identity;
    } else if (name == "gzip" || name == "x-gzip") {
        m_encoding = Encoding::Gzip;
    } else if (name == "deflate") {
        m_encoding = Encoding::Deflate;
    } else {
        m_encoding = Encoding::Unknown;
    }
}

ContentDecoder::~ContentDecoder() = default;
ContentDecoder::ContentDecoder(ContentDecoder&& other) noexcept = default;
ContentDecoder& ContentDecoder::operator=(ContentDecoder&& other) noexcept = default;

ContentDecoder::Result ContentDecoder::write(const char* data, qint64 size, QByteArray& body)
{
    switch (m_encoding) {
    case Encoding::Unknown:
        return Result::UnknownEncoding;
    case Encoding::Identity:
        if (size > m_limit - body.size()) {
            return Result::TooLarge;
        }
        body.append(data, static_cast<int>(size));
        return Result::Good;
    case Encoding::Gzip:
    case Encoding::Deflate:
        break;
    }
    if (size == 0) {
        return Result::Good;
    }
    if (!m_inflater) {
        m_inflater = std::make_unique<Inflater>(
            m_encoding == Encoding::Gzip ? gzipWindow : deflateWindow(static_cast<unsigned char>(*data)));
    }
    return m_inflater->ready ? inflateInto(body, data, size) : Result::Damaged;
}

ContentDecoder::Result ContentDecoder::inflateInto(QByteArray& body, const char* data, qint64 size)
{
    std::array<char, 32 * 1024> buffer;
    z_stream& stream = m_inflater->stream;
    stream.next_in = reinterpret_cast<const Bytef*>(data);
    stream.avail_in = static_cast<uInt>(size);
    do {
        if (m_inflater->atEnd) {
            // A gzip body may be several members in a row (RFC 1952, 2.2); a zlib stream is the only one.
            if (m_encoding != Encoding::Gzip || inflateReset(&stream) != Z_OK) {
                return Result::Damaged;
            }
            m_inflater->atEnd = false;
        }
        stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
        stream.avail_out = static_cast<uInt>(buffer.size());
        const int result = inflate(&stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
            return Result::Damaged;
        }
        const auto produced = static_cast<qint64>(buffer.size() - stream.avail_out);
        if (produced > m_limit - body.size()) {
            return Result::TooLarge;
        }
        body.append(buffer.data(), static_cast<int>(produced));
        m_inflater->atEnd = result == Z_STREAM_END;
        if (result == Z_BUF_ERROR && produced == 0) {
            break;
        }
    } while (stream.avail_in > 0 || (stream.avail_out == 0 && !m_inflater->atEnd));
    return Result::Good;
}

ContentDecoder::Result ContentDecoder::finish() const
{
    switch (m_encoding) {
    case Encoding::Identity:
        return Result::Good;
    case Encoding::Unknown:
        return Result::UnknownEncoding;
    case Encoding::Gzip:
    case Encoding::Deflate:
        break;
    }
    return m_inflater && m_inflater->atEnd ? Result::Good : Result::Damaged;
}

} // namespace rk
