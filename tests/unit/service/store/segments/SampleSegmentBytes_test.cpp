// Segments lie in data files for as long as these are kept: their bytes are what every later version must
// read.

#include "KeptSamples.h"

#include <gtest/gtest.h>

#include <array>

namespace monitorservice {
namespace {

using Samples = std::vector<KeptSample>;

std::string hexadecimal(const std::string& bytes)
{
    constexpr std::array<char, 17> digits{"0123456789abcdef"};
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        text += digits.at(number / 16U);
        text += digits.at(number % 16U);
    }
    return text;
}

std::string bytesOf(const std::string& text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

// Both ways: later versions may write other bytes, but not read these as other samples.
void expectBytes(const Samples& samples, const std::string& expected)
{
    EXPECT_EQ(hexadecimal(encodeSegment(samples)), expected);
    EXPECT_TRUE(test::areSame(test::decoded(bytesOf(expected)), samples));
}

Samples sixHours()
{
    Samples samples;
    for (int i = 0; i < 6; ++i) {
        const double value = (1234 + i * i % 5) / 100.0;
        samples.push_back({{1'700'000'000'000 + i * 3'600'000LL, 0, 480, value, "a"}, 5000 + i});
    }
    return samples;
}

TEST(SampleSegmentBytes, OfNothing)
{
    expectBytes({}, "53016024656c"
                    "00"   // no sample
                    "ff"   // no values
                    "00"); // no texts
}

TEST(SampleSegmentBytes, OfOneSample)
{
    expectBytes({{{1'700'000'000'000, 3, 60, 12.34, "flag"}, 42}},
                "53019597b2bc"
                "01"
                "0080a0abfef962"     // the time
                "0006"               // the count
                "00f201"             // the offset
                "0054"               // the delivery
                "020000a413"         // the value
                "0104666c61670000"); // the flag
}

TEST(SampleSegmentBytes, OfARegularSeries)
{
    expectBytes(sixHours(), "5301e8afb410"
                            "06"
                            "1080a0abfef96280bab703" // each an hour after the one before
                            "0000"
                            "00820f"
                            "10904e02"             // each from the next delivery
                            "0200020103a413081900" // three bits each
                            "0101610000");
}

TEST(SampleSegmentBytes, OfAnIrregularSeries)
{
    Samples samples = sixHours();
    for (KeptSample& kept : samples) {
        kept.sample.value = 1 / kept.sample.value;
    }
    samples[1].sample.timeFlag = "";
    samples[2].sample.time += 60'000;
    samples[3].sample.count = -1;
    samples[3].sample.value = samples[2].sample.value;
    samples[4].sample.offsetMinutes.reset();
    samples[5].sample.offsetMinutes = -210;
    samples[5].delivery = -9;
    expectBytes(samples, "530195869aac"
                         "06"
                         "1280a0abfef962e0d40302c090b0034901" // a minute late in between
                         "0201010137"
                         "0104820f010001c806" // runs of offsets
                         "11904e040201a94e"
                         "ff79e06b9c6ffbd2fe0ca8b7b35be0541c60e7b0622878aee6b06228786eb7b35be05404"
                         "020161000201010002"); // two flags
}

TEST(SampleSegmentBytes, OfRunsAndExceptions)
{
    Samples samples;
    for (int i = 0; i < 12; ++i) {
        const double value = i == 5 ? -0.0 : i * 0.5;
        samples.push_back({{i * 1000LL * (i % 4), i / 6, std::nullopt, value, ""}, i / 4});
    }
    expectBytes(samples, "5301a4ad09ec"
                         "0c"
                         "02e807060040402440c154404285" // in whole seconds
                         "0106000602"
                         "0000"
                         "020102000055aa"
                         "01010500000000000000801200050200555815" // with a zero below zero
                         "01000000");
}

} // namespace
} // namespace monitorservice
