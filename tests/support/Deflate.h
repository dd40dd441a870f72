#pragma once

#include <QByteArray>

#include <gtest/gtest.h>
#include <zlib.h>

/// The text compressed; `windowBits` says how it is wrapped, as zlib.h describes for deflateInit2.
inline QByteArray deflated(const QByteArray& text, int windowBits)
{
    z_stream stream = {};
    EXPECT_EQ(deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY), Z_OK);
    QByteArray out(static_cast<int>(deflateBound(&stream, static_cast<uLong>(text.size()))), '\0');
    stream.next_in = reinterpret_cast<const Bytef*>(text.constData());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    out.truncate(static_cast<int>(stream.total_out));
    deflateEnd(&stream);
    return out;
}

/// The text as one gzip member (RFC 1952).
inline QByteArray gzipped(const QByteArray& text)
{
    return deflated(text, MAX_WBITS + 16);
}
