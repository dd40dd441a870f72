#pragma once

#include "store/segments/SampleSegment.h"
#include "support/Chance.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace monitorservice::test {

inline std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline double doubleOf(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Bit for bit: zeros of either sign differ, and what is no number is the same as itself.
inline bool isSame(const KeptSample& left, const KeptSample& right)
{
    return left.sample.time == right.sample.time && left.sample.count == right.sample.count &&
           left.sample.offsetMinutes == right.sample.offsetMinutes &&
           bitsOf(left.sample.value) == bitsOf(right.sample.value) &&
           left.sample.timeFlag == right.sample.timeFlag && left.delivery == right.delivery;
}

inline bool areSame(const std::vector<KeptSample>& left, const std::vector<KeptSample>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSame);
}

inline std::vector<KeptSample> decoded(const std::string& bytes)
{
    std::vector<KeptSample> samples;
    decodeSegment(bytes, samples);
    return samples;
}

/// Readings of so many hours with two decimals, each from a delivery of its own.
inline std::vector<KeptSample> hourlySamples(std::size_t count)
{
    Chance chance(7);
    std::vector<KeptSample> samples;
    for (std::size_t i = 0; i < count; ++i) {
        const auto number = static_cast<std::int64_t>(i);
        const double value = static_cast<double>(1234 + chance.below(100)) / 100;
        samples.push_back({{1'700'000'000'000 + number * 3'600'000, 0, 480, value, "a"}, 5000 + number});
    }
    return samples;
}

} // namespace monitorservice::test
