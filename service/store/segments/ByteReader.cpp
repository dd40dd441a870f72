#include "store/segments/ByteReader.h"

#include "store/segments/SegmentError.h"

namespace monitorservice {

void appendNumber(std::string& out, std::uint64_t number)
{
    while (number >= 0x80U) {
        out += static_cast<char>((number & 0x7FU) | 0x80U);
        number >>= 7U;
    }
    out += static_cast<char>(number);
}

void appendInteger(std::string& out, std::uint64_t integer)
{
    appendNumber(out, (integer << 1U) ^ (0 - (integer >> 63U)));
}

void appendFixed(std::string& out, std::uint64_t number, std::size_t bytes)
{
    for (; bytes > 0; --bytes) {
        out += static_cast<char>(number & 0xFFU);
        number >>= 8U;
    }
}

std::uint8_t ByteReader::byte()
{
    return static_cast<std::uint8_t>(bytes(1).front());
}

std::string_view ByteReader::bytes(std::uint64_t count)
{
    if (count > m_rest.size()) {
        throw SegmentError("the segment ends too early");
    }
    const auto size = static_cast<std::size_t>(count);
    const std::string_view taken = m_rest.substr(0, size);
    m_rest.remove_prefix(size);
    return taken;
}

std::uint64_t ByteReader::number()
{
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const std::uint64_t bits = byte();
        if (shift == 63 && bits > 1) {
            break;
        }
        number |= (bits & 0x7FU) << shift;
        if (bits < 0x80U) {
            return number;
        }
    }
    throw SegmentError("the segment has a number beyond 64 bits");
}

std::uint64_t ByteReader::integer()
{
    const std::uint64_t folded = number();
    return (folded >> 1U) ^ (0 - (folded & 1U));
}

std::uint64_t ByteReader::fixed(std::size_t bytes)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        number |= std::uint64_t{byte()} << (8 * i);
    }
    return number;
}

} // namespace monitorservice
