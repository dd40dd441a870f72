// Input: a segment, whose checksum is also put right, since no other would be read any further. What is read
// is the same when it is written and read again; what is refused leaves what was there.

#include "Fuzzer.h"
#include "store/segments/SampleSegment.h"
#include "unit/service/store/segments/KeptSamples.h"

#include <zlib.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using fuzz::require;
using monitorservice::KeptSample;
using Samples = std::vector<KeptSample>;

constexpr std::size_t checksumBegin = 2;
constexpr std::size_t checksumEnd = 6;

// As of a store that reads one segment after another.
std::optional<Samples> samplesOf(std::string_view bytes)
{
    const Samples before = monitorservice::test::hourlySamples(1);
    Samples samples = before;
    try {
        monitorservice::decodeSegment(bytes, samples);
    } catch (const monitorservice::SegmentError&) {
        require(monitorservice::test::areSame(samples, before), "what is refused appends nothing");
        return std::nullopt;
    }
    require(monitorservice::test::areSame({samples.begin(), samples.begin() + 1}, before),
            "what was there stays");
    samples.erase(samples.begin());
    return samples;
}

void checkSegment(std::string_view bytes)
{
    const std::optional<Samples> samples = samplesOf(bytes);
    if (!samples) {
        return;
    }
    const std::string written = monitorservice::encodeSegment(*samples);
    const std::optional<Samples> again = samplesOf(written);
    require(again && monitorservice::test::areSame(*again, *samples), "what is written is read as it was");
    require(monitorservice::encodeSegment(*again) == written, "the same samples are the same bytes");
}

void putChecksumRight(std::vector<std::uint8_t>& bytes)
{
    auto checksum = crc32_z(0, bytes.data() + checksumEnd, bytes.size() - checksumEnd);
    for (std::size_t i = checksumBegin; i < checksumEnd; ++i, checksum >>= 8U) {
        bytes[i] = static_cast<std::uint8_t>(checksum & 0xFFU);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    checkSegment({reinterpret_cast<const char*>(data), size});
    if (size > checksumEnd) {
        std::vector<std::uint8_t> bytes(data, data + size);
        putChecksumRight(bytes);
        checkSegment({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    return 0;
}
