#include "store/segments/BitStream.h"

namespace monitorservice {

namespace {

constexpr unsigned halfWidth = 32; // fits beside the bits of a byte that is not full

std::uint64_t lowest(std::uint64_t bits, unsigned width)
{
    return bits & ((std::uint64_t{1} << width) - 1);
}

} // namespace

unsigned bitWidth(std::uint64_t number)
{
    unsigned width = 0;
    for (unsigned step = 32; step > 0; step /= 2) {
        if (number >> step != 0) {
            number >>= step;
            width += step;
        }
    }
    return width + (number != 0 ? 1 : 0);
}

void BitWriter::write(std::uint64_t number, unsigned width)
{
    if (width > halfWidth) {
        write(lowest(number, halfWidth), halfWidth);
        number >>= halfWidth;
        width -= halfWidth;
    }
    m_bits |= number << m_count;
    m_count += width;
    for (; m_count >= 8; m_count -= 8) {
        m_out += static_cast<char>(m_bits & 0xFFU);
        m_bits >>= 8U;
    }
}

void BitWriter::finish()
{
    if (m_count > 0) {
        m_out += static_cast<char>(m_bits);
    }
}

std::uint64_t BitReader::read(unsigned width)
{
    if (width > halfWidth) {
        const std::uint64_t low = read(halfWidth);
        return low | read(width - halfWidth) << halfWidth;
    }
    for (; m_count < width; m_count += 8) {
        m_bits |= std::uint64_t{m_bytes.byte()} << m_count;
    }
    const std::uint64_t number = lowest(m_bits, width);
    m_bits >>= width;
    m_count -= width;
    return number;
}

} // namespace monitorservice
