#pragma once

#include "store/segments/ByteReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace monitorservice {

/// Appends 64-bit integers, given in two's complement, in the form that takes the fewest bytes: as they are,
/// as differences or as differences of differences; these as one, as runs of the same, or as bits. How many
/// there are is not said.
void appendIntegers(std::string& out, std::vector<std::uint64_t> integers);

/// So many integers as appendIntegers() wrote them. Throws SegmentError.
std::vector<std::uint64_t> readIntegers(ByteReader& bytes, std::size_t count);

} // namespace monitorservice
