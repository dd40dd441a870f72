// The bytes of a segment, version 1:
//
//   'S'        that it is a segment
//   1          the version
//   4 bytes    CRC-32 (that of zlib and of IEEE 802.3) of all bytes behind it, the lowest byte first
//   number     how many samples there are
//   integers   times, in milliseconds since 1970-01-01T00:00:00Z
//   integers   counts
//   integers   offsets: 0 for none; for m minutes 2m + 1, or -2m below zero
//   integers   numbers of deliveries
//   values
//   texts      time flags
//
// A *number* is written seven bits a byte, the lowest first; the highest bit of a byte says that another byte
// follows. An *integer* i is written as the number 2i, or -2i - 1 when it is below zero. Integers have 64
// bits in two's complement; their sums and differences wrap around.
//
// *integers* are a column of as many integers as there are samples; nothing when there are none. Its first
// byte is 16 * order + layout. The order is 0, 1 or 2: so often has the column been replaced by the
// differences between its neighbours, and so many integers follow, which are the column's first and then the
// first of the differences. What is left by the last replacement follows, by layout:
//
//   0   an integer, which is all of them
//   1   runs: the number of those that are the same, and the integer that they are
//   2   a number u; then blocks of 64, the last one of what is left: a byte w, an integer, and for each how
//       often u it is greater than that integer, in w bits each, 64 at most
//
// *bits* fill bytes from the lowest bit on, the lowest bit of a number first; the last byte is filled with
// zeros.
//
// *values* begin with a byte s. When it is 0 to 9, they are decimals:
//
//   number     how many exceptions there are
//              for each: the number of values between it and the exception before, or before it, and 8 bytes:
//              the bits of the double that stands there (IEEE 754, binary64), the lowest byte first
//   integers   mantissas; a value is the double nearest to mantissa / 10^s, unless it is an exception
//
// When it is 255, the bits of the doubles follow as those that differ (exclusive or) from those of the value
// before, of 0 at first. For each value:
//
//   0              the same as before
//   1 0 bits       the bits of the window, at first all 64; all others are the same
//   1 1 b w bits   before them, a new window: b lower bits lie outside, w + 1 bits inside; b and w have six
//                  bits each
//
// *texts* are the number of those that occur; for each of them, the number of its bytes, and these; and
// integers that say which of them each sample has, counted from 0.
//
// Samples are as many as mostSegmentSamples at most, and their flags as long as mostSegmentFlagBytes.

#include "store/segments/SampleSegment.h"

#include "store/segments/ByteReader.h"
#include "store/segments/IntegerColumn.h"
#include "store/segments/TextColumn.h"
#include "store/segments/ValueColumn.h"

#include <zlib.h>

#include <limits>
#include <optional>
#include <stdexcept>

namespace monitorservice {

namespace {

constexpr char mark = 'S';
constexpr std::uint8_t version = 1;
constexpr std::size_t bytesOfChecksum = 4;

using Integers = std::vector<std::uint64_t>;

std::uint32_t checksumOf(std::string_view bytes)
{
    // zlib takes any length in this form only.
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

std::uint64_t integerOf(std::optional<int> offsetMinutes)
{
    if (!offsetMinutes) {
        return 0;
    }
    const std::int64_t twice = std::int64_t{2} * *offsetMinutes;
    return static_cast<std::uint64_t>(twice < 0 ? -twice : twice + 1);
}

std::optional<int> offsetOf(std::uint64_t integer)
{
    if (integer == 0) {
        return std::nullopt;
    }
    const auto half = static_cast<std::int64_t>(integer / 2);
    return static_cast<int>(integer % 2 == 0 ? -half : half);
}

std::size_t flagBytesOf(const std::vector<KeptSample>& samples)
{
    std::size_t bytes = 0;
    for (const KeptSample& kept : samples) {
        bytes += kept.sample.timeFlag.size();
    }
    return bytes;
}

// A column of what `part` gives of each sample.
template <typename Part>
auto columnOf(const std::vector<KeptSample>& samples, const Part& part)
{
    std::vector<decltype(part(samples.front()))> column;
    column.reserve(samples.size());
    for (const KeptSample& kept : samples) {
        column.push_back(part(kept));
    }
    return column;
}

void appendColumns(std::string& out, const std::vector<KeptSample>& samples)
{
    const auto appendColumn = [&](const auto& integer) {
        appendIntegers(out, columnOf(samples, [&integer](const KeptSample& kept) {
                           return static_cast<std::uint64_t>(integer(kept));
                       }));
    };
    appendColumn([](const KeptSample& kept) { return kept.sample.time; });
    appendColumn([](const KeptSample& kept) { return kept.sample.count; });
    appendColumn([](const KeptSample& kept) { return integerOf(kept.sample.offsetMinutes); });
    appendColumn([](const KeptSample& kept) { return kept.delivery; });
    appendValues(out, columnOf(samples, [](const KeptSample& kept) { return kept.sample.value; }));
    appendTexts(out, columnOf(samples,
                              [](const KeptSample& kept) { return std::string_view(kept.sample.timeFlag); }));
}

struct Columns
{
    Columns(ByteReader& bytes, std::size_t count)
        : times(readIntegers(bytes, count)), counts(readIntegers(bytes, count)),
          offsets(readIntegers(bytes, count)), deliveries(readIntegers(bytes, count)),
          values(readValues(bytes, count)), flags(readTexts(bytes, count, mostSegmentFlagBytes))
    {
    }

    // In the order of the bytes, in which members are made.
    Integers times;
    Integers counts;
    Integers offsets;
    Integers deliveries;
    std::vector<double> values;
    TextColumn flags;
};

void checkRanges(const Columns& columns)
{
    using Count = std::numeric_limits<std::int32_t>;
    for (const std::uint64_t count : columns.counts) {
        const auto number = static_cast<std::int64_t>(count);
        if (number < Count::min() || number > Count::max()) {
            throw SegmentError("the segment has a count beyond 32 bits");
        }
    }
    constexpr std::uint64_t mostOffset = std::uint64_t{1} << 32U; // that of the smallest integer
    for (const std::uint64_t offset : columns.offsets) {
        if (offset > mostOffset) {
            throw SegmentError("the segment has an offset beyond 32 bits");
        }
    }
}

// What stands behind the checksum, when it is right.
ByteReader contentOf(std::string_view bytes)
{
    ByteReader reader(bytes);
    if (reader.left() < 2 || reader.byte() != mark) {
        throw SegmentError("the bytes are no segment");
    }
    if (const unsigned found = reader.byte(); found != version) {
        throw SegmentError("the segment is of version " + std::to_string(found) + ", which is not known");
    }
    const std::uint64_t checksum = reader.fixed(bytesOfChecksum);
    if (checksum != checksumOf(bytes.substr(bytes.size() - reader.left()))) {
        throw SegmentError("the segment is damaged: its checksum is another one");
    }
    return reader;
}

void appendSamples(const Columns& columns, std::vector<KeptSample>& samples)
{
    const std::size_t before = samples.size();
    const std::size_t count = columns.times.size();
    samples.resize(before + count);
    for (std::size_t i = 0; i < count; ++i) {
        KeptSample& kept = samples[before + i];
        kept.sample.time = static_cast<Instant>(columns.times[i]);
        kept.sample.count = static_cast<std::int32_t>(columns.counts[i]);
        kept.sample.offsetMinutes = offsetOf(columns.offsets[i]);
        kept.sample.value = columns.values[i];
        kept.sample.timeFlag = columns.flags[i];
        kept.delivery = static_cast<std::int64_t>(columns.deliveries[i]);
    }
}

} // namespace

std::string encodeSegment(const std::vector<KeptSample>& samples)
{
    if (samples.size() > mostSegmentSamples || flagBytesOf(samples) > mostSegmentFlagBytes) {
        throw std::length_error("more samples, or longer time flags, than a segment can hold");
    }
    std::string content;
    appendNumber(content, samples.size());
    appendColumns(content, samples);
    std::string bytes{mark, static_cast<char>(version)};
    appendFixed(bytes, checksumOf(content), bytesOfChecksum);
    return bytes += content;
}

void decodeSegment(std::string_view bytes, std::vector<KeptSample>& samples)
{
    ByteReader content = contentOf(bytes);
    const std::uint64_t count = content.number();
    if (count > mostSegmentSamples) {
        throw SegmentError("the segment has more samples than a segment can hold");
    }
    const Columns columns(content, count);
    if (content.left() != 0) {
        throw SegmentError("the segment has bytes behind its samples");
    }
    checkRanges(columns);
    appendSamples(columns, samples);
}

} // namespace monitorservice
