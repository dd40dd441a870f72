#pragma once

#include <QByteArray>

#include <memory>

namespace rk {

/// Undoes a Content-Encoding (RFC 9110, 8.4) as the bytes arrive, and is strict: damaged, cut, and overlong
/// data fail.
class ContentDecoder
{
public:
    enum class Result
    {
        Good,
        UnknownEncoding,
        Damaged,
        TooLarge,
    };

    /// `encoding` is the header's value: "gzip", "deflate", or empty or "identity" for none. `limit` is the
    /// largest body in bytes after decoding.
    ContentDecoder(const QByteArray& encoding, qint64 limit);
    ~ContentDecoder();
    ContentDecoder(ContentDecoder&& other) noexcept;
    ContentDecoder& operator=(ContentDecoder&& other) noexcept;

    /// Appends what the bytes decode to. After anything but Good the body is not to be used.
    Result write(const char* data, qint64 size, QByteArray& body);
    /// To be asked when all bytes are in: Damaged when the data ended too early.
    Result finish() const;

private:
    struct Inflater;
    enum class Encoding
    {
        Identity,
        Gzip,
        Deflate,
        Unknown,
    };

    Result inflateInto(QByteArray& body, const char* data, qint64 size);

    Encoding m_encoding;
    qint64 m_limit;
    std::unique_ptr<Inflater> m_inflater;
};

} // namespace rk
