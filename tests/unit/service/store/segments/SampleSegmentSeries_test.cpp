// A million random series, each of which must come back bit for bit.

#include "KeptSamples.h"
#include "support/Chance.h"

#include <gtest/gtest.h>

#include <limits>

namespace monitorservice {
namespace {

using test::Chance;
using test::doubleOf;

using Samples = std::vector<KeptSample>;

const std::vector<std::int64_t> steps{1, 1000, 60'000, 3'600'000, 86'400'000};
const std::vector<std::string> fewFlags{"", "a", "night", std::string("\0", 1), "\xff"};
const std::vector<std::optional<int>> fewOffsets{std::nullopt, 0, 60, 120, -210};
const std::vector<double> powers{1, 10, 100, 1e3, 1e6, 1e9, 1e10};

std::uint64_t anyBits(Chance& chance)
{
    constexpr std::uint64_t all = std::uint64_t{1} << 32U;
    return std::uint64_t{chance.below(all)} << 32U | chance.below(all);
}

std::int64_t anyInteger(Chance& chance)
{
    return static_cast<std::int64_t>(anyBits(chance));
}

std::int64_t below(Chance& chance, std::size_t end)
{
    return static_cast<std::int64_t>(chance.below(end));
}

std::size_t anyLength(Chance& chance)
{
    return chance.once(200) ? chance.below(300) : chance.below(6);
}

void setTimesFrom(Chance& chance, Samples& samples, std::int64_t time)
{
    const std::int64_t step = chance.of(steps);
    const bool isRegular = chance.once(2);
    for (KeptSample& kept : samples) {
        kept.sample.time = time;
        kept.sample.count = chance.once(20) ? static_cast<std::int32_t>(anyBits(chance)) : 1;
        time += isRegular && !chance.once(50) ? step : step * below(chance, 100);
    }
}

void setTimes(Chance& chance, Samples& samples)
{
    switch (chance.below(4)) {
    case 0: // any, in their order
        for (KeptSample& kept : samples) {
            kept.sample.time = anyInteger(chance);
        }
        std::sort(samples.begin(), samples.end(), [](const KeptSample& left, const KeptSample& right) {
            return left.sample.time < right.sample.time;
        });
        break;
    case 1: // one, counted
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i].sample.time = -7;
            samples[i].sample.count = static_cast<std::int32_t>(i) - 2;
        }
        break;
    case 2:
        setTimesFrom(chance, samples, -1'000'000'000);
        break;
    default:
        setTimesFrom(chance, samples, 1'700'000'000'000);
    }
}

double oddValue(Chance& chance)
{
    using Double = std::numeric_limits<double>;
    static const std::vector<double> values{-0.0,
                                            0.0,
                                            Double::denorm_min(),
                                            -Double::min() / 3,
                                            Double::max(),
                                            1.0 / 3,
                                            0.1 + 0.2,
                                            Double::infinity(),
                                            doubleOf(0x7FF0000000000001),
                                            doubleOf(0xFFFABCDEF0123456),
                                            9007199254740993.0};
    return chance.of(values);
}

void setValues(Chance& chance, Samples& samples)
{
    const std::size_t kind = chance.below(6);
    const double power = chance.of(powers);
    std::int64_t walk = below(chance, 100'000) - 50'000;
    for (KeptSample& kept : samples) {
        double& value = kept.sample.value;
        walk += below(chance, 41) - 20;
        switch (kind) {
        case 0: // of any scale
            value = static_cast<double>(below(chance, 2'000'000) - 1'000'000) / chance.of(powers);
            break;
        case 1:
            value = doubleOf(anyBits(chance));
            break;
        case 2:
            value = oddValue(chance);
            break;
        case 3:
            value = static_cast<float>(static_cast<double>(walk) / power);
            break;
        default:
            value = chance.once(40) ? oddValue(chance) : static_cast<double>(walk) / power;
        }
    }
}

std::string anyText(Chance& chance)
{
    std::string text(chance.below(20), '\0');
    for (char& byte : text) {
        byte = static_cast<char>(chance.below(256));
    }
    return text;
}

void setFlagsAndOffsets(Chance& chance, Samples& samples)
{
    const bool changes = chance.once(4);
    const bool isAny = chance.once(8);
    std::string flag = chance.of(fewFlags);
    std::optional<int> offset = chance.of(fewOffsets);
    for (KeptSample& kept : samples) {
        kept.sample.timeFlag = isAny ? anyText(chance) : flag;
        kept.sample.offsetMinutes =
            isAny ? static_cast<int>(static_cast<std::int32_t>(anyBits(chance))) : offset;
        if (changes && chance.once(3)) {
            flag = chance.of(fewFlags);
            offset = chance.of(fewOffsets);
        }
    }
}

void setDeliveries(Chance& chance, Samples& samples)
{
    const std::size_t kind = chance.below(3);
    std::int64_t delivery = below(chance, 1'000'000);
    for (KeptSample& kept : samples) {
        kept.delivery = kind == 0 ? anyInteger(chance) : delivery;
        delivery += kind == 1 ? 1 : below(chance, 2);
    }
}

TEST(SampleSegmentSeries, ComeBackBitForBit)
{
    Chance chance(20'240'301);
    Samples samples;
    Samples decoded;
    for (int series = 0; series < 1'000'000; ++series) {
        samples.resize(anyLength(chance));
        setTimes(chance, samples);
        setValues(chance, samples);
        setFlagsAndOffsets(chance, samples);
        setDeliveries(chance, samples);
        decoded.clear();
        decodeSegment(encodeSegment(samples), decoded);
        ASSERT_TRUE(test::areSame(decoded, samples)) << "series " << series;
    }
}

} // namespace
} // namespace monitorservice
