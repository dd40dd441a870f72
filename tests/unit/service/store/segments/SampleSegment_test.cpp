#include "store/segments/SampleSegment.h"

#include "KeptSamples.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace monitorservice {
namespace {

using test::areSame;
using test::decoded;
using test::doubleOf;
using test::hourlySamples;

using Samples = std::vector<KeptSample>;

constexpr std::int64_t earliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max();

void expectReadBack(const Samples& samples)
{
    EXPECT_TRUE(areSame(decoded(encodeSegment(samples)), samples));
}

Samples samplesOfTimes(const std::vector<Instant>& times)
{
    Samples samples;
    for (const Instant time : times) {
        samples.push_back({{time, 1, 0, 0.5, ""}, 7});
    }
    return samples;
}

Samples samplesOfValues(const std::vector<double>& values)
{
    Samples samples;
    for (const double value : values) {
        const auto number = static_cast<Instant>(samples.size());
        samples.push_back({{number * 1000, 0, std::nullopt, value, "flag"}, 7});
    }
    return samples;
}

TEST(SampleSegment, HoldsNoSample)
{
    expectReadBack({});
}

TEST(SampleSegment, HoldsOneSample)
{
    expectReadBack({{{1'700'000'000'000, 3, 60, 12.34, "flag"}, 42}});
}

TEST(SampleSegment, AppendsToWhatIsThere)
{
    const Samples first = hourlySamples(3);
    Samples samples = first;
    decodeSegment(encodeSegment(samplesOfTimes({1, 2})), samples);
    ASSERT_EQ(samples.size(), 5U);
    EXPECT_TRUE(areSame({samples.begin(), samples.begin() + 3}, first));
    EXPECT_TRUE(areSame({samples.begin() + 3, samples.end()}, samplesOfTimes({1, 2})));
}

TEST(SampleSegment, KeepsTheFarthestTimes)
{
    expectReadBack(samplesOfTimes({earliest}));
    expectReadBack(samplesOfTimes({latest}));
    expectReadBack(samplesOfTimes({earliest, latest}));
    expectReadBack(samplesOfTimes({earliest, -1, 0, latest}));
    expectReadBack(samplesOfTimes({earliest, earliest + 1, latest - 1, latest}));
}

TEST(SampleSegment, KeepsTimesBefore1970)
{
    expectReadBack(samplesOfTimes({-7'200'000, -3'600'000, -1, 0, 1}));
}

TEST(SampleSegment, KeepsCountsOfOneTime)
{
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    Samples samples;
    for (const std::int32_t count : {least, least + 1, -1, 0, 1, 2, most}) {
        samples.push_back({{5000, count, 0, 1, ""}, 1});
    }
    expectReadBack(samples);
}

TEST(SampleSegment, KeepsAnOrderThatIsNotThatOfTime)
{
    expectReadBack(samplesOfTimes({5, 3, 9, earliest, latest, 4, 4}));
}

TEST(SampleSegment, KeepsOffsets)
{
    Samples samples;
    for (const std::optional<int> offset :
         {std::optional<int>(0), std::optional<int>(), std::optional(60), std::optional(-60),
          std::optional(-1), std::optional(1), std::optional(std::numeric_limits<int>::min()),
          std::optional(std::numeric_limits<int>::max())}) {
        samples.push_back({{static_cast<Instant>(samples.size()), 0, offset, 1, ""}, 1});
        expectReadBack({samples.back()});
    }
    expectReadBack(samples);
}

TEST(SampleSegment, KeepsDeliveries)
{
    Samples samples = hourlySamples(6);
    samples[1].delivery = earliest;
    samples[3].delivery = latest;
    samples[4].delivery = -1;
    expectReadBack(samples);
}

TEST(SampleSegment, KeepsFlagsOfAnyBytes)
{
    Samples samples = hourlySamples(8);
    samples[0].sample.timeFlag = "";
    samples[1].sample.timeFlag = std::string("\0\0", 2);
    samples[2].sample.timeFlag = std::string("\0", 1);
    samples[3].sample.timeFlag = "\xff\x80";
    samples[4].sample.timeFlag = std::string(5000, 'x');
    samples[5].sample.timeFlag = "";
    expectReadBack(samples);
}

TEST(SampleSegment, KeepsAFlagForEachSample)
{
    Samples samples = hourlySamples(1000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i].sample.timeFlag = std::to_string(i);
    }
    expectReadBack(samples);
}

TEST(SampleSegment, KeepsTheSignOfZero)
{
    expectReadBack(samplesOfValues({-0.0}));
    expectReadBack(samplesOfValues({0.0, -0.0, 0.0}));
    std::vector<double> values(100, 0.25);
    values[0] = -0.0;
    values[50] = -0.0;
    values[99] = -0.0;
    expectReadBack(samplesOfValues(values));
}

TEST(SampleSegment, KeepsTheSmallestAndTheLargestValues)
{
    using Double = std::numeric_limits<double>;
    expectReadBack(samplesOfValues({Double::denorm_min(), -Double::denorm_min(), Double::min() / 2,
                                    Double::min(), Double::max(), -Double::max(), Double::epsilon()}));
}

TEST(SampleSegment, KeepsWhatIsNoNumber)
{
    using Double = std::numeric_limits<double>;
    const std::vector<double> odd{Double::infinity(), -Double::infinity(), Double::quiet_NaN(),
                                  doubleOf(0x7FF0000000000001), doubleOf(0xFFF8123456789ABC)};
    expectReadBack(samplesOfValues(odd));
    std::vector<double> values(100, 1.5);
    std::copy(odd.begin(), odd.end(), values.begin() + 40);
    expectReadBack(samplesOfValues(values));
}

TEST(SampleSegment, KeepsDecimalsOfAnyScale)
{
    double power = 1;
    for (int scale = 0; scale <= 20; ++scale, power *= 10) {
        std::vector<double> values;
        for (int mantissa = -50; mantissa < 50; ++mantissa) {
            values.push_back(mantissa / power);
        }
        expectReadBack(samplesOfValues(values));
    }
    expectReadBack(samplesOfValues({1, 0.1, 0.01, 0.001, 1e-9, 1e-10, 123456.789, -0.5}));
}

// Up to 2^53, doubles hold every integer.
TEST(SampleSegment, KeepsTheLargestMantissas)
{
    constexpr double limit = 9007199254740992;
    expectReadBack(samplesOfValues({limit, limit - 1, limit + 2, -limit, -limit - 2}));
    expectReadBack(samplesOfValues({limit / 100, (limit - 1) / 100, (limit + 2) / 100}));
    std::vector<double> values(100, 0.01);
    values[7] = 1e15; // an integer, but not with two decimals
    expectReadBack(samplesOfValues(values));
}

TEST(SampleSegment, IsTheSameForTheSameSamples)
{
    EXPECT_EQ(encodeSegment(hourlySamples(100)), encodeSegment(hourlySamples(100)));
}

// What is regular costs little over all, and a hundred different values cost seven bits.
TEST(SampleSegment, IsSmallWhereSamplesAreRegular)
{
    EXPECT_LE(encodeSegment(hourlySamples(24)).size(), 65U);
    EXPECT_LE(encodeSegment(hourlySamples(720)).size(), 720U);
}

TEST(SampleSegment, IsSmallWhereTimesAreWholeMinutes)
{
    std::vector<Instant> times;
    test::Chance chance(3);
    for (Instant time = 0; times.size() < 720; time += 60'000 * static_cast<Instant>(50 + chance.below(20))) {
        times.push_back(time);
    }
    expectReadBack(samplesOfTimes(times));
    EXPECT_LE(encodeSegment(samplesOfTimes(times)).size(), 720U);
}

TEST(SampleSegment, CostsLittleMoreThanItsValuesWhereTheseAreAny)
{
    Samples samples = hourlySamples(720);
    test::Chance chance(5);
    for (KeptSample& kept : samples) {
        kept.sample.value = 1 / static_cast<double>(1 + chance.below(1'000'000));
    }
    EXPECT_LE(encodeSegment(samples).size(), 720U * 9);
}

TEST(SampleSegment, GrowsLittleByAFewOddValues)
{
    Samples samples = hourlySamples(720);
    const std::size_t regular = encodeSegment(samples).size();
    samples[100].sample.value = -0.0;
    samples[500].sample.value = 1.0 / 3;
    EXPECT_LE(encodeSegment(samples).size(), regular + 30);
    expectReadBack(samples);
}

TEST(SampleSegment, HoldsAsManySamplesAsItSays)
{
    const Samples samples = hourlySamples(mostSegmentSamples);
    expectReadBack(samples);
    EXPECT_THROW(encodeSegment(hourlySamples(mostSegmentSamples + 1)), std::length_error);
}

TEST(SampleSegment, HoldsAsLongFlagsAsItSays)
{
    constexpr std::size_t flags = 64;
    Samples samples = hourlySamples(flags);
    for (KeptSample& kept : samples) {
        kept.sample.timeFlag = std::string(mostSegmentFlagBytes / flags, 'x');
    }
    expectReadBack(samples);
    samples[3].sample.timeFlag += 'x';
    EXPECT_THROW(encodeSegment(samples), std::length_error);
}

} // namespace
} // namespace monitorservice
