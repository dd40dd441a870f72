#pragma once

#include "domain/Sample.h"
#include "store/segments/SegmentError.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What one segment holds at most: samples, and bytes of their time flags together. They bound the memory
/// that a segment can ask for, however few its bytes are.
constexpr std::size_t mostSegmentSamples = 65'536;
constexpr std::size_t mostSegmentFlagBytes = std::size_t{64} * 1024 * 1024;

/// Samples in the order of time and count, each time and count once, as bytes. All of a sample is kept bit
/// for bit, values that are no numbers and the sign of zero included. The same samples make the same bytes.
///
/// The order is what makes segments small; samples in another one come back in it.
///
/// Throws std::length_error when one segment cannot hold them.
std::string encodeSegment(const std::vector<KeptSample>& samples);

/// Appends the samples of a segment. Throws SegmentError; `samples` is as before then.
void decodeSegment(std::string_view bytes, std::vector<KeptSample>& samples);

} // namespace monitorservice
