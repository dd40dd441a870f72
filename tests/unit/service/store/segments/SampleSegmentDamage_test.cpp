#include "KeptSamples.h"

#include <gmock/gmock.h>
#include <zlib.h>

namespace monitorservice {
namespace {

using test::areSame;
using test::hourlySamples;
using testing::HasSubstr;
using testing::ThrowsMessage;

using Samples = std::vector<KeptSample>;

// Expects that the bytes are refused, and that what is there stays.
void expectRefused(const std::string& bytes, const char* reason)
{
    static const Samples before = hourlySamples(2);
    Samples samples = before;
    // So that the sanitizers see a read behind the end.
    const std::vector<char> exact(bytes.begin(), bytes.end());
    EXPECT_THAT(
        [&] {
            decodeSegment({exact.data(), exact.size()}, samples);
        },
        ThrowsMessage<SegmentError>(HasSubstr(reason)));
    EXPECT_TRUE(areSame(samples, before));
}

// A segment of such content, with the checksum that it should have.
std::string segmentOf(const std::string& content)
{
    std::string bytes("S\x01", 2);
    auto checksum = static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const unsigned char*>(content.data()), content.size()));
    for (int byte = 0; byte < 4; ++byte, checksum >>= 8U) {
        bytes += static_cast<char>(checksum & 0xFFU);
    }
    return bytes + content;
}

// The columns of one sample of time 0, each of which a test replaces.
struct Content
{
    std::string count{"\x01"};
    std::string times{"\0\0", 2};
    std::string counts{"\0\0", 2};
    std::string offsets{"\0\0", 2};
    std::string deliveries{"\0\0", 2};
    std::string values{"\0\0\0\0", 4};
    std::string flags{"\x01\0\0\0", 4};
    std::string behind;

    std::string segment() const
    {
        return segmentOf(count + times + counts + offsets + deliveries + values + flags + behind);
    }
};

// Of the 64 bits of an integer below zero that is the least.
const std::string leastInteger = std::string(9, '\xff') + '\x01';

template <std::size_t size>
std::string bytes(const char (&text)[size])
{
    return {text, size - 1};
}

// Samples that use every kind of column.
Samples variedSamples()
{
    Samples samples = hourlySamples(80);
    samples[10].sample.time += 1;
    samples[20].sample.timeFlag = "another";
    samples[30].sample.offsetMinutes.reset();
    samples[40].sample.value = -0.0;
    samples[50].delivery = -3;
    return samples;
}

Samples samplesOfOddValues()
{
    Samples samples = hourlySamples(20);
    for (KeptSample& kept : samples) {
        kept.sample.value = 1 / (kept.sample.value + 1);
    }
    return samples;
}

TEST(SampleSegmentDamage, IsToldWhereverASegmentIsCut)
{
    for (const Samples& samples : {Samples(), hourlySamples(1), variedSamples(), samplesOfOddValues()}) {
        const std::string whole = encodeSegment(samples);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            expectRefused(whole.substr(0, length), "");
        }
    }
}

TEST(SampleSegmentDamage, IsToldOfEveryByte)
{
    for (const Samples& samples : {Samples(), hourlySamples(1), variedSamples(), samplesOfOddValues()}) {
        std::string bytes = encodeSegment(samples);
        for (char& byte : bytes) {
            const char right = byte;
            for (int other = 1; other < 256; ++other) {
                byte = static_cast<char>(right ^ other);
                expectRefused(bytes, "");
            }
            byte = right;
        }
    }
}

TEST(SampleSegmentDamage, IsToldOfBytesBehind)
{
    expectRefused(encodeSegment(hourlySamples(3)) + '\0', "is damaged");
    Content content;
    content.behind = bytes("\0");
    expectRefused(content.segment(), "has bytes behind its samples");
}

TEST(SampleSegmentDamage, IsNotWhatIsNoSegment)
{
    expectRefused("", "are no segment");
    expectRefused("S", "are no segment");
    expectRefused("{\"data\":[]}", "are no segment");
}

TEST(SampleSegmentDamage, IsNotALaterVersion)
{
    std::string bytes = encodeSegment(hourlySamples(3));
    bytes[1] = '\x02';
    expectRefused(bytes, "is of version 2, which is not known");
}

TEST(SampleSegmentDamage, ContentOfOneSampleIsRead)
{
    EXPECT_TRUE(areSame(test::decoded(Content().segment()), {KeptSample{{0, 0, std::nullopt, 0, ""}, 0}}));
}

// What has the right checksum and still is no segment was made so by someone, or by a fault of this code.
TEST(SampleSegmentDamage, IsToldOfMoreSamplesThanASegmentHolds)
{
    Content content;
    content.count = bytes("\x81\x80\x04"); // 65 537
    expectRefused(content.segment(), "more samples than a segment can hold");
    content.count = std::string(9, '\xff') + '\x01';
    expectRefused(content.segment(), "more samples than a segment can hold");
    content.count = std::string(9, '\xff') + '\x02';
    expectRefused(content.segment(), "a number beyond 64 bits");
    content.count = std::string(11, '\x80');
    expectRefused(content.segment(), "a number beyond 64 bits");
}

TEST(SampleSegmentDamage, IsToldOfColumnsThatEndEarly)
{
    expectRefused(segmentOf(""), "ends too early");
    expectRefused(segmentOf("\x01"), "ends too early");
    Content content;
    content.flags = bytes("\x01\x7f"
                          "a");
    expectRefused(content.segment(), "ends too early");
    content.flags = '\x01' + leastInteger;
    expectRefused(content.segment(), "ends too early");
}

TEST(SampleSegmentDamage, IsToldOfColumnsOfAnUnknownForm)
{
    Content content;
    for (const char* const form : {"\x03", "\x0f", "\x30", "\xff"}) {
        content.times = std::string(form) + '\0';
        expectRefused(content.segment(), "a column of an unknown form");
    }
    content.times = bytes("\x10\0\0"); // differences of one
    expectRefused(content.segment(), "a column of an unknown form");
}

TEST(SampleSegmentDamage, IsToldOfRunsThatDoNotFit)
{
    Content content;
    for (const std::string& run : {bytes("\x01\0\0"), bytes("\x01\x02\0"), '\x01' + leastInteger + '\0'}) {
        content.times = run;
        expectRefused(content.segment(), "a run that does not fit its column");
    }
}

TEST(SampleSegmentDamage, IsToldOfIntegersThatAreTooWide)
{
    Content content;
    content.times = bytes("\x02\x01\x41\0") + std::string(9, '\0');
    expectRefused(content.segment(), "integers wider than 64 bits");
    content.times = bytes("\x02\x01\x40\0") + std::string(7, '\0');
    content.times += content.times; // eight bytes of bits are there, but not the next columns
    expectRefused(content.segment(), "");
}

TEST(SampleSegmentDamage, IsToldOfCountsAndOffsetsBeyondTheirRange)
{
    Content content;
    content.counts = bytes("\0\x80\x80\x80\x80\x10"); // 2^31
    expectRefused(content.segment(), "a count beyond 32 bits");
    content.counts = bytes("\0\x81\x80\x80\x80\x10"); // one less than -2^31
    expectRefused(content.segment(), "a count beyond 32 bits");
    content = Content();
    content.offsets = bytes("\0\x82\x80\x80\x80\x20"); // 2^32 + 1
    expectRefused(content.segment(), "an offset beyond 32 bits");
    content.offsets = bytes("\0\x01"); // -1
    expectRefused(content.segment(), "an offset beyond 32 bits");
}

TEST(SampleSegmentDamage, IsToldOfValuesOfAnUnknownForm)
{
    Content content;
    for (const char* const form : {"\x0a", "\xfe"}) {
        content.values = form + bytes("\0\0\0");
        expectRefused(content.segment(), "values of an unknown form");
    }
}

TEST(SampleSegmentDamage, IsToldOfExceptionsBeyondTheSamples)
{
    Content content;
    content.values = bytes("\0\x01\x01") + std::string(10, '\0');
    expectRefused(content.segment(), "an exception beyond its samples");
    content.values = bytes("\0\x02\0") + std::string(8, '\0') + '\0' + std::string(10, '\0');
    expectRefused(content.segment(), "an exception beyond its samples");
}

TEST(SampleSegmentDamage, IsToldOfWindowsBeyondADouble)
{
    Content content;
    content.values = bytes("\xff\xff\xff") + std::string(10, '\0'); // 63 bits left out, 64 wide
    expectRefused(content.segment(), "values wider than 64 bits");
}

TEST(SampleSegmentDamage, IsToldOfTextsThatAreNotThere)
{
    Content content;
    content.flags = bytes("\x01\0\0\x02");
    expectRefused(content.segment(), "refers to a text that it does not have");
    content.flags = bytes("\0\0\0");
    expectRefused(content.segment(), "refers to a text that it does not have");
    content.flags = bytes("\x02\0\0\0\0");
    expectRefused(content.segment(), "more texts than samples");
}

// A few bytes could ask for all memory there is.
TEST(SampleSegmentDamage, IsToldOfTextsThatAreTooLongTogether)
{
    Content content;
    content.count = bytes("\x80\x80\x04"); // 65 536
    content.flags = bytes("\x01\x81\x08") + std::string(1025, 'x') + bytes("\0\0");
    expectRefused(content.segment(), "texts that are too long together");
    content.flags = bytes("\x01\x80\x08") + std::string(1024, 'x') + bytes("\0\0");
    EXPECT_EQ(test::decoded(content.segment()).size(), mostSegmentSamples);
}

} // namespace
} // namespace monitorservice
