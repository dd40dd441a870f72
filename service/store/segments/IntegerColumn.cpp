#include "store/segments/IntegerColumn.h"

#include "store/segments/BitStream.h"
#include "store/segments/SegmentError.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace monitorservice {

namespace {

using Integers = std::vector<std::uint64_t>;

// The first byte of a column is order * 16 + layout.
constexpr unsigned orderFactor = 16;
constexpr unsigned highestOrder = 2; // differences of differences

enum Layout : unsigned
{
    Constant,
    Runs,
    Bits
};

constexpr std::size_t blockSize = 64;

bool isLess(std::uint64_t left, std::uint64_t right)
{
    return static_cast<std::int64_t>(left) < static_cast<std::int64_t>(right);
}

// Differences wrap around, so that those of the farthest integers lead back, too.
void takeDifferences(Integers& integers)
{
    for (std::size_t i = 0; i + 1 < integers.size(); ++i) {
        integers[i] = integers[i + 1] - integers[i];
    }
    integers.pop_back();
}

// Stops where they have become longer than what is to be beaten.
void appendRuns(std::string& out, const Integers& integers, std::size_t toBeat)
{
    for (auto begin = integers.begin(); begin != integers.end() && out.size() < toBeat;) {
        const auto end =
            std::find_if(begin, integers.end(), [begin](std::uint64_t other) { return other != *begin; });
        appendNumber(out, static_cast<std::uint64_t>(end - begin));
        appendInteger(out, *begin);
        begin = end;
    }
}

// Neighbours that have their width in common.
struct Block
{
    Integers::const_iterator begin;
    Integers::const_iterator end;
    std::uint64_t smallest = 0;
    std::uint64_t range = 0; ///< how much greater the largest is
};

std::vector<Block> blocksOf(const Integers& integers)
{
    std::vector<Block> blocks;
    blocks.reserve(integers.size() / blockSize + 1);
    for (auto begin = integers.begin(); begin != integers.end();) {
        const auto size = std::min<std::ptrdiff_t>(blockSize, integers.end() - begin);
        const auto [smallest, largest] = std::minmax_element(begin, begin + size, isLess);
        blocks.push_back({begin, begin + size, *smallest, *largest - *smallest});
        begin += size;
    }
    return blocks;
}

// The largest of which all differences within blocks are multiples: 60 000 where times are whole minutes.
std::uint64_t unitOf(const std::vector<Block>& blocks)
{
    std::uint64_t unit = 0;
    for (const Block& block : blocks) {
        for (auto integer = block.begin; integer != block.end && unit != 1; ++integer) {
            unit = std::gcd(unit, *integer - block.smallest);
        }
    }
    return std::max<std::uint64_t>(unit, 1);
}

void appendBits(std::string& out, const Integers& integers)
{
    const std::vector<Block> blocks = blocksOf(integers);
    const std::uint64_t unit = unitOf(blocks);
    appendNumber(out, unit);
    for (const Block& block : blocks) {
        const unsigned width = bitWidth(block.range / unit);
        out += static_cast<char>(width);
        appendInteger(out, block.smallest);
        BitWriter bits(out);
        for (auto integer = block.begin; integer != block.end; ++integer) {
            const std::uint64_t difference = *integer - block.smallest;
            bits.write(unit == 1 ? difference : difference / unit, width);
        }
        bits.finish();
    }
}

void readRuns(ByteReader& bytes, Integers& integers, std::size_t from)
{
    while (from < integers.size()) {
        const std::uint64_t length = bytes.number();
        if (length == 0 || length > integers.size() - from) {
            throw SegmentError("the segment has a run that does not fit its column");
        }
        std::fill_n(integers.begin() + static_cast<std::ptrdiff_t>(from), length, bytes.integer());
        from += length;
    }
}

void readBits(ByteReader& bytes, Integers& integers, std::size_t from)
{
    const std::uint64_t unit = bytes.number();
    while (from < integers.size()) {
        const unsigned width = bytes.byte();
        if (width > 64) {
            throw SegmentError("the segment has integers wider than 64 bits");
        }
        const std::uint64_t smallest = bytes.integer();
        BitReader bits(bytes);
        const std::size_t end = from + std::min(blockSize, integers.size() - from);
        for (; from < end; ++from) {
            integers[from] = smallest + unit * bits.read(width);
        }
    }
}

void readLayout(ByteReader& bytes, unsigned layout, Integers& integers, std::size_t from)
{
    switch (layout) {
    case Constant:
        std::fill(integers.begin() + static_cast<std::ptrdiff_t>(from), integers.end(), bytes.integer());
        break;
    case Runs:
        readRuns(bytes, integers, from);
        break;
    case Bits:
        readBits(bytes, integers, from);
        break;
    default:
        throw SegmentError("the segment has a column of an unknown form");
    }
}

} // namespace

void appendIntegers(std::string& out, std::vector<std::uint64_t> integers)
{
    std::string smallest;
    const auto keepSmaller = [&smallest](std::string&& column) {
        if (smallest.empty() || column.size() < smallest.size()) {
            smallest = std::move(column);
        }
    };
    std::string start;
    for (unsigned order = 0; order <= highestOrder && !integers.empty(); ++order) {
        const auto begin = [&start, order](Layout layout) {
            return static_cast<char>(order * orderFactor + layout) + start;
        };
        if (std::adjacent_find(integers.begin(), integers.end(), std::not_equal_to<>()) == integers.end()) {
            std::string column = begin(Constant);
            appendInteger(column, integers.front());
            keepSmaller(std::move(column));
            break;
        }
        std::string packed = begin(Bits);
        appendBits(packed, integers);
        keepSmaller(std::move(packed));
        std::string runs = begin(Runs);
        appendRuns(runs, integers, smallest.size());
        keepSmaller(std::move(runs));
        appendInteger(start, integers.front());
        takeDifferences(integers);
    }
    out += smallest;
}

std::vector<std::uint64_t> readIntegers(ByteReader& bytes, std::size_t count)
{
    Integers integers(count);
    if (count == 0) {
        return integers;
    }
    const unsigned form = bytes.byte();
    const std::size_t order = form / orderFactor;
    if (order > highestOrder || order >= count) {
        throw SegmentError("the segment has a column of an unknown form");
    }
    for (std::size_t i = 0; i < order; ++i) {
        integers[i] = bytes.integer();
    }
    readLayout(bytes, form % orderFactor, integers, order);
    // Sums of differences are what they were taken of, down to the integers themselves.
    for (std::size_t level = order; level > 0; --level) {
        for (std::size_t i = level; i < count; ++i) {
            integers[i] += integers[i - 1];
        }
    }
    return integers;
}

} // namespace monitorservice
