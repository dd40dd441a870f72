#include "store/segments/XorColumn.h"

#include "store/segments/BitStream.h"
#include "store/segments/SegmentError.h"

namespace monitorservice {

namespace {

// A stretch of the bits of a double.
struct Window
{
    unsigned begin = 0; ///< how many lower bits it leaves out
    unsigned width = 64;

    bool holds(const Window& other) const
    {
        return begin <= other.begin && other.begin + other.width <= begin + width;
    }
};

constexpr unsigned placeWidth = 6; // of a number below 64
constexpr unsigned windowCost = 2 * placeWidth;

// The narrowest that holds all bits of a number that is not 0.
Window windowOf(std::uint64_t bits)
{
    const unsigned begin = bitWidth(bits & (0 - bits)) - 1;
    return {begin, bitWidth(bits) - begin};
}

} // namespace

void appendXored(std::string& out, const std::vector<std::uint64_t>& doubles)
{
    BitWriter bits(out);
    Window window;
    std::uint64_t previous = 0;
    for (const std::uint64_t current : doubles) {
        const std::uint64_t difference = current ^ previous;
        previous = current;
        bits.write(difference != 0 ? 1 : 0, 1);
        if (difference == 0) {
            continue;
        }
        const Window narrowest = windowOf(difference);
        const bool isNew = !window.holds(narrowest) || narrowest.width + windowCost < window.width;
        bits.write(isNew ? 1 : 0, 1);
        if (isNew) {
            window = narrowest;
            bits.write(window.begin, placeWidth);
            bits.write(window.width - 1, placeWidth);
        }
        bits.write(difference >> window.begin, window.width);
    }
    bits.finish();
}

std::vector<std::uint64_t> readXored(ByteReader& bytes, std::size_t count)
{
    std::vector<std::uint64_t> doubles(count);
    BitReader bits(bytes);
    Window window;
    std::uint64_t previous = 0;
    for (std::uint64_t& current : doubles) {
        if (bits.read(1) != 0) {
            if (bits.read(1) != 0) {
                window.begin = static_cast<unsigned>(bits.read(placeWidth));
                window.width = static_cast<unsigned>(bits.read(placeWidth)) + 1;
            }
            if (window.begin + window.width > 64) {
                throw SegmentError("the segment has values wider than 64 bits");
            }
            previous ^= bits.read(window.width) << window.begin;
        }
        current = previous;
    }
    return doubles;
}

} // namespace monitorservice
