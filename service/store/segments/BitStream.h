#pragma once

#include "store/segments/ByteReader.h"

#include <cstdint>
#include <string>

namespace monitorservice {

/// How many bits a number needs; none for 0.
unsigned bitWidth(std::uint64_t number);

/// Appends numbers of any width in bits. The lowest bit of a number comes first, and fills the lowest free
/// bit of a byte.
class BitWriter
{
public:
    explicit BitWriter(std::string& out) : m_out(out) {}

    /// The number needs no more than `width` bits, which are 64 at most.
    void write(std::uint64_t number, unsigned width);
    /// Fills the last byte with zeros; to be called once, at the end.
    void finish();

private:
    std::string& m_out;
    std::uint64_t m_bits = 0; ///< not yet a byte
    unsigned m_count = 0;
};

/// Takes numbers that BitWriter wrote, and of the bytes no more than they need. Throws SegmentError when
/// those end too early.
class BitReader
{
public:
    explicit BitReader(ByteReader& bytes) : m_bytes(bytes) {}

    /// The next number of so many bits, which are 64 at most.
    std::uint64_t read(unsigned width);

private:
    ByteReader& m_bytes;
    std::uint64_t m_bits = 0; ///< of the byte that was taken last, not yet read
    unsigned m_count = 0;
};

} // namespace monitorservice
